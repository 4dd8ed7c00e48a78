// Location requests, the engine's switch and its assistance data.

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kSingleFix = "AT+XLCSLSR=1,1,,,,,,,,2,,";
constexpr const char* kStop = "AT+XLSRSTOP=0,17";

class ModemSession : public ModemTest {
 protected:
  void SetFields(ClientSession& client, ULONG first, ULONG second) {
    EXPECT_TRUE(client.SetProperty(DriverKey(4), Variant::Ui4(first)).Accepted());
    EXPECT_TRUE(client.SetProperty(DriverKey(5), Variant::Ui4(second)).Accepted());
  }
};

TEST_F(ModemSession, ASingleFixLeavesTheIntervalFieldEmpty) {
  StartQuietly();
  Connect();
  EXPECT_THAT(Commands(), ElementsAre("AT+CIMI", kSingleFix));
}

TEST_F(ModemSession, AnIntervalOf5000MsIsAskedForAs5Seconds) {
  StartQuietly();
  SubscribeEvery(5000);
  EXPECT_EQ(Commands().back(), "AT+XLCSLSR=1,1,,,,,5,,,2,,");
}

TEST_F(ModemSession, TheLongestPeriodicIntervalIsAskedForAs8Seconds) {
  StartQuietly();
  SubscribeEvery(8000);
  EXPECT_EQ(Commands().back(), "AT+XLCSLSR=1,1,,,,,8,,,2,,");
}

TEST_F(ModemSession, TheShortestIntervalIsAskedForAs1Second) {
  StartQuietly();
  SubscribeEvery(1000);
  EXPECT_EQ(Commands().back(), "AT+XLCSLSR=1,1,,,,,1,,,2,,");
}

TEST_F(ModemSession, TheSettableFieldsAreWrittenUnsignedFromTheNextStartOn) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Forget();
  SetFields(client, 0, 4294967295U);
  Settle();
  EXPECT_THAT(Commands(), IsEmpty());
  EXPECT_EQ(Number(client, DriverKey(4)), 0U);
  EXPECT_EQ(Number(client, DriverKey(5)), 4294967295U);
  ASSERT_TRUE(client.SetReportInterval(7000).Accepted());
  Settle();
  EXPECT_THAT(Commands(), ElementsAre(kStop, "AT+CIMI", "AT+XLCSLSR=0,4294967295,,,,,7,,,2,,"));
}

TEST_F(ModemSession, AFieldSetDuringAStartWaitsForItsEnd) {
  StartQuietly();
  modem_->Answer("AT+CIMI", {Silence(), Ok()});
  ClientSession& client = Connect();
  ASSERT_THAT(Commands(), ElementsAre("AT+CIMI"));
  const Millis silent = modem_->TimesOf("AT+CIMI").front() + 1000;
  EXPECT_TRUE(client.SetProperty(DriverKey(4), Variant::Ui4(7)).Accepted());
  EXPECT_EQ(clock_.Now(), silent) << "the start is over";
  EXPECT_EQ(Commands().back(), kSingleFix) << "with the field as it was";
}

TEST_F(ModemSession, TheSettableFieldsAre1UntilSet) {
  StartQuietly();
  ClientSession& client = Connect();
  EXPECT_EQ(Number(client, DriverKey(4)), 1U);
  EXPECT_EQ(Number(client, DriverKey(5)), 1U);
}

TEST_F(ModemSession, AStopCarriesTheIdOfTheLastRequest) {
  StartQuietly();
  modem_->Answer("AT+XLCSLSR=", {Ok({"+XLCSLSR: request id 17"}), Ok({"+XLCSLSR: request id 18"})});
  SubscribeEvery(5000);
  clients_.clear();
  Settle();
  EXPECT_EQ(Commands().back(), "AT+XLSRSTOP=0,18");
}

TEST_F(ModemSession, ARunningRequestKeepsTheDeviceOutOfIdleUntilItIsStopped) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Settle(20'000);
  EXPECT_EQ(IdleHolds(), 1);
  client.Unsubscribe();
  Settle();
  EXPECT_EQ(IdleHolds(), 0);
}

TEST_F(ModemSession, ARefusedStopLeavesTheEngineUseHeld) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Error());
  client.Unsubscribe();
  Settle();
  EXPECT_EQ(IdleHolds(), 1);
}

TEST_F(ModemSession, ARefusedRequestHoldsNothing) {
  StartQuietly();
  modem_->Answer("AT+XLCSLSR=", Error());
  Connect();
  EXPECT_EQ(Commands().back(), kSingleFix);
  EXPECT_EQ(IdleHolds(), 0);
}

TEST_F(ModemSession, ARequestThatTimedOutRightAfterASuccessfulCommandKeepsTheEngineUse) {
  StartQuietly();
  modem_->Answer("AT+XLCSLSR=", Silence());
  Connect();
  Settle(8000);
  ASSERT_THAT(modem_->TimesOf(kSingleFix), SizeIs(7));
  EXPECT_EQ(IdleHolds(), 1);
}

TEST_F(ModemSession, ARequestThatTimedOutRightAfterARefusedCommandGivesTheEngineUseBack) {
  StartQuietly();
  modem_->Answer("AT+CIMI", Error());
  modem_->Answer("AT+XLCSLSR=", Silence());
  Connect();
  Settle(8000);
  ASSERT_THAT(modem_->TimesOf(kSingleFix), SizeIs(7));
  EXPECT_EQ(IdleHolds(), 0);
}

TEST_F(ModemSession, ARefusedPeriodicStartIsStoppedAndTriedOnceMore) {
  StartQuietly();
  ClientSession& client = Connect();
  modem_->Answer("AT+XLCSLSR=", Error());
  modem_->Forget();
  ASSERT_TRUE(client.SetReportInterval(5000).Accepted());
  Settle();
  ASSERT_EQ(client.Subscribe(), S_OK);
  Settle();
  const char* const start = "AT+XLCSLSR=1,1,,,,,5,,,2,,";
  EXPECT_THAT(Commands(), ElementsAre(kStop, "AT+CIMI", start, kStop, "AT+CIMI", start));
}

TEST_F(ModemSession, QualityOfServiceIsSentAtBringUpOnlyWhateverAccuracyClientsWant) {
  Build();
  Start();
  ClientSession& client = SubscribeEvery(5000);
  ASSERT_TRUE(client.SetDesiredAccuracy(1).Accepted());
  ASSERT_TRUE(client.SetReportInterval(3000).Accepted());
  Settle();
  std::size_t sent = 0;
  for (const std::string& command : Commands()) {
    if (command.starts_with("AT+XLCSLQOS")) ++sent;
  }
  EXPECT_EQ(sent, 1U);
  EXPECT_EQ(Number(client, CommonKey(19)), 0U);
}

TEST_F(ModemSession, TheRadioIsSwitchedOffAndOnWithTheirOwnCommands) {
  StartQuietly();
  EXPECT_EQ(SwitchRadio(1), S_OK);
  EXPECT_EQ(RadioState(), 1U);
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_EQ(RadioState(), 0U);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOff, kSwitchOn));
}

TEST_F(ModemSession, ARefusedSwitchOffLeavesTheRadioStateOn) {
  StartQuietly();
  modem_->Answer(kSwitchOff, Error());
  EXPECT_EQ(SwitchRadio(1), kRefused);
  EXPECT_EQ(RadioState(), 0U);
}

TEST_F(ModemSession, ARefusedSwitchOnLeavesTheRadioStateOff) {
  StartQuietly();
  EXPECT_EQ(SwitchRadio(1), S_OK);
  modem_->Answer(kSwitchOn, Error());
  EXPECT_EQ(SwitchRadio(0), kRefused);
  EXPECT_EQ(RadioState(), 1U);
}

TEST_F(ModemSession, ClearingTheAssistanceDataStopsAndRestartsARunningRequest) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Forget();
  ASSERT_TRUE(client.SetProperty(DriverKey(2), Variant::Bool(true)).Accepted());
  Settle();
  EXPECT_THAT(Commands(),
              ElementsAre(kStop, "AT+XLGNVRAM=7,0", "AT+CIMI", "AT+XLCSLSR=1,1,,,,,5,,,2,,"));
}

TEST_F(ModemSession, RefusedClearingOfTheAssistanceDataRestartsTheRequestAllTheSame) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Answer("AT+XLGNVRAM=", Error());
  modem_->Forget();
  ASSERT_TRUE(client.SetProperty(DriverKey(2), Variant::Bool(true)).Accepted());
  Settle();
  EXPECT_EQ(Commands().back(), "AT+XLCSLSR=1,1,,,,,5,,,2,,");
}

TEST_F(ModemSession, ARestartRefusedAfterClearingIsNotRepeated) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Answer("AT+XLCSLSR=", Error());
  modem_->Forget();
  ASSERT_TRUE(client.SetProperty(DriverKey(2), Variant::Bool(true)).Accepted());
  Settle();
  EXPECT_THAT(Commands(),
              ElementsAre(kStop, "AT+XLGNVRAM=7,0", "AT+CIMI", "AT+XLCSLSR=1,1,,,,,5,,,2,,"));
  EXPECT_EQ(IdleHolds(), 0);
}

TEST_F(ModemSession, NothingIsSentOnTheWayDownEvenForARequestThatStillRuns) {
  StartQuietly();
  SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Error());
  clients_.clear();
  Settle();
  ASSERT_EQ(IdleHolds(), 1);
  modem_->Forget();
  EXPECT_EQ(rig_->host().Stop(), S_OK);
  rig_->host().RemoveDevice();
  EXPECT_THAT(Commands(), IsEmpty());
}

}  // namespace
}  // namespace bench
