// Which location requests the clients' intervals lead to, and when.

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SensorInterval = SensorTest;

constexpr const char* kStop1 = "AT+XLSRSTOP=0,1";

TEST_F(SensorInterval, UpToEightSecondsOnePeriodicRequestTakesThePlaceOfTheSingleFix) {
  StartSensor();
  Mark();
  const auto client = Subscriber(5000);
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, kStop1, "AT+XLCSLSR=1,1,,,,,5,,,2,,"));
}

TEST_F(SensorInterval, EightSecondsAreShort) {
  StartSensor();
  Mark();
  const auto client = Subscriber(8000);
  RunFor(60'000);
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, kStop1, Periodic(8)));
}

TEST_F(SensorInterval, EightThousandAndOneMillisecondsAreKeptAsEightSecondsAndShort) {
  StartSensor();
  Mark();
  const auto client = Subscriber(8001);
  RunFor(60'000);
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, kStop1, Periodic(8)));
}

TEST_F(SensorInterval, ZeroIsOneSecond) {
  StartSensor();
  Mark();
  const auto client = Subscriber(0);
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, kStop1, Periodic(1)));
}

TEST_F(SensorInterval, NineSecondsAreSingleFixesSixSecondsAfterAndThenEveryNine) {
  StartSensor();
  const auto client = Connect();
  EXPECT_TRUE(client->SetReportInterval(9000).Accepted());
  RunUntil(1000);
  EXPECT_EQ(client->Subscribe(), S_OK);
  Mark();
  for (const Millis due : {7000, 16'000, 25'000}) {
    RunUntil(due + 500);
    SayFix();
  }
  EXPECT_THAT(TimesOfTimer("TIMER_PRGN"), ElementsAre(7000, 16'000, 25'000));
  EXPECT_THAT(TimesOf(kSingleFix), ElementsAre(7000, 16'000, 25'000));
  EXPECT_THAT(ReportTimes(), ElementsAre(7500, 16'500, 25'500));
}

TEST_F(SensorInterval, AMinuteIsAskedForThreeSecondsAheadOfTime) {
  StartSensor();
  const auto client = Subscriber(60'000);
  const Millis subscribed = clock_.Now() - 1;
  Mark();
  RunUntil(subscribed + 58'000);
  SayFix();
  RunUntil(subscribed + 118'000);
  SayFix();
  EXPECT_THAT(TimesOf(kSingleFix), ElementsAre(subscribed + 57'000, subscribed + 117'000));
  EXPECT_EQ(ReportCount(), 2U);
}

TEST_F(SensorInterval, ASingleFixThatIsStillOutstandingIsNotAskedForTwice) {
  StartSensor();
  const auto client = Subscriber(9000);
  Mark();
  RunFor(30'000);  // no fix comes
  EXPECT_EQ(TimesOfTimer("TIMER_PRGN").size(), 3U);
  EXPECT_EQ(TimesOf(kSingleFix).size(), 1U);
}

TEST_F(SensorInterval, AnOutstandingSingleFixIsAskedForAgainWhenTheIntervalBecomesLong) {
  StartSensor();
  const auto client = Subscriber(60'000);
  RunFor(58'000);  // one is outstanding
  modem().Refuse("AT+XLSRSTOP");
  Mark();
  EXPECT_TRUE(client->SetReportInterval(30'000).Accepted());
  RunFor(3000);  // the refused stop leaves a swallowed answer behind
  EXPECT_THAT(Requests(), ElementsAre(testing::StartsWith("AT+XLSRSTOP=0,"), kSingleFix));
  EXPECT_EQ(Posted("EV_DATA_REQUESTED"), 1U);
}

TEST_F(SensorInterval, FromLongToShortTheTimerIsOff) {
  StartSensor();
  const auto client = Subscriber(9000);
  EXPECT_TRUE(client->SetReportInterval(4000).Accepted());
  Settle();
  Mark();
  RunFor(60'000);
  EXPECT_THAT(TimesOfTimer("TIMER_PRGN"), IsEmpty());
  EXPECT_THAT(Requests(), IsEmpty());
}

TEST_F(SensorInterval, FromShortToLongThePeriodicRequestIsStopped) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(9000).Accepted());
  Settle();
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2"));
  EXPECT_EQ(EngineUses(), 0);
}

TEST_F(SensorInterval, TheSameIntervalAgainSendsNothing) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_EQ(Posted("EV_REFRESH_REPORTING"), 1U);
  EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(SensorInterval, TheFastestOfSeveralClientsWins) {
  StartSensor();
  const auto slow = Subscriber(60'000);
  Mark();
  const auto fast = Subscriber(3000);
  const auto middle = Subscriber(5000);
  EXPECT_THAT(Requests(), ElementsAre(Periodic(3)));
}

TEST_F(SensorInterval, WhenTheFastestUnsubscribesTheNextOneDecides) {
  StartSensor();
  const auto fast = Subscriber(3000);
  const auto slow = Subscriber(5000);
  Mark();
  EXPECT_EQ(fast->Unsubscribe(), S_OK);
  Settle();
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", Periodic(5)));
}

TEST_F(SensorInterval, WhenTheFastestDisconnectsTheNextOneDecides) {
  StartSensor();
  auto fast = Subscriber(3000);
  const auto slow = Subscriber(5000);
  Mark();
  fast.reset();
  Settle();
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2", Periodic(5)));
}

TEST_F(SensorInterval, WhenTheLastOneUnsubscribesTheRequestIsStopped) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  Settle();
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,2"));
  EXPECT_EQ(EngineUses(), 0);
}

TEST_F(SensorInterval, APeriodicRequestThatIsRefusedIsStoppedAndTriedOnceMore) {
  StartSensor();
  const auto client = Connect();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  modem().Refuse(Periodic(5), 1);
  Mark();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(Requests(), ElementsAre(kStop1, Periodic(5), kStop1, Periodic(5)));
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_THAT(Requests(), IsEmpty()) << "the second try runs at the interval";
}

TEST_F(SensorInterval, APeriodicRequestThatIsRefusedTwiceIsTriedAgainByTheNextRefresh) {
  StartSensor();
  const auto client = Connect();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  modem().Refuse(Periodic(5), 2);
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_THAT(Requests(), ElementsAre(Periodic(5)));
}

TEST_F(SensorInterval, APeriodicRequestHoldsTheDeviceOutOfIdleUntilItIsStopped) {
  StartSensor();
  EXPECT_EQ(EngineUses(), 0);
  auto client = Subscriber(5000);
  EXPECT_EQ(EngineUses(), 1);
  SayFix();
  EXPECT_EQ(EngineUses(), 1);
  client.reset();
  Settle();
  EXPECT_EQ(EngineUses(), 0);
}

TEST_F(SensorInterval, ASingleFixHoldsTheDeviceOutOfIdleUntilItArrives) {
  StartSensor();
  const auto client = Subscriber(9000);
  EXPECT_EQ(EngineUses(), 0);
  RunFor(6500);
  EXPECT_EQ(EngineUses(), 1);
  SayFix();
  // The stop of the very first single fix is still remembered, and the start of this one forgot it.
  EXPECT_EQ(EngineUses(), 0);
}

TEST_F(SensorInterval, FromTheStopToTheNewStartTheDeviceStaysOutOfIdle) {
  StartSensor();
  const auto client = Subscriber(5000);
  const std::size_t idled = rig().calls().Count("IWDFDevice2::ResumeIdle");
  EXPECT_TRUE(client->SetReportInterval(2000).Accepted());
  Settle();
  PostClear(*client);
  EXPECT_THAT(TimesOf(Periodic(2)), testing::SizeIs(2));
  EXPECT_EQ(rig().calls().Count("IWDFDevice2::ResumeIdle"), idled);
  EXPECT_EQ(EngineUses(), 1);
}

TEST_F(SensorInterval, InStateErrorNoRequestIsStarted) {
  LoadSensor();
  modem().Refuse("ATE1", 4);
  StartLoaded();
  RunFor(1000);
  const auto client = Connect();  // dropped, so that the state stays
  EXPECT_EQ(client->Subscribe(), S_OK);
  PostInit(*client);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_THAT(Log(Doing::kHandled), ElementsAre("EV_REFRESH_REPORTING in SENSOR_STATE_ERROR"));
  EXPECT_THAT(Commands(), IsEmpty());
}

}  // namespace
}  // namespace bench
