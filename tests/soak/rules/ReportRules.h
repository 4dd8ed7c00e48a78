// What a data report has to hold.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "tests/soak/rules/Breaches.h"

namespace soak {

struct Position {
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::int64_t time = 0;  // of the fix, in UTC seconds

  bool operator==(const Position&) const = default;
};

/// Rules:
///   report-coordinates  a data report has coordinates, and they are on the earth;
///   report-origin       the fix that it tells of is one that the modem sent.
class ReportRules {
 public:
  explicit ReportRules(Breaches& breaches) : breaches_(breaches) {}

  /// The modem sent a fix.
  void Sent(const Position& fix);
  void Reported(Millis at, const Position& report);

 private:
  Breaches& breaches_;
  std::deque<Position> sent_;  // the newest last
};

}  // namespace soak
