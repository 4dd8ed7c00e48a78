// The commands that the simulated modem knows.
#pragma once

#include <string>
#include <string_view>

#include "workbench/modem/GnssEngine.h"
#include "workbench/modem/ModemSnapshot.h"

namespace bench {

struct AtAnswer {
  bool ok = true;
  std::string information;  // the line before the final result; may be empty
  bool restart = false;     // to be done once the answer is out
};

/// What a command may look at and change.
struct AtContext {
  Millis now;
  const ModemOptions& options;
  ModemSnapshot& state;
  GnssEngine& engine;
};

/// Obeys one command line (without its line end) and says what to answer.
AtAnswer Obey(std::string_view line, AtContext& context);

}  // namespace bench
