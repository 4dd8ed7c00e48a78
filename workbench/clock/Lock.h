// The lock and the wake-up that the virtual clock's threads meet at. On Windows the system's own
// are taken, because those of the C++ library cost several kernel calls a wait.
#pragma once

#if defined(_WIN32)
#include <windows.h>
#else
#include <condition_variable>
#endif
#include <mutex>

namespace bench {

#if defined(_WIN32)

class Lock {
 public:
  void lock() { AcquireSRWLockExclusive(&lock_); }
  void unlock() { ReleaseSRWLockExclusive(&lock_); }

 private:
  friend class WakeUp;
  SRWLOCK lock_ = SRWLOCK_INIT;
};

class WakeUp {
 public:
  template <typename Ready>
  void wait(std::unique_lock<Lock>& lock, Ready ready) {
    while (!ready()) SleepConditionVariableSRW(&wake_, &lock.mutex()->lock_, INFINITE, 0);
  }
  void notify_one() { WakeConditionVariable(&wake_); }

 private:
  CONDITION_VARIABLE wake_ = CONDITION_VARIABLE_INIT;
};

#else

using Lock = std::mutex;
using WakeUp = std::condition_variable;

#endif

}  // namespace bench
