// The worker's four timers.

#include "sensor/Timers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace stelvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Runs the timers down and gives those that fired, in their order.
std::vector<SensorTimer> Elapse(Timers& timers, std::uint32_t milliseconds) {
  std::vector<SensorTimer> fired;
  timers.Elapse(milliseconds, [&fired](SensorTimer timer) { fired.push_back(timer); });
  return fired;
}

TEST(Timers, AllOffWaitsForever) {
  Timers timers;
  EXPECT_EQ(timers.Shortest(), 0xFFFFFFFFU);
}

TEST(Timers, TheShortestDecidesHowLongToWait) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 6000);
  timers.Arm(TIMER_DATA_NO_LONGER_FRESH, 2000);
  timers.Arm(TIMER_CHECK_FIX_LOST, 18000);
  EXPECT_EQ(timers.Shortest(), 2000U);
}

TEST(Timers, ATimerFiresFiftyMillisecondsEarly) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 1000);
  EXPECT_THAT(Elapse(timers, 949), IsEmpty());
  EXPECT_EQ(timers.Shortest(), 51U);
  EXPECT_THAT(Elapse(timers, 1), ElementsAre(TIMER_PRGN));
}

TEST(Timers, OneThatIsLeftFiftyOneMillisecondsIsRunDownFurther) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 1000);
  EXPECT_THAT(Elapse(timers, 949), IsEmpty());
  EXPECT_THAT(Elapse(timers, 0), IsEmpty());
  EXPECT_EQ(timers.Shortest(), 51U);
}

TEST(Timers, ThirtyMillisecondsAreDueOnTheNextPassWhateverWokeIt) {
  Timers timers;
  timers.Arm(TIMER_CHECK_FIX_LOST, 30);
  EXPECT_THAT(Elapse(timers, 0), ElementsAre(TIMER_CHECK_FIX_LOST));
}

TEST(Timers, AFiredTimerIsOff) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 10);
  EXPECT_THAT(Elapse(timers, 10), ElementsAre(TIMER_PRGN));
  EXPECT_EQ(timers.Shortest(), kTimerOff - 10) << "what was off before was counted down";
  EXPECT_THAT(Elapse(timers, 10), IsEmpty());
}

TEST(Timers, DueTimersFireInTheOrderOfTheirNumbers) {
  Timers timers;
  timers.Arm(TIMER_CHECK_FIX_LOST, 1);
  timers.Arm(TIMER_PRGN, 3);
  timers.Arm(TIMER_REMOVE_FAKE_CLIENT, 2);
  timers.Arm(TIMER_DATA_NO_LONGER_FRESH, 4);
  EXPECT_THAT(Elapse(timers, 100), ElementsAre(TIMER_DATA_NO_LONGER_FRESH, TIMER_REMOVE_FAKE_CLIENT,
                                               TIMER_PRGN, TIMER_CHECK_FIX_LOST));
}

TEST(Timers, AHandlerMayArmItsOwnTimerAgain) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 6000);
  int fired = 0;
  timers.Elapse(6000, [&](SensorTimer timer) {
    ++fired;
    timers.Arm(timer, 9000);
  });
  EXPECT_EQ(fired, 1);
  EXPECT_EQ(timers.Shortest(), 9000U);
}

TEST(Timers, ATimerThatAHandlerArmsIsRunDownInTheSamePassWhenItsTurnIsStillToCome) {
  Timers timers;
  timers.Arm(TIMER_DATA_NO_LONGER_FRESH, 100);
  timers.Elapse(100, [&](SensorTimer) { timers.Arm(TIMER_PRGN, 1000); });
  EXPECT_EQ(timers.Shortest(), 900U);
}

TEST(Timers, TheHandlerFindsItsTimerOff) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 100);
  std::uint32_t seen = 0;
  timers.Elapse(100, [&](SensorTimer) { seen = timers.Shortest(); });
  EXPECT_EQ(seen, kTimerOff - 100) << "what was off before was counted down";
}

TEST(Timers, AnOffTimerIsCountedDownAndFiresAfterFortyNinePointSevenDays) {
  Timers timers;
  const std::uint32_t half = 0x80000000;
  EXPECT_THAT(Elapse(timers, half), IsEmpty());
  EXPECT_EQ(timers.Shortest(), 0x7FFFFFFFU);
  EXPECT_THAT(Elapse(timers, 0x7FFFFFFF - 51), IsEmpty());
  EXPECT_EQ(timers.Shortest(), 51U);
  EXPECT_THAT(Elapse(timers, 1), ElementsAre(TIMER_DATA_NO_LONGER_FRESH, TIMER_REMOVE_FAKE_CLIENT,
                                             TIMER_PRGN, TIMER_CHECK_FIX_LOST));
}

TEST(Timers, TheLongestPassDoesNotRunOver) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 5000);
  EXPECT_THAT(Elapse(timers, 0xFFFFFFFF),
              ElementsAre(TIMER_DATA_NO_LONGER_FRESH, TIMER_REMOVE_FAKE_CLIENT, TIMER_PRGN,
                          TIMER_CHECK_FIX_LOST));
}

TEST(Timers, AllOffForgetsWhatWasArmed) {
  Timers timers;
  timers.Arm(TIMER_PRGN, 10);
  timers.AllOff();
  EXPECT_EQ(timers.Shortest(), kTimerOff);
}

}  // namespace
}  // namespace stelvane
