#include <gtest/gtest.h>
#include "workbench/clock/VirtualClock.h"
using namespace bench;
TEST(VirtualClock, TimeJumpsToTheNextDeadlineWhenAllWait) {
  VirtualClock clock;
  Millis woke = 0;
  { Thread other(clock, [&] { clock.SleepFor(500); woke = clock.Now(); clock.SleepFor(86400000); });
    clock.SleepFor(1000);
    EXPECT_EQ(clock.Now(), 1000); EXPECT_EQ(woke, 500); }
  EXPECT_EQ(clock.Now(), 86400500);
}
