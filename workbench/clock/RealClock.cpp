#include "workbench/clock/RealClock.h"

namespace bench {

Millis RealClock::Now() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start_)
      .count();
}

bool RealClock::WaitUntil(Millis deadline, const std::function<bool()>& ready) {
  std::unique_lock lock(mutex_);
  if (deadline == kForever) {
    changed_.wait(lock, ready);
    return true;
  }
  return changed_.wait_until(lock, start_ + std::chrono::milliseconds(deadline), ready);
}

void RealClock::Notify() {
  // Taking the lock once closes the gap between a waiter's test and its sleep.
  { const std::lock_guard lock(mutex_); }
  changed_.notify_all();
}

}  // namespace bench
