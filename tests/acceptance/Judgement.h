// What is right and wrong in what was observed of a sensor. Knows of no driver.
#pragma once

#include <string>
#include <vector>

#include "workbench/sensorapi/Report.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench::acceptance {

/// What is wrong, one line each; empty when nothing is.
using Faults = std::vector<std::string>;

/// What the moments of data events are judged by, in milliseconds.
struct Pace {
  Millis interval = 0;
  Millis until = 0;  // the end of the observation
  Millis minimum = 1000;
};

/// Every gap within a fifth of the interval; none below the minimum; none above twice the interval,
/// that up to the end of the observation included. One event alone proves no interval.
Faults JudgePace(const std::vector<Millis>& events, const Pace& pace);
/// Only that no gap is above twice the interval, from `from` on.
Faults JudgeLateness(Millis from, const std::vector<Millis>& events, const Pace& pace);

/// "double", "empty", …
std::string TypeName(VARTYPE type);
/// `what` has to be of that type; with `mayBeEmpty` VT_EMPTY does too.
Faults JudgeType(const std::string& what, VARTYPE expected, VARTYPE actual,
                 bool mayBeEmpty = false);

/// The states raised have to be these, in this order.
Faults JudgeStates(const std::vector<StateChange>& states,
                   const std::vector<SensorState>& expected);
/// Each time the sensor gets ready a report with an error radius above 0 comes with it, and no
/// report comes before it was ready first.
Faults JudgeReady(const std::vector<StateChange>& states, const std::vector<Report>& reports);
/// Every report has a latitude and a longitude on the globe, and there is one.
Faults JudgePositions(const std::vector<Report>& reports);

/// Those findings that break this rule: each begins with the rule's name and a colon.
Faults FindingsOfRule(const std::vector<std::string>& findings, std::string_view rule);
/// Those that break none of the named rules.
Faults FindingsOfNoRule(const std::vector<std::string>& findings);

/// Joins two lists of faults.
Faults operator+(Faults left, const Faults& right);

}  // namespace bench::acceptance
