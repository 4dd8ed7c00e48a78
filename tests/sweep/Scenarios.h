// What is done with a device while one thing after another goes wrong.
#pragma once

#include <span>
#include <string_view>

#include "tests/sweep/Trial.h"

namespace bench {

struct Scenario {
  std::string_view name;
  std::string_view what;
  RigOptions (*options)();
  /// Sets up what is outside the driver, before the start; null: nothing.
  void (*prepare)(Trial& trial);
  /// Goes as far as it can; returns early when the device does not run any more.
  void (*run)(Trial& trial);
};

std::span<const Scenario> Scenarios();

}  // namespace bench
