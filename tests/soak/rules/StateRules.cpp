#include "tests/soak/rules/StateRules.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace soak {

namespace {

constexpr std::array<std::pair<int, int>, 12> kWays = {{
    {5, 3},
    {2, 3},  // somebody wants data
    {2, 0},
    {3, 0},  // a fix
    {3, 2},
    {0, 2},
    {5, 2},  // the engine's error, the last client gone
    {0, 3},  // the fix is lost
    {0, 1},
    {2, 1},
    {3, 1},  // the radio goes off
    {5, 1},
}};
constexpr std::pair<int, int> kRadioOn = {1, 2};

}  // namespace

void StateRules::Posted(Millis at, int state) {
  const std::pair way(state_, state);
  if (way != kRadioOn && std::ranges::find(kWays, way) == kWays.end()) {
    breaches_.Add("state-road", at,
                  "from state " + std::to_string(state_) + " to " + std::to_string(state));
  }
  state_ = state;
  for (auto& [id, states] : seen_) states.push_back(state);
}

void StateRules::Asked(Millis at, int id) {
  seen_[id] = {state_};
}

void StateRules::Told(Millis at, int id, int state) {
  const auto& states = seen_[id];
  if (std::ranges::find(states, state) == states.end()) {
    breaches_.Add(
        "state-agreement", at,
        "told state " + std::to_string(state) + ", posted was " + std::to_string(states.back()));
  }
  seen_.erase(id);
}

}  // namespace soak
