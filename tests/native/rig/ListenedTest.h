// Tests that run twice: with a listener of the driver's trace, and without one.
#pragma once

#include "tests/driver/RigTest.h"

namespace bench {

class ListenedTest : public RigTest, public testing::WithParamInterface<bool> {
 protected:
  /// The module with its device added, and nothing of it prepared.
  Rig& Add() {
    Rig& rig = Load();
    if (GetParam()) rig.redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, ~ULONG{0});
    EXPECT_EQ(rig.host().AddDevice(), S_OK);
    return rig;
  }
  /// The device started, as after RigTest::Start.
  Rig& AddAndStart() {
    Rig& rig = Add();
    EXPECT_EQ(rig.host().Start(), S_OK);
    return rig;
  }
};

/// The two runs of a fixture's tests.
#define LISTENED(Fixture)                                      \
  INSTANTIATE_TEST_SUITE_P(Listener, Fixture, testing::Bool(), \
                           [](const auto& run) { return run.param ? "There" : "Absent"; })

}  // namespace bench
