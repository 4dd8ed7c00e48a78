// No report comes faster than the fastest interval in force.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "tests/soak/rules/Breaches.h"

namespace soak {

/// Rule:
///   report-spacing  the fix of a report is at least the interval in force, in whole seconds, after
///                   that of the report before; time that goes back counts as a long time. Without
///                   an interval every fix is reported, and the fix that makes the sensor ready is
///                   reported in any case.
///
/// From outside it can be seen when an interval is wished for and when the driver must have come to
/// it, not when it did. So the rules keep every interval that may be in force, and hold a report
/// against the smallest. Times of the simulation; the client numbers are the caller's.
class SpacingRules {
 public:
  explicit SpacingRules(Breaches& breaches) : breaches_(breaches) {}

  // ---- What clients do: at the beginning of their call, each followed by its Done at the end.
  void Connected(int client) { clients_[client] = {}; }
  void Left(Millis at, int client);
  void IntervalSet(Millis at, int client, std::int64_t milliseconds);
  void Subscribed(Millis at, int client, bool subscribed);
  /// A read may bring the fake client, with its 1000 ms.
  void DataRequested(Millis at);
  void Done(Millis at);

  // ---- What the host does.
  /// The radio is to be switched, or was switched off.
  void RadioSwitching(Millis at, bool on);
  /// It was switched on.
  void RadioSwitchedOn(Millis at);
  void PoweredUp(Millis at);

  // ---- What the driver does.
  void Written(Millis at, std::string_view line);
  void Said(std::string_view line);
  void StatePosted(Millis at, int state);
  void Reported(Millis at, std::int64_t fixTime);

  /// Whether an interval of at most 8000 ms is in force for certain.
  bool ShortForCertain(Millis at);
  /// The smallest interval that may be in force; 0 for none at all.
  std::int64_t Smallest(Millis at);

 private:
  struct Client {
    std::optional<std::int64_t> interval;  // milliseconds
    bool subscribed = false;
  };
  static constexpr std::int64_t kNone = 0;
  static constexpr int kAttempts = 7;

  std::int64_t Required() const;
  /// The driver is told to look at the intervals again.
  void Refresh(Millis at);
  /// Moves the rules' knowledge on to `at`.
  void Settle(Millis at);
  void SettleFakeClient(Millis at);
  void Confirm();
  void AddFakeClient(Millis at);
  bool StartIsSure() const { return startAccepted_ && startWrites_ < kAttempts; }
  bool Refreshable() const { return state_ == 0 || state_ == 2 || state_ == 3; }

  Breaches& breaches_;
  std::map<int, Client> clients_;
  std::set<std::int64_t> possible_ = {kNone};

  int state_ = 5;
  Millis unrefreshableUntil_ = 0;  // the last time that the state was none in which refreshes count
  bool radioOnComes_ = false;      // the state that comes will be there before the refresh
  Millis lastWritten_ = 0;
  int underWay_ = 0;                 // calls of clients
  bool changed_ = false;             // one of them may have had a refresh posted
  std::optional<Millis> refreshAt_;  // asked for and not confirmed
  std::optional<Millis> since_;      // the first doubt that is not confirmed
  bool wholly_ = false;              // by more than the fake client's end
  bool needsStart_ = false;          // it is confirmed by a start only
  bool fakeAdded_ = false;           // 1000 ms would not be possible without the fake client
  std::optional<Millis> fakeAsked_;  // a fake client may have come since
  std::optional<Millis> fakeUntil_;  // and may stay until then

  Millis startWritten_ = -1;  // the last periodic request
  int startWrites_ = 0;
  bool startIsLast_ = false;
  bool startAccepted_ = false;
  bool startFailed_ = false;  // the last one whose end is known, as far as one can see

  Millis readyAt_ = -1;
  std::optional<std::int64_t> lastFixTime_;
};

}  // namespace soak
