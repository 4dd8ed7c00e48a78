// The worker's four one-shot timers: counts of milliseconds that each pass of the loop runs down.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "sensor/Events.h"

namespace stelvane {

inline constexpr std::uint32_t kTimerOff = 0xFFFFFFFF;

/// Worker thread only; no lock.
class Timers {
 public:
  Timers() { AllOff(); }
  void AllOff() { timers_.fill(kTimerOff); }
  /// kTimerOff turns the timer off.
  void Arm(SensorTimer timer, std::uint32_t milliseconds);

  /// How long the worker may wait, in milliseconds; INFINITE when all are off.
  std::uint32_t Shortest() const { return *std::min_element(timers_.begin(), timers_.end()); }

  /// Runs all timers down and calls `fire(SensorTimer)`, which may arm again, for each that is
  /// due. A timer fires up to kEarlyMs early. An off timer is counted down like any other and
  /// fires after about 49.7 days; this is meant.
  template <class Fire>
  void Elapse(std::uint32_t elapsedMs, Fire&& fire) {
    for (std::uint32_t id = 0; id < kTimerCount; ++id) {
      if (timers_[id] > std::uint64_t{elapsedMs} + kEarlyMs) {
        timers_[id] -= elapsedMs;
      } else {
        timers_[id] = kTimerOff;
        fire(static_cast<SensorTimer>(id));
      }
    }
  }

 private:
  static constexpr std::uint32_t kEarlyMs = 50;
  std::array<std::uint32_t, kTimerCount> timers_;
};

}  // namespace stelvane
