#include "tests/soak/rules/SpacingRules.h"

#include <algorithm>
#include <string>
#include <utility>

namespace soak {

namespace {

constexpr Millis kAttempt = 1000;
constexpr Millis kUnderWay = 1400;  // an attempt's second, and the pause between two commands
constexpr std::int64_t kFastest = 1000;
constexpr std::int64_t kLongestPeriodic = 8000;
constexpr Millis kFakeStays = 8100;  // at the most, since it came

bool IsPeriodicStart(std::string_view line) {
  constexpr std::string_view kBegin = "AT+XLCSLSR=";
  return line.starts_with(kBegin) && line.find(",,,,,,,") == std::string_view::npos;
}

}  // namespace

std::int64_t SpacingRules::Required() const {
  std::int64_t smallest = kNone;
  bool any = false;
  for (const auto& [number, client] : clients_) {
    if (!client.subscribed || !client.interval) continue;
    any = true;
    // Whole seconds, at least one; 0 is as fast as possible and yields to any other.
    const std::int64_t interval = *client.interval / 1000 * 1000;
    if (*client.interval == 0) continue;
    const std::int64_t kept = std::max(interval, kFastest);
    smallest = smallest == kNone ? kept : std::min(smallest, kept);
  }
  return any && smallest == kNone ? kFastest : smallest;
}

void SpacingRules::Refresh(Millis at) {
  const std::int64_t required = Required();
  possible_.insert(required);
  if (required == kFastest) fakeAdded_ = false;
  refreshAt_ = at;
  if (!since_) since_ = at;
  wholly_ = true;
  changed_ = true;
}

void SpacingRules::Left(Millis at, int client) {
  Settle(at);
  ++underWay_;
  clients_.erase(client);
  Refresh(at);
}

void SpacingRules::IntervalSet(Millis at, int client, std::int64_t milliseconds) {
  Settle(at);
  ++underWay_;
  clients_[client].interval = milliseconds;
  Refresh(at);
}

void SpacingRules::Subscribed(Millis at, int client, bool subscribed) {
  Settle(at);
  ++underWay_;
  // The driver passes over what is so already.
  if (std::exchange(clients_[client].subscribed, subscribed) == subscribed) return;
  if (clients_[client].interval) {
    Refresh(at);
  } else {
    AddFakeClient(at);
  }
}

void SpacingRules::DataRequested(Millis at) {
  Settle(at);
  ++underWay_;
  AddFakeClient(at);
}

void SpacingRules::AddFakeClient(Millis at) {
  if (possible_.insert(kFastest).second) fakeAdded_ = true;
  fakeAsked_ = at;
  if (!since_) since_ = at;
}

void SpacingRules::Done(Millis at) {
  Settle(at);
  --underWay_;
  if (std::exchange(changed_, false)) Refresh(at);
  changed_ = false;
  if (fakeAsked_) fakeAsked_ = at;
}

void SpacingRules::RadioSwitching(Millis at, bool on) {
  Settle(at);
  // A switch off forgets the interval, whether the modem obeys or not.
  possible_.insert(kNone);
  refreshAt_.reset();
  wholly_ = false;
  radioOnComes_ = on;
}

void SpacingRules::RadioSwitchedOn(Millis at) {
  Settle(at);
  Refresh(at);
  radioOnComes_ = true;
}

void SpacingRules::PoweredUp(Millis at) {
  Settle(at);
  possible_.insert(kNone);
  Refresh(at);
  needsStart_ = true;
}

void SpacingRules::Written(Millis at, std::string_view line) {
  Settle(at);
  if (IsPeriodicStart(line)) {
    const Millis since = at - lastWritten_;
    const bool again = startIsLast_ && since >= kAttempt && since <= kUnderWay;
    startWrites_ = again ? startWrites_ + 1 : 1;
    startWritten_ = at;
    startAccepted_ = false;
    startIsLast_ = true;
    // Nothing is written after the last attempt's second, at the end of which no interval is left.
    if (startWrites_ == kAttempts) possible_.insert(kNone);
  } else {
    if (startIsLast_ && !StartIsSure()) possible_.insert(kNone);
    startIsLast_ = false;
  }
  lastWritten_ = at;
}

void SpacingRules::Said(std::string_view line) {
  if (startIsLast_ && line.starts_with("+XLCSLSR: request id")) startAccepted_ = true;
}

void SpacingRules::StatePosted(Millis at, int state) {
  Settle(at);
  const bool radioCameOn = state_ == 1 && radioOnComes_;
  if (!Refreshable() && !radioCameOn) unrefreshableUntil_ = at;
  state_ = state;
  if (state == 0) readyAt_ = at;
}

void SpacingRules::SettleFakeClient(Millis at) {
  if (fakeAsked_ && at > std::max(*fakeAsked_, lastWritten_) + kUnderWay) {
    // It came by then at the latest, if it came at all.
    fakeUntil_ = std::max(*fakeAsked_, lastWritten_) + kUnderWay + kFakeStays;
    fakeAsked_.reset();
  }
  if (fakeAsked_ || !fakeUntil_ || at <= *fakeUntil_) return;
  refreshAt_ = std::max(refreshAt_.value_or(0), *fakeUntil_);
  fakeUntil_.reset();
}

void SpacingRules::Settle(Millis at) {
  SettleFakeClient(at);
  if (!refreshAt_ || fakeAsked_ || fakeUntil_ || underWay_ > 0) return;
  if (!Refreshable() || unrefreshableUntil_ >= *refreshAt_) return;
  if (at > std::max(*refreshAt_, lastWritten_) + kUnderWay) Confirm();
}

void SpacingRules::Confirm() {
  const bool started = startWritten_ >= since_.value_or(*refreshAt_);
  if (needsStart_ && !started) return;
  const std::int64_t required = Required();
  const bool mixed =
      *possible_.begin() <= kLongestPeriodic && *possible_.rbegin() > kLongestPeriodic && wholly_;
  if (wholly_) {
    possible_ = {required};
  } else if (fakeAdded_) {
    possible_.erase(kFastest);
  }
  if (possible_.empty()) possible_.insert(required);
  // A start that failed leaves no interval, until one does not fail.
  if (started) startFailed_ = !StartIsSure();
  if (startFailed_) possible_.insert(kNone);
  fakeAdded_ = false;
  refreshAt_.reset();
  since_.reset();
  wholly_ = false;
  needsStart_ = false;
  // A request for data on the way to another interval may bring the fake client.
  if (mixed && required != kNone && required <= kLongestPeriodic) AddFakeClient(lastWritten_);
}

std::int64_t SpacingRules::Smallest(Millis at) {
  Settle(at);
  return *possible_.begin();
}

bool SpacingRules::ShortForCertain(Millis at) {
  Settle(at);
  return *possible_.begin() != kNone && *possible_.rbegin() <= kLongestPeriodic;
}

void SpacingRules::Reported(Millis at, std::int64_t fixTime) {
  Settle(at);
  const bool becameReady = readyAt_ == at;
  readyAt_ = -1;
  if (lastFixTime_ && !becameReady) {
    const auto age = static_cast<std::uint32_t>(fixTime - *lastFixTime_);
    const std::int64_t smallest = *possible_.begin();
    if (std::int64_t{age} * 1000 < smallest) {
      breaches_.Add("report-spacing", at,
                    "a fix " + std::to_string(age) + " s after the last is reported at " +
                        std::to_string(smallest) + " ms");
    }
  }
  lastFixTime_ = fixTime;
}

}  // namespace soak
