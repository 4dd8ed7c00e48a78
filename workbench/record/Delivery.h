// Whether the fixes that the modem sent reached a client as they should.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "workbench/record/SentFixes.h"
#include "workbench/sensorapi/Report.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

/// The fields in which `report` is not what a driver has to make of `sent`, one line each with both
/// values; empty when all 23 agree. Numbers have to be the same to the last bit.
std::vector<std::string> Differences(const GnssFix& sent, const Report& report);

/// What a delivery is judged by.
struct DeliveryTerms {
  Millis interval = 0;  // in force for all clients, in whole seconds
  Millis from = 0;      // since when it was in force and the client subscribed
  Millis until = 0;     // fixes that arrived later are not asked for
};

struct DeliveryResult {
  std::size_t sent = 0;             // fixes that arrived within the terms' time
  std::size_t due = 0;              // of these, the ones that fall on the interval
  std::size_t delivered = 0;        // of the due ones, those that the client got
  std::vector<std::string> faults;  // one line each
};

/// Holds the reports that one client received against the rule: a fix is reported when it makes the
/// sensor ready, and while it is ready when its time is at least the interval, in whole seconds,
/// after that of the fix reported last. Time going back counts as a long time (an unsigned 32-bit
/// difference). A fix that reached the host in the same moment as the next one may be overtaken.
DeliveryResult CheckDelivery(const std::vector<FixOnItsWay>& fixes,
                             const std::vector<StateChange>& states,
                             const std::vector<Report>& reports, const DeliveryTerms& terms);

/// The longest time, in milliseconds, that a receiver with reception went without sending a fix
/// between `from` and `until`. `hasFix` tells whether it has one at a moment.
Millis LongestSilence(const std::vector<FixOnItsWay>& fixes, Millis from, Millis until,
                      const std::function<bool(Millis)>& hasFix);

/// The interval that clients with these report intervals (milliseconds, as they set them) get.
Millis IntervalInForce(const std::vector<unsigned long>& intervals);

}  // namespace bench
