// The command line of sweep.exe.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/modem/Outcome.h"

namespace bench {

struct SweepOptions {
  std::vector<std::string> scenarios;  // by name; empty: all
  std::optional<std::string> mishap;   // as a finding names it; nothing: all
  bool list = false;                   // prints the scenarios
  bool unprescribed = false;
  bool help = false;
};

/// `arguments` without the program's name; fails with one line that names what is wrong.
Outcome<SweepOptions> ReadSweepOptions(const std::vector<std::string>& arguments);
std::string SweepHelpText();

}  // namespace bench
