// Bring-up of the GNSS engine: its commands, their order, and what each failure leads to.

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ModemBringUp : public ModemTest {
 protected:
  /// Starts the device on a day and gives the clock command that bring-up sends.
  std::string ClockCommandOn(const SYSTEMTIME& utc) {
    RigOptions options;
    options.startUtc = utc;
    Build(std::move(options));
    Start();
    return Commands().at(3);
  }
};

TEST_F(ModemBringUp, SendsItsCommandsInOrderAtOnce) {
  Build();
  Start();
  EXPECT_EQ(Commands(), BringUp());
  for (const auto& write : modem_->Writes()) EXPECT_EQ(write.at, 0) << write.bytes;
}

TEST_F(ModemBringUp, HoldsTheDeviceOutOfIdleOnlyWhileItRuns) {
  Build();
  Start();
  EXPECT_EQ(IdleHolds(), 0);
  EXPECT_EQ(Calls("IWDFDevice2::StopIdle"), 1U);
  EXPECT_EQ(Calls("IWDFDevice2::ResumeIdle"), 1U);
}

TEST_F(ModemBringUp, EchoFailingFourTimesEndsItAfter900MsOfSleepsWithNothingMoreSent) {
  Build();
  modem_->Answer("ATE1", Error());
  Start();
  Settle(60'000);
  EXPECT_THAT(Commands(), ElementsAre("ATE1", "ATE1", "ATE1", "ATE1"));
  EXPECT_THAT(modem_->TimesOf("ATE1"), ElementsAre(0, 300, 600, 900));
}

TEST_F(ModemBringUp, EchoSucceedingAtTheLastRetryGoesOn) {
  Build();
  modem_->Answer("ATE1", {Error(), Error(), Error(), Ok()});
  Start();
  Settle(60'000);
  auto expected = BringUp();
  expected.insert(expected.begin(), 3, "ATE1");
  EXPECT_EQ(Commands(), expected);
  EXPECT_THAT(modem_->TimesOf("AT+XLCSSWITCH?"), ElementsAre(900));
}

TEST_F(ModemBringUp, SilentEchoIsWrittenSevenTimesATryWithPausesOf300Ms) {
  Build();
  modem_->Answer("ATE1", Silence());
  Start();
  Settle(60'000);
  const auto times = modem_->TimesOf("ATE1");
  ASSERT_EQ(times.size(), 28U);
  for (std::size_t i = 0; i < times.size(); ++i) {
    const auto attempt = static_cast<Millis>(i);
    EXPECT_EQ(times[i], attempt * 1000 + attempt / 7 * 300) << i;
  }
  EXPECT_EQ(Commands().size(), 28U);
}

TEST_F(ModemBringUp, SwitchQueryFailingEndsIt) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Error());
  Start();
  Settle(10'000);
  EXPECT_THAT(Commands(), ElementsAre("ATE1", "AT+XLCSSWITCH?"));
}

TEST_F(ModemBringUp, AfterAFailureALaterRequestToInitialiseRunsTheWholeSequenceAgain) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", {Error(), Ok()});
  Start();
  modem_->Forget();
  ClientSession& client = Connect();
  EXPECT_THAT(Commands(), IsEmpty()) << "an event before the bring-up is dropped";
  ASSERT_TRUE(client.SetProperty(DriverKey(6), Variant::Bool(true)).Accepted());
  Settle();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(ModemBringUp, RequestToInitialiseWithFalseDoesNothing) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Error());
  Start();
  modem_->Forget();
  ASSERT_TRUE(Connect().SetProperty(DriverKey(6), Variant::Bool(false)).Accepted());
  Settle(10'000);
  EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(ModemBringUp, SwitchReportZeroMeansRadioOffAndSensorNotAvailable) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Ok({"+XLCSSWITCH : 0"}));
  Start();
  EXPECT_EQ(RadioState(), 1U);
  ClientSession& client = Connect();
  EXPECT_EQ(Number(client, CommonKey(23)), 1U);
  EXPECT_EQ(Number(client, CommonKey(3)), 1U) << "not available";
  EXPECT_EQ(Commands(), BringUp()) << "and no fix is asked for";
}

TEST_F(ModemBringUp, SwitchReportOneMeansRadioOn) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Ok({"+XLCSSWITCH : 1"}));
  Start();
  EXPECT_EQ(RadioState(), 0U);
}

TEST_F(ModemBringUp, SwitchReportOneBehindOneOfZeroDoesNotTurnTheRadioOnAgain) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Ok({"+XLCSSWITCH : 0", "+XLCSSWITCH : 1"}));
  Start();
  EXPECT_EQ(RadioState(), 1U);
}

TEST_F(ModemBringUp, NoSwitchReportMeansRadioOn) {
  StartQuietly();
  EXPECT_EQ(RadioState(), 0U);
  modem_->Forget();
  Connect();
  EXPECT_THAT(Commands(), ElementsAre("AT+CIMI", "AT+XLCSLSR=1,1,,,,,,,,2,,"));
}

TEST_F(ModemBringUp, AnyOtherCharacterInTheSwitchReportMeansRadioOn) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Ok({"+XLCSSWITCH :  0", "+XLCSSWITCH : x0", "+XLCSSWITCH : "}));
  Start();
  EXPECT_EQ(RadioState(), 0U);
}

TEST_F(ModemBringUp, SwitchReportWithoutTheBlankBeforeTheColonIsNotRecognised) {
  Build();
  modem_->Answer("AT+XLCSSWITCH?", Ok({"+XLCSSWITCH: 0"}));
  Start();
  EXPECT_EQ(RadioState(), 0U);
}

TEST_F(ModemBringUp, ClockIsSentWithoutLeadingZeros) {
  EXPECT_EQ(ClockCommandOn({.wYear = 2014,
                            .wMonth = 7,
                            .wDayOfWeek = 6,
                            .wDay = 5,
                            .wHour = 9,
                            .wMinute = 3,
                            .wSecond = 7,
                            .wMilliseconds = 999}),
            "AT+CCLK=\"14/7/5,9:3:7\"");
}

TEST_F(ModemBringUp, ClockOfTheFirstSecondOf2000IsAllZeros) {
  EXPECT_EQ(ClockCommandOn({.wYear = 2000,
                            .wMonth = 1,
                            .wDayOfWeek = 6,
                            .wDay = 1,
                            .wHour = 0,
                            .wMinute = 0,
                            .wSecond = 0,
                            .wMilliseconds = 0}),
            "AT+CCLK=\"0/1/1,0:0:0\"");
}

TEST_F(ModemBringUp, ClockOfTheLastSecondOf2099HasTwoDigitsEach) {
  EXPECT_EQ(ClockCommandOn({.wYear = 2099,
                            .wMonth = 12,
                            .wDayOfWeek = 4,
                            .wDay = 31,
                            .wHour = 23,
                            .wMinute = 59,
                            .wSecond = 59,
                            .wMilliseconds = 0}),
            "AT+CCLK=\"99/12/31,23:59:59\"");
}

/// A command whose refusal bring-up survives.
class ModemBringUpGoesOn : public ModemTest, public testing::WithParamInterface<const char*> {};

TEST_P(ModemBringUpGoesOn, AfterThisCommandWasRefused) {
  Build();
  modem_->Answer(GetParam(), Error());
  Start();
  EXPECT_EQ(Commands(), BringUp());
  modem_->Forget();
  ClientSession& client = Connect();
  EXPECT_THAT(Commands(), Contains("AT+XLCSLSR=1,1,,,,,,,,2,,")) << "initialised all the same";
  EXPECT_EQ(Number(client, CommonKey(3)), 3U) << "initializing";
}

INSTANTIATE_TEST_SUITE_P(Commands, ModemBringUpGoesOn,
                         testing::Values("AT+XLCSLQOS=50", "AT+CCLK=", "AT+CIMI"),
                         [](const auto& test) { return std::string(test.param).substr(3, 4); });

}  // namespace
}  // namespace bench
