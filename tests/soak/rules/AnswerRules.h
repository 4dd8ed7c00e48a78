// Every request of a client is answered, in time and rightly.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "tests/soak/rules/Breaches.h"

namespace soak {

/// Whether an interval is to be accepted.
constexpr bool IsAcceptable(std::int64_t milliseconds) {
  return milliseconds == 0 || milliseconds >= 1000;
}

/// Rules:
///   answered           a request is answered, within its own limit of simulated time;
///   interval-accepted  a report interval is refused from 1 to 999 ms and accepted otherwise.
class AnswerRules {
 public:
  explicit AnswerRules(Breaches& breaches) : breaches_(breaches) {}

  void Asked(Millis at, int id, std::string what, Millis limit);
  void Answered(Millis at, int id);
  void IntervalAnswered(Millis at, std::int64_t milliseconds, bool accepted);
  /// The run is over: what is still open has no answer.
  void Ended(Millis at);

 private:
  struct Open {
    Millis since;
    std::string what;
    Millis limit;
  };

  Breaches& breaches_;
  std::map<int, Open> open_;
};

}  // namespace soak
