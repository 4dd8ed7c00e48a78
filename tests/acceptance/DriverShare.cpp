#include "tests/acceptance/DriverShare.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace bench::acceptance {

void DriverShare::OnAnswer(Millis at, std::string_view bytes) {
  // The sentences of a fix and the final result behind them.
  if (bytes.find("$G") == std::string_view::npos || !bytes.ends_with("OK\r\n")) return;
  const std::lock_guard lock(mutex_);
  closed_ = Clock::now();
}

void DriverShare::OnCall(std::string_view call) {
  if (!call.ends_with("::PostEvent")) return;
  const auto now = Clock::now();
  const std::lock_guard lock(mutex_);
  if (!closed_) return;
  times_.emplace_back(now - *closed_);
  closed_.reset();
}

std::vector<DriverShare::Microseconds> DriverShare::Times() const {
  const std::lock_guard lock(mutex_);
  return times_;
}

std::string ShareText(std::vector<DriverShare::Microseconds> times) {
  if (times.empty()) return "no fixes";
  std::ranges::sort(times);
  const auto at = [&times](double share) {
    return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))].count();
  };
  char text[120];
  std::snprintf(text, sizeof text,
                "%zu fixes: median %.0f us, 95 %% within %.0f us, longest %.0f us", times.size(),
                at(0.5), at(0.95), at(1));
  return text;
}

}  // namespace bench::acceptance
