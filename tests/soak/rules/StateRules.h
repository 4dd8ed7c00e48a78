// What clients see of the sensor's state.
#pragma once

#include <map>
#include <vector>

#include "tests/soak/rules/Breaches.h"

namespace soak {

/// Rules:
///   state-agreement  a client that asks for the state is told the one posted last;
///   state-road       each posted state is another one, by a way that the states' table has.
/// States are the Sensor API's numbers; before the first one is posted it is 5, error.
class StateRules {
 public:
  explicit StateRules(Breaches& breaches) : breaches_(breaches) {}

  void Posted(Millis at, int state);
  /// A request for the state went out; `id` is its own.
  void Asked(Millis at, int id);
  /// Its answer. Whatever was the state between the two is right.
  void Told(Millis at, int id, int state);

  /// The device went away meanwhile.
  void NotTold(int id) { seen_.erase(id); }

  int State() const { return state_; }

 private:
  Breaches& breaches_;
  int state_ = 5;
  std::map<int, std::vector<int>> seen_;  // by request: the states since it went out
};

}  // namespace soak
