// The rules that were broken in a run.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/clock/Clock.h"

namespace soak {

using bench::Millis;

struct Breach {
  std::string rule;
  Millis at = 0;
  std::string what;
};

/// Not for several threads: whoever shares it holds a lock.
class Breaches {
 public:
  void Add(std::string_view rule, Millis at, std::string what) {
    all_.push_back({.rule = std::string(rule), .at = at, .what = std::move(what)});
  }
  const std::vector<Breach>& All() const { return all_; }

 private:
  std::vector<Breach> all_;
};

}  // namespace soak
