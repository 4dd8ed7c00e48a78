// Every request of a client is answered in time.
#pragma once

#include <map>
#include <string>

#include "tests/soak/rules/Breaches.h"

namespace soak {

/// Rule:
///   answered  a request is answered, within its own limit of simulated time.
class AnswerRules {
 public:
  explicit AnswerRules(Breaches& breaches) : breaches_(breaches) {}

  void Asked(Millis at, int id, std::string what, Millis limit);
  void Answered(Millis at, int id);
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
