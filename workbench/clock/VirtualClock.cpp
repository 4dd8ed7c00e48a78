#include "workbench/clock/VirtualClock.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>

namespace bench {

namespace {
// Which clock the calling thread is a participant of.
thread_local const void* participantOf = nullptr;
}  // namespace

VirtualClock::VirtualClock(double pace) : pace_(pace) {
  AddParticipant();
  EnterParticipant();
}

VirtualClock::~VirtualClock() {
  participantOf = nullptr;
}

Millis VirtualClock::Now() const {
  const std::lock_guard lock(mutex_);
  return now_;
}

bool VirtualClock::WaitUntil(Millis deadline, const std::function<bool()>& ready) {
  std::unique_lock lock(mutex_);
  if (ready()) return true;
  if (deadline <= now_) return false;
  Waiter waiter{
      .deadline = deadline, .ready = &ready, .counted = participantOf == this, .wake = {}};
  const auto place = waiters_.insert(waiters_.end(), &waiter);
  if (waiter.counted) --running_;
  AdvanceWhileAllWait(lock);
  waiter.wake.wait(lock, [&waiter] { return waiter.woken; });
  waiters_.erase(place);
  return waiter.result;
}

void VirtualClock::Notify() {
  const std::lock_guard lock(mutex_);
  WakeReady();
}

void VirtualClock::AddParticipant() {
  const std::lock_guard lock(mutex_);
  ++running_;
}

void VirtualClock::EnterParticipant() {
  participantOf = this;
}

void VirtualClock::LeaveParticipant() {
  participantOf = nullptr;
  std::unique_lock lock(mutex_);
  --running_;
  AdvanceWhileAllWait(lock);
}

void VirtualClock::WakeReady() {
  for (Waiter* waiter : waiters_) {
    if (!waiter->woken && (*waiter->ready)()) Wake(*waiter, true);
  }
}

void VirtualClock::Wake(Waiter& waiter, bool result) {
  waiter.woken = true;
  waiter.result = result;
  if (waiter.counted) ++running_;
  waiter.wake.notify_one();
}

void VirtualClock::AdvanceWhileAllWait(std::unique_lock<Lock>& lock) {
  while (running_ == 0 && !advancing_) {
    Millis next = kForever;
    for (const Waiter* waiter : waiters_) {
      if (!waiter->woken) next = std::min(next, waiter->deadline);
    }
    if (next == kForever) return;  // nothing to wait for but a thread outside the clock
    if (pace_ > 0 && next > now_) {
      // Others may change things while the lock is open; look again afterwards.
      advancing_ = true;
      const auto pause =
          std::chrono::duration<double, std::milli>(static_cast<double>(next - now_) / pace_);
      std::condition_variable_any pausing;
      pausing.wait_for(lock, pause, [this] { return running_ > 0; });
      advancing_ = false;
      if (running_ > 0) return;
    }
    now_ = next;
    for (Waiter* waiter : waiters_) {
      if (!waiter->woken && waiter->deadline <= now_) Wake(*waiter, (*waiter->ready)());
    }
  }
}

}  // namespace bench
