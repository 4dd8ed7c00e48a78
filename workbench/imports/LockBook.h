// Which locks of the module its threads hold, and in which orders they have been taken.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace bench {

/// A graph of the locks by their addresses, with an edge from each lock held to the one taken next:
/// a cycle is an order that can deadlock, whether or not it did. Any thread may call it.
class LockBook {
 public:
  /// The thread is going to wait for a lock. Taking it could close a cycle: the words for it, once
  /// for each pair of locks; else empty.
  std::string Wanted(const void* lock, std::uintptr_t site);
  /// The thread has it, for the first time or once more.
  void Taken(const void* lock, std::uintptr_t site);
  void Left(const void* lock);
  /// The memory from `first` on, `size` bytes, holds no locks any more.
  void Gone(const void* first, std::size_t size);

  /// The locks that this thread holds, in words; empty if none.
  std::string HeldHere() const;

 private:
  struct Held {
    const void* lock;
    std::uintptr_t site;
    int times;
  };
  bool Leads(const void* from, const void* to, std::set<const void*>& seen) const;

  mutable std::mutex mutex_;
  std::map<DWORD, std::vector<Held>> held_;  // by thread, in the order in which they were taken
  std::map<const void*, std::set<const void*>> after_;  // what has been taken under each lock
};

}  // namespace bench
