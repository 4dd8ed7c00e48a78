#include "workbench/imports/LockBook.h"

#include <algorithm>
#include <cstdio>

#include "workbench/imports/LastError.h"

namespace bench {

namespace {

std::string Words(const void* lock, std::uintptr_t site) {
  char text[64];
  std::snprintf(text, sizeof text, "%p (site +0x%llx)", lock,
                static_cast<unsigned long long>(site));
  return text;
}

}  // namespace

std::string LockBook::Wanted(const void* lock, std::uintptr_t site) {
  const KeepLastError keep;
  const std::lock_guard guard(mutex_);
  const auto mine = held_.find(GetCurrentThreadId());
  if (mine == held_.end()) return {};
  const auto isLock = [lock](const Held& held) { return held.lock == lock; };
  if (std::ranges::any_of(mine->second, isLock)) return {};
  std::string breach;
  for (const Held& held : mine->second) {
    if (!after_[held.lock].insert(lock).second) continue;
    std::set<const void*> seen;
    if (!Leads(lock, held.lock, seen)) continue;
    breach = Words(lock, site) + " taken under " + Words(held.lock, held.site) +
             ", and the other way round before";
  }
  return breach;
}

void LockBook::Taken(const void* lock, std::uintptr_t site) {
  const KeepLastError keep;
  const std::lock_guard guard(mutex_);
  std::vector<Held>& mine = held_[GetCurrentThreadId()];
  for (Held& held : mine) {
    if (held.lock == lock) return static_cast<void>(++held.times);
  }
  mine.push_back({lock, site, 1});
}

void LockBook::Left(const void* lock) {
  const KeepLastError keep;
  const std::lock_guard guard(mutex_);
  const auto mine = held_.find(GetCurrentThreadId());
  if (mine == held_.end()) return;
  const auto place = std::ranges::find(mine->second, lock, &Held::lock);
  if (place == mine->second.end() || --place->times > 0) return;
  mine->second.erase(place);
  if (mine->second.empty()) held_.erase(mine);
}

void LockBook::Gone(const void* first, std::size_t size) {
  const KeepLastError keep;
  const std::lock_guard guard(mutex_);
  const void* const end = static_cast<const char*>(first) + size;
  if (!after_.empty()) after_.erase(after_.lower_bound(first), after_.lower_bound(end));
  for (auto& [lock, later] : after_) later.erase(later.lower_bound(first), later.lower_bound(end));
}

std::string LockBook::HeldHere() const {
  const KeepLastError keep;
  const std::lock_guard guard(mutex_);
  std::string words;
  const auto mine = held_.find(GetCurrentThreadId());
  if (mine == held_.end()) return words;
  for (const Held& held : mine->second) {
    if (!words.empty()) words += ", ";
    words += Words(held.lock, held.site);
  }
  return words;
}

bool LockBook::Leads(const void* from, const void* to, std::set<const void*>& seen) const {
  if (from == to) return true;
  if (!seen.insert(from).second) return false;
  const auto place = after_.find(from);
  return place != after_.end() && std::ranges::any_of(place->second, [&](const void* next) {
           return Leads(next, to, seen);
         });
}

}  // namespace bench
