// How much of a fix's way the driver itself takes, on the machine's own clock.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "workbench/modem/ModemObserver.h"

namespace bench::acceptance {

/// From the chunk of the modem's that closes a fix to the driver's call of PostEvent; the way
/// through the simulated USB stack and the switch of threads are in it. All methods from any
/// thread.
class DriverShare final : public ModemObserver {
 public:
  using Clock = std::chrono::steady_clock;
  using Microseconds = std::chrono::duration<double, std::micro>;

  void OnAnswer(Millis at, std::string_view bytes) override;
  /// To be told of every call of the driver's, by its name.
  void OnCall(std::string_view call);

  /// In the order in which they were measured.
  std::vector<Microseconds> Times() const;

 private:
  mutable std::mutex mutex_;
  std::optional<Clock::time_point> closed_;
  std::vector<Microseconds> times_;
};

/// "<n> fixes: median … us, 95 % within … us, longest … us".
std::string ShareText(std::vector<DriverShare::Microseconds> times);

}  // namespace bench::acceptance
