// Engine errors, late reports, the other shape of a report, and cleared assistance data.

#include "tests/driver/SensorTest.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kClear = "AT+XLGNVRAM=7,0";

using SensorEngineError = SensorTest;

TEST_F(SensorEngineError, BelowEightSecondsItMeansNoDataAndThePeriodicRequestGoesOn) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  Mark();
  SayError();
  EXPECT_EQ(State(), SENSOR_STATE_NO_DATA);
  EXPECT_THAT(Requests(), IsEmpty());
  RunFor(5000);
  SayFix();
  EXPECT_EQ(State(), SENSOR_STATE_READY);
  EXPECT_EQ(ReportCount(), 2U);
}

TEST_F(SensorEngineError, AtEightSecondsItChangesNoState) {
  StartSensor();
  const auto client = Subscriber(8000);
  SayFix();
  SayError();
  EXPECT_EQ(State(), SENSOR_STATE_READY);
}

TEST_F(SensorEngineError, AtEightSecondsAFixHasEndedTheSingleFixWhoseStopWasRefused) {
  StartSensor();
  const auto client = Connect();
  EXPECT_TRUE(client->SetReportInterval(8000).Accepted());
  Settle();
  modem().Refuse("AT+XLSRSTOP", 1);
  EXPECT_EQ(client->Subscribe(), S_OK);
  RunFor(2000);  // the refused stop leaves a swallowed answer behind
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, "AT+XLSRSTOP=0,1", Periodic(8)));
  SayFix();
  ASSERT_EQ(State(), SENSOR_STATE_READY);
  SayError();
  EXPECT_EQ(State(), SENSOR_STATE_READY);
}

TEST_F(SensorEngineError, AtALongIntervalItEndsTheSingleFixAndTheTimerAsksAgain) {
  StartSensor();
  const auto client = Subscriber(9000);
  Mark();
  RunFor(6500);
  SayError();
  EXPECT_EQ(State(), SENSOR_STATE_NO_DATA);
  EXPECT_EQ(EngineUses(), 0);
  RunFor(9000);
  EXPECT_THAT(TimesOf(kSingleFix), SizeIs(2));
  EXPECT_EQ(State(), SENSOR_STATE_INITIALIZING);
}

TEST_F(SensorEngineError, WithoutASubscriberItEndsTheSingleFixOfTheFirstConnect) {
  StartSensor();
  const auto client = Connect();
  SayError();
  EXPECT_EQ(State(), SENSOR_STATE_NO_DATA);
  EXPECT_EQ(EngineUses(), 0);
}

TEST_F(SensorEngineError, ItTakesTheMarkFromTheFixSoThatAReadFailsAtOnceWhenItIsStale) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  SayError();
  RunFor(3000);
  EXPECT_EQ(client->ReadData({kLatitude}).result, E_FAIL);
}

TEST_F(SensorEngineError, ItArmsTheCheckForALostFix) {
  StartSensor();
  const auto client = Subscriber(5000);
  RunUntil(3000);
  modem().Say("+XLCSLSR: ERROR: no position");
  RunUntil(14'000);
  EXPECT_THAT(TimesOfTimer("TIMER_CHECK_FIX_LOST"), ElementsAre(13'000));
}

// The first error finds the stop of the single fix remembered; the second one gives back the use of
// the engine that the running request holds.
TEST_F(SensorEngineError, TheSecondOneDuringAPeriodicRequestLetsTheDeviceIdleBelowIt) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayError();
  EXPECT_EQ(EngineUses(), 1);
  SayError();
  EXPECT_EQ(EngineUses(), 0);
}

using SensorStream = SensorTest;

TEST_F(SensorStream, EveryReportOfAPeriodicRequestPublishesAFix) {
  StartSensor();
  const auto client = Subscriber(1000);
  Mark();
  for (int i = 0; i < 5; ++i) {
    RunFor(1000);
    SayFix();
  }
  EXPECT_EQ(Posted("EV_DATA_ARRIVED"), 5U);
}

TEST_F(SensorStream, ASingleFixPublishesOne) {
  StartSensor();
  const auto client = PlainSubscriber();
  Mark();
  SayFix();
  SayFix();
  EXPECT_EQ(Posted("EV_DATA_ARRIVED"), 1U);
}

TEST_F(SensorStream, AReportThatStragglesInAfterAStopIsSwallowedAndPostsNothing) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  Settle();
  Mark();
  SayFix();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(TimesOf("AT+CIMI"), SizeIs(1)) << "no command is spoilt by it";
  EXPECT_THAT(TimesOf(Periodic(5)), SizeIs(1));
}

TEST_F(SensorStream, AReportWithoutSentencesPostsNothingUntilALaterOneBringsThem) {
  StartSensor();
  const auto client = Subscriber(1000);
  Mark();
  modem().Say(WriteReport(FixNow(), 2));
  modem().Say("OK");
  Settle();
  EXPECT_EQ(Posted("EV_DATA_ARRIVED"), 0U);
  SayFix();
  EXPECT_EQ(Posted("EV_DATA_ARRIVED"), 1U);
}

TEST_F(SensorStream, AfterTheOtherShapeTheNextCommandIsWrittenTwice) {
  StartSensor();
  const auto client = PlainSubscriber();
  modem().SayReportOfTheOtherShape(FixNow());
  Settle();
  EXPECT_GT(ReportCount(), 0U);
  RunFor(3000);
  Mark();
  PostClear(*client);
  RunFor(2000);
  const auto times = TimesOf(kClear);
  ASSERT_THAT(times, SizeIs(2));
  EXPECT_EQ(times[1] - times[0], 1000);
  PostClear(*client);
  EXPECT_THAT(TimesOf(kClear), SizeIs(3)) << "and those after it once";
}

TEST_F(SensorStream, AfterTheOtherShapeAStopIsWrittenOnceAndSoIsWhatFollowsIt) {
  StartSensor();
  const auto client = Subscriber(5000);
  modem().SayReportOfTheOtherShape(FixNow());
  Settle();
  Mark();
  EXPECT_TRUE(client->SetReportInterval(2000).Accepted());
  RunFor(5000);
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", Periodic(2)));
  EXPECT_THAT(TimesOf("AT+CIMI"), SizeIs(1));
}

using SensorAssistance = SensorTest;

TEST_F(SensorAssistance, AtAShortIntervalTheRequestIsStoppedForItAndStartedAgain) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  PostClear(*client);
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", kClear, Periodic(5)));
}

TEST_F(SensorAssistance, AtALongIntervalNothingIsStopped) {
  StartSensor();
  const auto client = Subscriber(9000);
  Mark();
  PostClear(*client);
  EXPECT_THAT(Requests(), ElementsAre(kClear));
}

TEST_F(SensorAssistance, AtALongIntervalAnOutstandingSingleFixBecomesARequestAtTheInterval) {
  StartSensor();
  const auto client = Subscriber(9000);
  RunFor(6500);
  Mark();
  PostClear(*client);
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", kClear, Periodic(9)));
}

TEST_F(SensorAssistance, WithoutAnIntervalItBecomesOneOfFortyNinePointSevenDays) {
  StartSensor();
  const auto client = Connect();
  Mark();
  PostClear(*client);
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,1", kClear, Periodic(4'294'967)));
}

TEST_F(SensorAssistance, AWriteOfAnythingButOneDoesNothing) {
  StartSensor();
  const auto client = Connect();
  Mark();
  for (const ULONG value : {ULONG{0}, ULONG{2}}) {
    EXPECT_TRUE(client->SetProperty(kClearAssistance, Variant::Ui4(value)).Accepted());
  }
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorAssistance, AfterARefusedClearingTheRequestStartsAgain) {
  StartSensor();
  const auto client = Subscriber(5000);
  modem().Refuse(kClear);
  Mark();
  PostClear(*client);
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", kClear, Periodic(5)));
}

}  // namespace
}  // namespace bench
