// What one wait of the driver DLL looks at.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace bench {

/// What is known about an event or a thread of the DLL without asking the system, which is slow: a
/// wait asks only when the answer may have changed. Any thread may use it.
class Waitable {
 public:
  enum class Kind { kManualEvent, kAutoEvent, kThread };

  Waitable(Kind kind, bool signalled) : kind_(kind), signals_(signalled ? 1 : 0) {}

  Kind GetKind() const { return kind_; }
  /// The event was set, or the thread's procedure has returned; called after the fact.
  void Signal() { ++signals_; }
  /// A stamp to give to NotSignalled, taken before the system is asked.
  std::uint64_t Stamp() const { return signals_; }
  /// The system says that it is not signalled, or no longer.
  void NotSignalled(std::uint64_t stamp) { answered_ = stamp; }
  bool MayBeSignalled() const { return signals_ != answered_; }

 private:
  const Kind kind_;
  std::atomic<std::uint64_t> signals_;
  std::atomic<std::uint64_t> answered_{0};  // the signals that are known to be used up
};

/// The handles of one wait. A thread of the DLL counts as ended once its procedure has returned,
/// which the clock gets to know of; the handle itself follows a moment later.
class HandleSet {
 public:
  /// `handles` must outlive the set.
  HandleSet(const HANDLE* handles, DWORD count, bool all)
      : handles_(handles), count_(count), all_(all) {}

  /// Tells what the next handle is; null for one that is not known. Called for each, in order.
  void Add(std::shared_ptr<Waitable> waitable) { known_.push_back(std::move(waitable)); }

  /// Tests without waiting, and takes what is signalled; the result is that of
  /// WaitForMultipleObjects.
  DWORD Poll() const;
  /// After a Poll: lets the threads that it counted as ended really end.
  void Settle(DWORD result) const;

 private:
  bool MayBeSignalled(DWORD index) const {
    return !known_[index] || known_[index]->MayBeSignalled();
  }
  bool IsThread(DWORD index) const {
    return known_[index] && known_[index]->GetKind() == Waitable::Kind::kThread;
  }
  bool IsEndedThread(DWORD index) const {
    return IsThread(index) && known_[index]->MayBeSignalled();
  }
  DWORD PollAny() const;
  DWORD PollAll() const;
  DWORD AskAny(DWORD count) const;

  const HANDLE* const handles_;
  const DWORD count_;
  const bool all_;
  std::vector<std::shared_ptr<Waitable>> known_;
};

}  // namespace bench
