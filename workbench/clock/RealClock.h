// The machine's own time.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "workbench/clock/Clock.h"

namespace bench {

class RealClock final : public Clock {
 public:
  Millis Now() const override;
  bool WaitUntil(Millis deadline, const std::function<bool()>& ready) override;
  void Notify() override;
  void AddParticipant() override {}
  void EnterParticipant() override {}
  void LeaveParticipant() override {}

 private:
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::mutex mutex_;
  std::condition_variable changed_;
};

}  // namespace bench
