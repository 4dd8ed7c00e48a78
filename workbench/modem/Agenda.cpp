#include "workbench/modem/Agenda.h"

#include <utility>

namespace bench {

void Agenda::Add(Millis due, Job job, Action action) {
  entries_.emplace(due, Entry{job, std::move(action)});
}

void Agenda::Cancel(Job job) {
  std::erase_if(entries_, [job](const auto& entry) { return entry.second.job == job; });
}

void Agenda::RunUntil(Millis now) {
  while (Next() <= now) {
    const auto entry = entries_.extract(entries_.begin());
    entry.mapped().action(entry.key());
  }
}

Millis Agenda::Next() const {
  return entries_.empty() ? kForever : entries_.begin()->first;
}

}  // namespace bench
