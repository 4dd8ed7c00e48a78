// One run of a scenario with one mishap, and what came of it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/sweep/Scenarios.h"
#include "tests/sweep/Trial.h"

namespace bench {

struct RunResult {
  std::vector<std::string> findings;
  bool happened = false;             // the mishap came about
  bool prescribed = false;           // the mishap has a prescribed result
  std::string where;                 // a call failed; empty: none did
  std::vector<Trial::Count> counts;  // of the calls that may fail
  std::uint64_t calls = 0;           // at which the device may go
};

RunResult RunOnce(const Scenario& scenario, const Mishap& mishap);

/// What can go wrong in a scenario, by the run of it in which nothing did.
std::vector<Mishap> AllMishaps(const RunResult& counted);

}  // namespace bench
