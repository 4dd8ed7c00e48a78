#include "workbench/imports/Audit.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "workbench/imports/LastError.h"

namespace bench {

const char* NameOf(Resource kind) {
  constexpr auto kNames = std::to_array<const char*>(
      {"event", "thread handle", "running thread", "critical section", "COM initialisation",
       "task memory block", "heap block", "device information list", "trace registration"});
  static_assert(kNames.size() == static_cast<std::size_t>(Resource::kCount));
  return kNames[static_cast<std::size_t>(kind)];
}

void Audit::Mark() {
  mark_ = created_.load();
}

void Audit::Take(Resource kind, std::uintptr_t value, std::uintptr_t site, std::uint64_t quantity) {
  const KeepLastError keep;
  Book& book = Of(kind);
  const Item item{++created_, GetCurrentThreadId(), site, quantity};
  const std::lock_guard lock(book.mutex);
  const auto [place, isNew] = book.items.insert_or_assign(value, item);
  // A handle may come back after a close that went past the table; a live section may not.
  if (!isNew && kind == Resource::kCriticalSection) Misuse("critical section initialised twice");
}

void Audit::TakeAgain(Resource kind, std::uintptr_t value, std::uintptr_t site) {
  const KeepLastError keep;
  Book& book = Of(kind);
  const std::lock_guard lock(book.mutex);
  const auto place = book.items.find(value);
  if (place != book.items.end()) {
    ++place->second.quantity;
  } else {
    book.items.emplace(value, Item{++created_, GetCurrentThreadId(), site, 1});
  }
}

bool Audit::Give(Resource kind, std::uintptr_t value) {
  const KeepLastError keep;
  Book& book = Of(kind);
  const std::lock_guard lock(book.mutex);
  const auto place = book.items.find(value);
  if (place == book.items.end()) return false;
  const bool counted = kind == Resource::kComInitialization;
  if (!counted || --place->second.quantity == 0) book.items.erase(place);
  return true;
}

void Audit::Misuse(std::string what) {
  const std::lock_guard lock(misuseMutex_);
  misuses_.push_back(std::move(what));
}

std::vector<Leak> Audit::Leaks() const {
  std::vector<Leak> leaks;
  for (std::size_t i = 0; i < books_.size(); ++i) {
    const std::lock_guard lock(books_[i].mutex);
    for (const auto& [value, item] : books_[i].items) {
      if (item.order <= mark_) continue;
      leaks.push_back(
          {static_cast<Resource>(i), value, item.order, item.thread, item.site, item.quantity});
    }
  }
  std::sort(leaks.begin(), leaks.end(),
            [](const Leak& a, const Leak& b) { return a.order < b.order; });
  return leaks;
}

std::size_t Audit::Alive(Resource kind) const {
  const Book& book = Of(kind);
  const std::lock_guard lock(book.mutex);
  return book.items.size();
}

std::vector<std::string> Audit::Misuses() const {
  const std::lock_guard lock(misuseMutex_);
  return misuses_;
}

std::string Audit::Report() const {
  std::string report;
  for (const Leak& leak : Leaks()) report += Describe(leak) + '\n';
  for (const std::string& misuse : Misuses()) report += misuse + '\n';
  return report;
}

std::string Describe(const Leak& leak) {
  char line[160];
  std::snprintf(line, sizeof line,
                "%s 0x%llx not given back: quantity %llu, thread %lu, site +0x%llx",
                NameOf(leak.kind), static_cast<unsigned long long>(leak.value),
                static_cast<unsigned long long>(leak.quantity), leak.thread,
                static_cast<unsigned long long>(leak.site));
  return line;
}

}  // namespace bench
