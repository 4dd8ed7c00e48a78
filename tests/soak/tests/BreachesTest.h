// What a rule has found, for a test.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/soak/rules/Breaches.h"

namespace soak {

class RuleTest : public testing::Test {
 protected:
  /// The rules broken so far, in order.
  std::vector<std::string> Broken() const {
    std::vector<std::string> rules;
    for (const Breach& breach : breaches.All()) rules.push_back(breach.rule);
    return rules;
  }

  Breaches breaches;
};

using testing::ElementsAre;
using testing::IsEmpty;

}  // namespace soak
