// Time that stands still while anybody works and jumps to the next deadline when all wait.
#pragma once

#include <list>
#include <mutex>

#include "workbench/clock/Clock.h"
#include "workbench/clock/Lock.h"

namespace bench {

class VirtualClock final : public Clock {
 public:
  /// `pace` is simulated milliseconds per real one: 1 runs like the machine's clock, 0 runs as fast
  /// as the threads can. The constructing thread is the first participant.
  explicit VirtualClock(double pace = 0);
  ~VirtualClock() override;

  Millis Now() const override;
  bool WaitUntil(Millis deadline, const std::function<bool()>& ready) override;
  void Notify() override;
  void AddParticipant() override;
  void EnterParticipant() override;
  void LeaveParticipant() override;

 private:
  struct Waiter {
    Millis deadline;
    const std::function<bool()>* ready;
    bool counted;  // a participant: it stands in `running_` while it does not wait
    bool woken = false;
    bool result = false;
    WakeUp wake;
  };

  void WakeReady();
  void Wake(Waiter& waiter, bool result);
  void AdvanceWhileAllWait(std::unique_lock<Lock>& lock);

  const double pace_;
  mutable Lock mutex_;
  Millis now_ = 0;
  int running_ = 0;
  bool advancing_ = false;
  std::list<Waiter*> waiters_;
};

}  // namespace bench
