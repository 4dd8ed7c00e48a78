#include "tests/soak/rules/ReportRules.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace soak {

namespace {

// A report may show an older fix: one that waited in the port while the power was down.
constexpr std::size_t kRemembered = 2000;

bool Within(const std::optional<double>& value, double limit) {
  return value && std::abs(*value) <= limit;
}

}  // namespace

void ReportRules::Sent(const Position& fix) {
  sent_.push_back(fix);
  if (sent_.size() > kRemembered) sent_.pop_front();
}

void ReportRules::Reported(Millis at, const Position& report) {
  if (!Within(report.latitude, 90) || !Within(report.longitude, 180)) {
    breaches_.Add("report-coordinates", at, "a report without coordinates");
  } else if (std::find(sent_.rbegin(), sent_.rend(), report) == sent_.rend()) {
    breaches_.Add("report-origin", at,
                  "a report of " + std::to_string(*report.latitude) + " " +
                      std::to_string(*report.longitude) + " that the modem never sent");
  }
}

}  // namespace soak
