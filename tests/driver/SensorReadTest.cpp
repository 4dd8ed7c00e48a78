// Data reads, the freshness of data, and fixes that are lost.

#include "tests/driver/SensorReader.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using SensorRead = SensorReader;

TEST_F(SensorRead, FreshDataAreReadAtOnceAndNothingIsPosted) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 1900);
  const Result read = Read();
  EXPECT_EQ(read.result, S_OK);
  EXPECT_EQ(read.took, 0);
  ASSERT_TRUE(read.values);
  ASSERT_THAT(*read.values, SizeIs(1));
  EXPECT_EQ(read.values->front().value, Variant::R8(48.125));
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorRead, DataAreFreshForTwoSeconds) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 2500);
  EXPECT_THAT(TimesOfTimer("TIMER_DATA_NO_LONGER_FRESH"), ElementsAre(fix + 2000));
}

TEST_F(SensorRead, AFixThatIsNotReportedKeepsDataFreshAllTheSame) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 3000);
  SayFix();
  EXPECT_EQ(ReportCount(), 2U);
  RunUntil(fix + 4900);
  EXPECT_EQ(Read().took, 0);
  EXPECT_EQ(Posted("EV_DATA_REQUESTED"), 0U);
  RunUntil(fix + 5500);
  EXPECT_THAT(TimesOfTimer("TIMER_DATA_NO_LONGER_FRESH"), ElementsAre(fix + 2000, fix + 5000));
}

TEST_F(SensorRead, AReadOfStaleDataWaitsForTheNextFix) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 4000);
  const Later next(clock_, fix + 5000, [this] { modem().SayReport(FixAtLatitude(47, 11)); });
  const Result read = Read();
  EXPECT_EQ(read.result, S_OK);
  EXPECT_EQ(read.took, 1000);
  EXPECT_EQ(read.values->front().value, Variant::R8(47));
  EXPECT_EQ(Posted("EV_DATA_REQUESTED"), 1U);
}

TEST_F(SensorRead, AReadInVainGivesTheOldFixAfterEighteenHundredMillisecondsAndTellsOfTheLoss) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 4000);
  const Result read = Read();
  EXPECT_EQ(read.result, S_OK);
  EXPECT_EQ(read.took, 1800);
  EXPECT_THAT(*read.values, SizeIs(1));
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_DATA_REQUESTED", "EV_FIX_LOST"));
  EXPECT_EQ(State(), SENSOR_STATE_INITIALIZING);
}

TEST_F(SensorRead, AReadInVainWithoutAValidFixFailsAndPostsOnlyItsWish) {
  StartSensor();
  client_ = Connect();
  EXPECT_TRUE(client_->SetReportInterval(5000).Accepted());
  Settle();
  // While the worker waits for an answer, an engine error and then a fix arrive: the sensor is
  // ready with a fix that the error has taken the mark from.
  modem().Withhold(Periodic(5), 1);
  EXPECT_EQ(client_->Subscribe(), S_OK);
  Settle();
  modem().Say("+XLCSLSR: ERROR: no position");
  modem().SayReport(FixNow());
  modem().Say("OK");
  Settle();
  ASSERT_EQ(State(), SENSOR_STATE_READY);
  RunFor(4000);
  Mark();
  const Result read = Read();
  EXPECT_EQ(read.result, E_FAIL);
  EXPECT_EQ(read.took, 1800);
  ASSERT_TRUE(read.values);
  EXPECT_THAT(*read.values, IsEmpty());
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_DATA_REQUESTED"));
}

TEST_F(SensorRead, BeforeTheFirstFixAReadFailsAtOnce) {
  StartSensor();
  client_ = Connect();
  const Result read = Read();
  EXPECT_EQ(read.result, E_FAIL);
  EXPECT_EQ(read.took, 0);
  ASSERT_TRUE(read.values);
  EXPECT_THAT(*read.values, IsEmpty());
}

TEST_F(SensorRead, WhenTheSensorStopsBeingReadyTheReadEndsWithTheOldFix) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 9000);
  const Result read = Read();  // the loss of the fix is noticed at ten seconds
  EXPECT_EQ(read.result, S_OK);
  EXPECT_EQ(read.took, 1000);
  EXPECT_THAT(*read.values, SizeIs(1));
  EXPECT_EQ(Posted("EV_FIX_LOST"), 1U);
}

// Whether the old fix still counts then is a race that nobody decides.
TEST_F(SensorRead, WhenTheRadioGoesOffTheReadEnds) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 4000);
  const Later off(clock_, fix + 4500, [this] { SwitchRadio(false); });
  EXPECT_EQ(Read().took, 500);
  Settle();
  EXPECT_EQ(State(), SENSOR_STATE_NOT_AVAILABLE);
}

TEST_F(SensorRead, ThePolesAndTheDateLineAreOnEarth) {
  Ready(1000);
  for (const auto& [latitude, longitude] :
       {std::pair(90.0, 180.0), std::pair(-90.0, -180.0), std::pair(0.0, 0.0)}) {
    RunFor(1000);
    SayFix(FixAtLatitude(latitude, longitude));
    const Result read = Read();
    EXPECT_EQ(read.result, S_OK);
    EXPECT_EQ(read.values->front().value, Variant::R8(latitude));
  }
}

TEST_F(SensorRead, FreshCoordinatesThatAreNoPlaceOnEarthAreUnexpected) {
  Ready(1000);
  for (const auto& [latitude, longitude] : {std::pair(90.5, 0.0), std::pair(-90.5, 0.0),
                                            std::pair(0.0, 180.5), std::pair(0.0, -180.5)}) {
    RunFor(1000);
    SayFix(FixAtLatitude(latitude, longitude));
    const Result read = Read();
    EXPECT_EQ(read.result, E_UNEXPECTED);
    ASSERT_TRUE(read.values);
    EXPECT_THAT(*read.values, IsEmpty());
  }
}

TEST_F(SensorRead, CoordinatesThatAreNoPlaceOnEarthLeaveTheValuesEmptyWhenTheSensorIsNotReady) {
  Ready(5000);
  RunFor(5000);
  SayFix(FixAtLatitude(91, 0));
  RunFor(10'000);
  ASSERT_EQ(State(), SENSOR_STATE_INITIALIZING);
  const Result read = Read();
  EXPECT_EQ(read.result, S_OK);
  ASSERT_TRUE(read.values);
  EXPECT_THAT(*read.values, IsEmpty());
}

TEST_F(SensorRead, CoordinatesThatAreNoPlaceOnEarthAreUnexpectedAfterAReadInVainToo) {
  Ready(5000);
  RunFor(5000);
  SayFix(FixAtLatitude(91, 0));
  RunFor(4000);
  Mark();
  EXPECT_EQ(Read().result, E_UNEXPECTED);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 1U);
}

TEST_F(SensorRead, AFixThatArrivesBeforeTheWorkerSeesALossMakesTheLossStale) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 2500);
  modem().Withhold("AT+XLSRSTOP");
  EXPECT_TRUE(client_->SetReportInterval(4000).Accepted());  // the worker waits for the stop
  Settle();
  EXPECT_EQ(Read().took, 1800);
  modem().SayReport(FixNow());
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING", "EV_DATA_REQUESTED",
                                               "EV_FIX_LOST", "EV_DATA_ARRIVED"));
  modem().ObeyAll();
  modem().Say("+XLSRSTOP: 2");
  Settle();
  EXPECT_THAT(Log(Doing::kHandled), ElementsAre("EV_REFRESH_REPORTING in SENSOR_STATE_READY",
                                                "EV_DATA_REQUESTED in SENSOR_STATE_READY",
                                                "EV_DATA_ARRIVED in SENSOR_STATE_READY"));
}

TEST_F(SensorRead, AFixIsLostAtTwiceTheInterval) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 9999);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 0U);
  RunUntil(fix + 10'001);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 1U);
  EXPECT_EQ(State(), SENSOR_STATE_INITIALIZING);
}

// The report goes out on the way into the state; the fix itself then counts as one too early.
TEST_F(SensorRead, TheFixThatMakesTheSensorReadyDoesNotPutTheCheckOff) {
  StartSensor();
  client_ = Subscriber(5000);
  const Millis subscribed = clock_.Now() - 1;
  RunUntil(1000);
  SayFix();
  RunFor(60'000);
  EXPECT_THAT(TimesOfTimer("TIMER_CHECK_FIX_LOST"), ElementsAre(subscribed + 10'000));
  EXPECT_EQ(Posted("EV_FIX_LOST"), 0U) << "nine seconds after the report";
  EXPECT_EQ(State(), SENSOR_STATE_READY);
}

TEST_F(SensorRead, EachReportPutsTheLossOff) {
  const Millis fix = Ready(5000);
  for (int i = 1; i <= 4; ++i) {
    RunUntil(fix + i * 5000);
    SayFix();
  }
  RunUntil(fix + 29'900);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 0U);
  RunUntil(fix + 30'001);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 1U);
}

TEST_F(SensorRead, ACheckThatAWakeUpBringsFiftyMillisecondsForwardFindsNothingAndIsNotRepeated) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 9960);
  PostInit(*client_);  // ignored, but the worker wakes up
  EXPECT_THAT(TimesOfTimer("TIMER_CHECK_FIX_LOST"), ElementsAre(fix + 9960));
  RunFor(60'000);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 0U);
  EXPECT_EQ(State(), SENSOR_STATE_READY);
}

TEST_F(SensorRead, AtALongIntervalAReadAsksForASingleFix) {
  StartSensor();
  client_ = Subscriber(60'000);
  RunUntil(5000);
  Mark();
  EXPECT_EQ(Read().result, E_FAIL);
  Settle();
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix));
}

TEST_F(SensorRead, WhileTheRadioIsOffAReadAsksForNothing) {
  StartSensor();
  client_ = Connect();
  EXPECT_EQ(SwitchRadio(false), S_OK);
  Mark();
  EXPECT_EQ(Read().result, E_FAIL);
  Settle();
  EXPECT_EQ(Posted("EV_DATA_REQUESTED"), 1U);
  EXPECT_THAT(Requests(), IsEmpty());
}

}  // namespace
}  // namespace bench
