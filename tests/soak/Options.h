// The command line of soak.exe.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/Outcome.h"

namespace soak {

struct Options {
  std::uint64_t firstSeed = 1;
  std::uint64_t seeds = 1;
  bench::Millis total = 0;  // simulated time that the runs have to make up; 0: the seeds' number
  bench::Millis length = 2 * 3'600'000;  // of a run
  std::string replay;                    // a file; empty: the seeds
  bool list = false;                     // prints the plans and runs nothing
  bool reduce = true;
  bool show = false;
  bool help = false;
};

/// `arguments` without the program's name; fails with one line that names what is wrong.
bench::Outcome<Options> ReadOptions(const std::vector<std::string>& arguments);
std::string HelpText();

}  // namespace soak
