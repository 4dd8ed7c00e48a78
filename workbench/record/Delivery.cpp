#include "workbench/record/Delivery.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <utility>

namespace bench {

namespace {

constexpr Millis kSecond = 1000;
constexpr Millis kLook = 250;

Utc TimeOf(const FixOnItsWay& fix) {
  return fix.sent.fix.time;
}

std::string TimeText(Utc time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  return UtcText(ToFileTime({.year = static_cast<int>(date.year()),
                             .month = static_cast<unsigned>(date.month()),
                             .day = static_cast<unsigned>(date.day()),
                             .hour = static_cast<unsigned>(clock.hours().count()),
                             .minute = static_cast<unsigned>(clock.minutes().count()),
                             .second = static_cast<unsigned>(clock.seconds().count()),
                             .millisecond = 0}));
}

/// As the driver counts: whole seconds in 32 bits, so that a time that went back is far away.
std::uint32_t Age(Utc from, Utc to) {
  return static_cast<std::uint32_t>(std::chrono::floor<std::chrono::seconds>(to - from).count());
}

/// Gives each report its fix: the newest one that had arrived, that no earlier report is newer
/// than, and whose values are the report's.
class Matching {
 public:
  Matching(const std::vector<FixOnItsWay>& fixes, const std::vector<Report>& reports,
           std::vector<std::string>& faults)
      : fixes_(fixes), reported_(fixes.size(), false) {
    for (const Report& report : reports) Match(report, faults);
  }

  bool Reported(std::size_t fix) const { return reported_[fix]; }

 private:
  void Match(const Report& report, std::vector<std::string>& faults) {
    std::size_t end = next_;
    while (end < fixes_.size() && fixes_[end].arrived && *fixes_[end].arrived <= report.time) ++end;
    for (std::size_t i = end; i > next_; --i) {
      if (!Differences(fixes_[i - 1].sent.fix, report).empty()) continue;
      reported_[i - 1] = true;
      next_ = i;
      return;
    }
    faults.push_back(Why(report, end));
  }

  std::string Why(const Report& report, std::size_t end) const {
    const std::string which =
        "the report of " + (report.timestamp ? UtcText(*report.timestamp) : "an unknown time");
    if (end == 0) return which + " came before any fix";
    const auto differences = Differences(fixes_[end - 1].sent.fix, report);
    if (differences.empty()) return which + " came twice";
    return which + " is not what the modem sent: " + differences.front();
  }

  const std::vector<FixOnItsWay>& fixes_;
  std::vector<bool> reported_;
  std::size_t next_ = 0;  // the first fix that the next report may be of
};

/// The states of the sensor over time.
class States {
 public:
  explicit States(const std::vector<StateChange>& changes) : changes_(changes) {}

  bool ReadyAt(Millis time) const {
    bool ready = false;
    for (const StateChange& change : changes_) {
      if (change.time > time) break;
      ready = change.state == SENSOR_STATE_READY;
    }
    return ready;
  }

  bool EntersReady(Millis from, Millis before) const {
    return std::ranges::any_of(changes_, [&](const StateChange& change) {
      return change.state == SENSOR_STATE_READY && change.time >= from && change.time < before;
    });
  }

 private:
  const std::vector<StateChange>& changes_;
};

}  // namespace

DeliveryResult CheckDelivery(const std::vector<FixOnItsWay>& fixes,
                             const std::vector<StateChange>& states,
                             const std::vector<Report>& reports, const DeliveryTerms& terms) {
  DeliveryResult result;
  const Matching matching(fixes, reports, result.faults);
  const States sensor(states);
  const FixOnItsWay* last = nullptr;  // reported
  for (std::size_t i = 0; i < fixes.size() && fixes[i].arrived; ++i) {
    const FixOnItsWay& fix = fixes[i];
    const Millis arrived = *fix.arrived;
    const Millis next =
        i + 1 < fixes.size() && fixes[i + 1].arrived ? *fixes[i + 1].arrived : kForever;
    const bool reported = matching.Reported(i);
    const FixOnItsWay* const before = std::exchange(last, reported ? &fix : last);
    if (arrived < terms.from || arrived > terms.until || fix.sent.straggler) continue;
    ++result.sent;

    const bool makesReady = sensor.EntersReady(arrived, next);
    const std::uint32_t age = before == nullptr ? UINT32_MAX : Age(TimeOf(*before), TimeOf(fix));
    const bool due =
        makesReady || (sensor.ReadyAt(arrived) && std::int64_t{age} * kSecond >= terms.interval);
    if (due) ++result.due;
    if (due && reported) ++result.delivered;
    if (due && !reported && next != arrived) {
      result.faults.push_back("the fix of " + TimeText(TimeOf(fix)) + " was due and not delivered");
    }
    if (!due && reported) {
      result.faults.push_back("the fix of " + TimeText(TimeOf(fix)) +
                              " was delivered before its time");
    }
  }
  return result;
}

Millis LongestSilence(const std::vector<FixOnItsWay>& fixes, Millis from, Millis until,
                      const std::function<bool(Millis)>& hasFix) {
  Millis longest = 0;
  Millis silence = 0;
  auto fix = fixes.begin();
  for (Millis now = from; now <= until; now += kLook) {
    silence = hasFix(now) ? silence + kLook : 0;
    for (; fix != fixes.end() && fix->sent.at <= now; ++fix) silence = 0;
    longest = std::max(longest, silence);
  }
  return longest;
}

Millis IntervalInForce(const std::vector<unsigned long>& intervals) {
  Millis smallest = 0;
  for (const unsigned long interval : intervals) {
    const Millis whole = static_cast<Millis>(interval / 1000) * kSecond;
    if (whole > 0 && (smallest == 0 || whole < smallest)) smallest = whole;
  }
  return smallest == 0 ? kSecond : smallest;
}

}  // namespace bench
