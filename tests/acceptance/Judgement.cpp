#include "tests/acceptance/Judgement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "workbench/framework/Rules.h"

namespace bench::acceptance {

namespace {

constexpr double kTolerance = 0.2;
// Between the change to ready and its report: both are raised within one turn of the worker.
constexpr Millis kAtOnce = 50;

std::string Seconds(Millis time) {
  std::string text = std::to_string(time / 1000) + ".";
  const std::string fraction = std::to_string(time % 1000);
  return text + std::string(3 - fraction.size(), '0') + fraction + " s";
}

std::string StateName(SensorState state) {
  constexpr std::array kNames = {"READY",        "NOT AVAILABLE", "NO DATA",
                                 "INITIALIZING", "ACCESS DENIED", "ERROR"};
  const auto index = static_cast<std::size_t>(state);
  return index < kNames.size() ? kNames[index] : "state " + std::to_string(index);
}

std::string Names(const std::vector<SensorState>& states) {
  std::string text;
  for (const SensorState state : states) {
    if (!text.empty()) text += ", ";
    text += StateName(state);
  }
  return text.empty() ? "none" : text;
}

bool Within(std::optional<double> value, double bound) {
  return value && std::abs(*value) <= bound;
}

bool Breaks(const std::string& finding, std::string_view rule) {
  return finding.starts_with(std::string(rule) + ":");
}

}  // namespace

Faults JudgePace(const std::vector<Millis>& events, const Pace& pace) {
  if (events.size() < 2) {
    return {std::to_string(events.size()) + " data events at an interval of " +
            Seconds(pace.interval)};
  }
  Faults faults;
  const double allowed = kTolerance * static_cast<double>(pace.interval);
  for (std::size_t i = 1; i < events.size(); ++i) {
    const Millis gap = events[i] - events[i - 1];
    const std::string when = " at " + Seconds(events[i]) + ", " + Seconds(gap) + " after the last";
    if (std::abs(static_cast<double>(gap - pace.interval)) > allowed) {
      faults.push_back("not within a fifth of " + Seconds(pace.interval) + ":" + when);
    }
    if (gap < pace.minimum) faults.push_back("faster than the minimum interval:" + when);
  }
  return faults + JudgeLateness(events.front(), events, pace);
}

Faults JudgeLateness(Millis from, const std::vector<Millis>& events, const Pace& pace) {
  Faults faults;
  const auto look = [&](Millis event, const char* what) {
    if (event - from > 2 * pace.interval) {
      faults.push_back(what + Seconds(event - from) + " after " + Seconds(from) +
                       ", more than twice " + Seconds(pace.interval));
    }
    from = event;
  };
  for (const Millis event : events) look(event, "a data event ");
  look(pace.until, "no data event by the end, ");
  return faults;
}

std::string TypeName(VARTYPE type) {
  switch (type) {
    case VT_EMPTY:
      return "empty";
    case VT_BOOL:
      return "boolean";
    case VT_I4:
      return "signed 32-bit";
    case VT_UI4:
      return "unsigned 32-bit";
    case VT_R8:
      return "double";
    case VT_ERROR:
      return "error";
    case VT_CLSID:
      return "GUID";
    case VT_LPWSTR:
      return "string";
    case VT_FILETIME:
      return "file time";
    case VT_VECTOR | VT_UI1:
      return "bytes";
    case VT_ILLEGAL:
      return "missing";
    default:
      return "type " + std::to_string(type);
  }
}

Faults JudgeType(const std::string& what, VARTYPE expected, VARTYPE actual, bool mayBeEmpty) {
  if (actual == expected || (mayBeEmpty && actual == VT_EMPTY)) return {};
  return {what + " is " + TypeName(actual) + " and not " + TypeName(expected)};
}

Faults JudgeStates(const std::vector<StateChange>& states,
                   const std::vector<SensorState>& expected) {
  std::vector<SensorState> raised;
  std::ranges::transform(states, std::back_inserter(raised), &StateChange::state);
  if (raised == expected) return {};
  return {"states raised: " + Names(raised) + "; expected: " + Names(expected)};
}

Faults JudgeReady(const std::vector<StateChange>& states, const std::vector<Report>& reports) {
  Faults faults;
  const auto isReady = [](const StateChange& change) { return change.state == SENSOR_STATE_READY; };
  const auto first = std::ranges::find_if(states, isReady);
  if (first == states.end()) return {"the sensor is never ready"};
  for (const Report& report : reports) {
    if (report.time < first->time)
      faults.push_back("a report at " + Seconds(report.time) + ", before the sensor is ready");
  }
  for (const StateChange& change : states) {
    if (!isReady(change)) continue;
    const bool withRadius = std::ranges::any_of(reports, [&](const Report& report) {
      return report.time >= change.time && report.time <= change.time + kAtOnce &&
             report.errorRadius.value_or(0) > 0;
    });
    if (!withRadius) {
      faults.push_back("ready at " + Seconds(change.time) + " without a fix with an error radius");
    }
  }
  return faults;
}

Faults JudgePositions(const std::vector<Report>& reports) {
  if (reports.empty()) return {"there is no report"};
  Faults faults;
  for (const Report& report : reports) {
    if (Within(report.latitude, 90) && Within(report.longitude, 180)) continue;
    faults.push_back("a report without a position at " + Seconds(report.time));
  }
  return faults;
}

Faults FindingsOfRule(const std::vector<std::string>& findings, std::string_view rule) {
  Faults faults;
  std::ranges::copy_if(findings, std::back_inserter(faults),
                       [&](const std::string& finding) { return Breaks(finding, rule); });
  return faults;
}

Faults FindingsOfNoRule(const std::vector<std::string>& findings) {
  Faults faults;
  std::ranges::copy_if(findings, std::back_inserter(faults), [](const std::string& finding) {
    return std::ranges::none_of(rule::kAll,
                                [&](std::string_view rule) { return Breaks(finding, rule); });
  });
  return faults;
}

Faults operator+(Faults left, const Faults& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

}  // namespace bench::acceptance
