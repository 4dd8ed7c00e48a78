// What arms the worker's timers and turns them off, and when they fire.

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using SensorTimers = SensorTest;

TEST_F(SensorTimers, AFixInStateReadyArmsTheEndOfItsFreshnessAndTheCheck) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  RunFor(5000);
  Mark();
  SayFix();
  EXPECT_THAT(Log(Doing::kArmed),
              ElementsAre("TIMER_DATA_NO_LONGER_FRESH 2000", "TIMER_CHECK_FIX_LOST 10000"));
}

TEST_F(SensorTimers, AFixThatIsNotReportedArmsOnlyTheEndOfItsFreshness) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  RunFor(3000);
  Mark();
  SayFix();
  EXPECT_THAT(Log(Doing::kArmed), ElementsAre("TIMER_DATA_NO_LONGER_FRESH 2000"));
}

TEST_F(SensorTimers, WithoutAnIntervalTheCheckIsArmedWithFortyNinePointSevenDaysAndNotOff) {
  StartSensor();
  const auto client = PlainSubscriber();
  Mark();
  SayFix();
  EXPECT_THAT(Log(Doing::kArmed), Contains("TIMER_CHECK_FIX_LOST 4294967294"));
  EXPECT_THAT(Log(Doing::kTurnedOff), IsEmpty());
}

TEST_F(SensorTimers, AnEngineErrorWithoutAnIntervalArmsTheCheckLikewise) {
  StartSensor();
  const auto client = Connect();
  Mark();
  SayError();
  EXPECT_THAT(Log(Doing::kArmed), ElementsAre("TIMER_CHECK_FIX_LOST 4294967294"));
}

TEST_F(SensorTimers, AChangeToALongIntervalTurnsTheCheckOffAndArmsBothAnew) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(9000).Accepted());
  Settle();
  EXPECT_THAT(Log(Doing::kTurnedOff), ElementsAre("TIMER_CHECK_FIX_LOST"));
  EXPECT_THAT(Log(Doing::kArmed), ElementsAre("TIMER_PRGN 6000", "TIMER_CHECK_FIX_LOST 18000"));
}

TEST_F(SensorTimers, AChangeFromALongIntervalTurnsItsTimerOff) {
  StartSensor();
  const auto client = Subscriber(9000);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_THAT(Log(Doing::kTurnedOff), ElementsAre("TIMER_PRGN", "TIMER_CHECK_FIX_LOST"));
  EXPECT_THAT(Log(Doing::kArmed), ElementsAre("TIMER_CHECK_FIX_LOST 10000"));
}

TEST_F(SensorTimers, WhenNobodyWantsReportsAnyMoreTheCheckStaysOff) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kTurnedOff), ElementsAre("TIMER_CHECK_FIX_LOST", "TIMER_CHECK_FIX_LOST"));
  EXPECT_THAT(Log(Doing::kArmed), IsEmpty());
}

TEST_F(SensorTimers, ARefreshThatChangesNothingPutsTheCheckOff) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  RunUntil(5000);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_THAT(Log(Doing::kArmed), ElementsAre("TIMER_CHECK_FIX_LOST 10000"));
  RunUntil(16'000);
  EXPECT_THAT(TimesOfTimer("TIMER_CHECK_FIX_LOST"), ElementsAre(15'000));
}

TEST_F(SensorTimers, APeriodicRequestThatIsRefusedTwiceLeavesTheCheckOff) {
  StartSensor();
  const auto client = Connect();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  modem().Refuse(Periodic(5), 2);
  Mark();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kTurnedOff), ElementsAre("TIMER_CHECK_FIX_LOST"));
  EXPECT_THAT(Log(Doing::kArmed), IsEmpty());
}

TEST_F(SensorTimers, TheTimerOfALongIntervalIsArmedAgainWithTheWholeInterval) {
  StartSensor();
  const auto client = Subscriber(9000);
  Mark();
  RunFor(6001);
  EXPECT_THAT(Log(Doing::kArmed), ElementsAre("TIMER_PRGN 9000"));
}

// The pass of the loop that sees the stop runs the timers down once more.
TEST_F(SensorTimers, ATimerThatIsDueWhenTheDeviceStopsFiresAndItsEventIsNotHandled) {
  StartSensor();
  const auto client = Subscriber(9000);
  const Millis subscribed = clock_.Now() - 1;
  RunUntil(subscribed + 5960);
  Mark();
  rig().Shutdown();
  EXPECT_THAT(TimesOfTimer("TIMER_PRGN"), ElementsAre(subscribed + 5960));
  EXPECT_THAT(Log(Doing::kPosted), Contains("EV_DATA_REQUESTED"));
  EXPECT_THAT(Log(Doing::kHandled), Not(Contains(testing::StartsWith("EV_DATA_REQUESTED"))));
}

}  // namespace
}  // namespace bench
