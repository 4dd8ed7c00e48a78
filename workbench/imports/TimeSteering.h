// Puts the driver DLL's clocks, waits, locks and threads on the workbench's clock.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "workbench/clock/Clock.h"
#include "workbench/imports/HandleSet.h"

namespace bench {

/// What the time and thread imports of the DLL do instead. Any thread may call it. The handles
/// waited for must have no owner (events, semaphores, threads; not mutexes), because the clock
/// tests them on whichever thread has changed something. A thread's end is seen through the handle
/// that its creation gave, not through a duplicate.
///
/// A wait in virtual time is counted by the clock like any other: time moves on only when every
/// thread of the DLL waits, sleeps or stands before a lock.
class TimeSteering {
 public:
  explicit TimeSteering(Clock& clock);

  /// The UTC date and time that the run starts with; 1 June 2014, 12:00:00, unless set.
  void SetStartUtc(const SYSTEMTIME& utc);
  /// The tick count, in milliseconds since the system's start, that the run starts with.
  void SetStartTicks(std::uint64_t milliseconds) { startTicks_ = milliseconds; }

  std::uint64_t Ticks() const { return startTicks_ + static_cast<std::uint64_t>(clock_.Now()); }
  FILETIME Utc() const;
  /// Counts of the performance counter; `kCounterFrequency` are one second.
  std::int64_t Counter() const { return clock_.Now() * (kCounterFrequency / 1000); }
  static constexpr std::int64_t kCounterFrequency = 10'000'000;

  /// As Sleep; 0 is a GiveWay.
  void Sleep(DWORD milliseconds);
  /// Lets others run: waits until anything changes, at most one millisecond of the clock, so that
  /// a loop of it cannot hold virtual time up.
  void GiveWay();
  /// As WaitForMultipleObjects.
  DWORD Wait(DWORD count, const HANDLE* handles, bool all, DWORD milliseconds);
  /// An event that the DLL has created, unnamed.
  void Created(HANDLE event, bool manual, bool set);
  /// To be called when the DLL has set an event or released a semaphore.
  void Signalled(HANDLE handle);
  /// To be called when anything else has signalled a handle that the DLL may wait for.
  void Signalled();

  /// Takes a lock: `take` tries it without blocking; `lock` identifies it.
  template <typename Take>
  void Acquire(const void* lock, Take take) {
    if (!take()) AcquireContended(lock, take);
  }
  /// To be called when a lock was left.
  void Released(const void* lock) {
    if (lockWaiters_ != 0) WakeLockWaiters(lock);
  }

  /// As CreateThread, the thread being a participant of the clock from its creation on, also while
  /// it is suspended. `created` is called before the thread runs, `ended` on the thread when its
  /// procedure has returned, or thrown.
  HANDLE StartThread(SECURITY_ATTRIBUTES* attributes, SIZE_T stack, LPTHREAD_START_ROUTINE body,
                     void* argument, DWORD flags, DWORD* id,
                     const std::function<void(HANDLE, DWORD)>& created,
                     std::function<void(DWORD, bool)> ended);
  /// To be called before a handle is closed.
  void Closing(HANDLE handle);

 private:
  struct LockWait {
    std::uint64_t left = 0;  // how often the lock was left since the first of its waiters came
    int waiters = 0;
  };
  struct Start;

  Millis Deadline(DWORD milliseconds) const;
  void AcquireContended(const void* lock, const std::function<bool()>& take);
  void WakeLockWaiters(const void* lock);
  void SignalAllEvents();
  HandleSet Resolve(DWORD count, const HANDLE* handles, bool all);
  static DWORD WINAPI RunThread(void* start);

  Clock& clock_;
  std::atomic<std::uint64_t> startUtc_{0};  // 100 ns units since 1601
  std::atomic<std::uint64_t> startTicks_{3'600'000};
  std::atomic<int> waiting_{0};
  std::atomic<int> lockWaiters_{0};
  std::mutex mutex_;
  std::unordered_map<HANDLE, std::shared_ptr<Waitable>> waitables_;
  std::unordered_map<const void*, LockWait> locks_;
};

}  // namespace bench
