// What is done to the driver in a run, as data: a time, a deed and its numbers.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/Outcome.h"

namespace soak {

using bench::Millis;

enum class Deed {
  kConnect,      // client
  kLeave,        // client; unsubscribes first
  kVanish,       // client; does not
  kSubscribe,    // client
  kUnsubscribe,  // client
  kInterval,     // client, milliseconds
  kAccuracy,     // client, value
  kGet,          // client; every property there is, and one that is none
  kSet,          // client, which of kWrites
  kRead,         // client
  kLists,        // client; what the sensor supports
  kRadio,        // state: 0 on, 1 to 6 off, 7 none
  kRadioQuery,   // which of the two readable values
  kRadioStore,   // state
  kOddRequest,   // which of kOddCodes
  kClear,        // client, by which of the two properties
  kInitAgain,    // client
  kSilent,       // milliseconds
  kLoseFix,      // milliseconds
  kGarbage,      // bytes
  kStray,        // which of kStrayLines
  kSim,          // which of kSims
  kRestart,
  kEcho,    // 0 off, 1 on
  kCut,     // bytes, 0 whole
  kShred,   // seed
  kJoin,    // milliseconds
  kStall,   // control requests
  kReact,   // which of kCommands, reaction, count, delay
  kForm,    // 0 to 3
  kShape,   // 0 or 1
  kSleep,   // the power goes down
  kWake,    // and up
  kConfig,  // which of kConfigs
  kCalm,    // everything is put right and the reports have to come again
  kUnplug,
  kStop,
};

struct Decision {
  Millis at = 0;
  Deed deed = Deed::kStop;
  std::array<std::int64_t, 4> numbers{};

  bool operator==(const Decision&) const = default;
};

inline constexpr int kClients = 5;

/// "12.345 interval 2 5000".
std::string DecisionText(const Decision& decision);
/// Reads a line of the same form; fails with what is wrong with it.
bench::Outcome<Decision> ReadDecision(std::string_view line);

/// One run: the seed gives the world's setting, the decisions are what happens in it.
struct Plan {
  std::uint64_t seed = 0;
  std::vector<Decision> decisions;
};

std::string PlanText(const Plan& plan);
/// "seed N" and then a decision a line; `#` starts a comment. Fails with name, line and what is
/// wrong.
bench::Outcome<Plan> ReadPlan(std::string_view text, const std::string& name);

}  // namespace soak
