// A clock on which every wait is over at once, by its time-out unless what it waits for is there.
#pragma once

#include <algorithm>

#include "workbench/clock/Clock.h"

namespace fuzz {

/// For one thread.
class EagerClock final : public bench::Clock {
 public:
  bench::Millis Now() const override { return now_; }
  bool WaitUntil(bench::Millis deadline, const std::function<bool()>& ready) override {
    if (ready()) return true;
    now_ = std::max(now_, deadline);
    return false;
  }
  void Notify() override {}
  void AddParticipant() override {}
  void EnterParticipant() override {}
  void LeaveParticipant() override {}

 private:
  bench::Millis now_ = 0;
};

}  // namespace fuzz
