// Where each line of the modem goes: location reports, stops, and what nobody waits for.

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr ULONG kReady = 0;
constexpr ULONG kNoData = 2;
constexpr ULONG kInitializing = 3;

class AtDispatch : public ModemTest {
 protected:
  ULONG State(ClientSession& client) { return Number(client, CommonKey(3)); }
  void Say(const std::string& bytes) {
    modem_->Say(bytes);
    Settle();
  }
};

TEST_F(AtDispatch, TheStopCommandIsCompletedByItsOwnLineAndTheOkBehindItIsSwallowed) {
  StartQuietly();
  SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Raw("AT+XLSRSTOP=0,17\r\n+XLSRSTOP: 17\r\n"));
  modem_->Forget();
  const Millis start = clock_.Now();
  clients_.back()->Unsubscribe();
  Settle();
  EXPECT_THAT(Commands(), ElementsAre("AT+XLSRSTOP=0,17"));
  EXPECT_EQ(clock_.Now() - start, 1) << "completed without the OK";
  // That OK would otherwise answer the next command before its own echo has come.
  modem_->Answer(kSwitchOn, Raw("OK\r\nAT+XLCSSWITCH=1\r\nERROR\r\n"));
  EXPECT_EQ(SwitchRadio(0), kRefused);
}

TEST_F(AtDispatch, AStopLineWithoutTheEchoOfAStopCompletesNothing) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Raw("AT+XLCSSWITCH=1\r\n+XLSRSTOP: 17\r\n"));
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
}

TEST_F(AtDispatch, AStopLineWithErrorIsAFinalResult) {
  StartQuietly();
  SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Raw("AT+XLSRSTOP=0,17\r\n+XLSRSTOP: ERROR\r\n"));
  modem_->Forget();
  clients_.back()->Unsubscribe();
  Settle(20'000);
  EXPECT_THAT(modem_->TimesOf("AT+XLSRSTOP=0,17"), SizeIs(1));
}

TEST_F(AtDispatch, AReportWithErrorPostsTheErrorEventAndCompletesNothing) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Raw("AT+XLCSSWITCH=1\r\n+XLCSLSR: ERROR\r\n"));
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_THAT(Commands(), SizeIs(7));
}

TEST_F(AtDispatch, AReportWithErrorMakesASingleFixRequestEndWithNoData) {
  StartQuietly();
  ClientSession& client = Connect();
  Say("+XLCSLSR: ERROR: no position\r\n");
  EXPECT_EQ(State(client), kNoData);
  EXPECT_EQ(IdleHolds(), 0);
}

TEST_F(AtDispatch, TheRequestIdOfTheAnswerIsTheOneThatIsStopped) {
  StartQuietly();
  modem_->Answer("AT+XLCSLSR=", Ok({"+XLCSLSR: request id   4294967295"}));
  Connect();
  modem_->Forget();
  clients_.clear();
  Settle();
  EXPECT_THAT(Commands(), ElementsAre("AT+XLSRSTOP=0,4294967295"));
}

TEST_F(AtDispatch, WithoutARequestIdTheStopCarriesZero) {
  StartQuietly();
  modem_->Answer("AT+XLCSLSR=", Ok());
  Connect();
  modem_->Forget();
  clients_.clear();
  Settle();
  EXPECT_THAT(Commands(), ElementsAre("AT+XLSRSTOP=0,0"));
}

TEST_F(AtDispatch, ALineThatBeginsWithAtSignSwallowsTheNextOk) {
  StartQuietly();
  modem_->Answer(kSwitchOn, {Raw("AT+XLCSSWITCH=1\r\n@usb\r\nOK\r\n"), Ok()});
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn, kSwitchOn));
}

TEST_F(AtDispatch, ALineThatBeginsWithAtSignDoesNotSwallowAnError) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Raw("AT+XLCSSWITCH=1\r\n@usb\r\nERROR\r\n"));
  EXPECT_EQ(SwitchRadio(0), kRefused);
}

TEST_F(AtDispatch, AReportItsOkItsSentencesAndTheLastOkAreOneFix) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Say(ReportLine("48.5 N", "9:3:8") + "\r\nOK\r\n$GPGGA,1\r\n$GPRMC,2\r\n");
  EXPECT_THAT(client.Reports(), IsEmpty());
  Say("OK\r\n");
  ASSERT_THAT(client.Reports(), SizeIs(testing::Ge(1U)));
  EXPECT_EQ(client.Reports().back().latitude, 48.5);
  EXPECT_EQ(client.Reports().back().nmeaSentence, "$GPGGA,1\n$GPRMC,2\n");
  EXPECT_EQ(State(client), kReady);
}

TEST_F(AtDispatch, AnErrorEndsTheSentencesLikeAnOk) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Say(ReportLine("48.5 N", "9:3:8") + "\r\nOK\r\n$GPGGA,1\r\nERROR\r\n");
  EXPECT_EQ(State(client), kReady);
}

TEST_F(AtDispatch, AReportWithoutSentencesIsKeptAndPostsNothing) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Say(ReportLine("48.5 N", "9:3:8") + "\r\nOK\r\n");
  EXPECT_EQ(State(client), kInitializing);
  EXPECT_THAT(client.Reports(), IsEmpty());
}

TEST_F(AtDispatch, AfterAReportWithItsOwnOkTheNextCommandIsWrittenOnce) {
  StartQuietly();
  SubscribeEvery(5000);
  Say(ReportThenOkThenSentence("48.5 N", "9:3:8"));
  modem_->Forget();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
}

TEST_F(AtDispatch, AfterAReportWithoutItsOwnOkTheNextCommandThatIsNotAStopIsWrittenTwice) {
  StartQuietly();
  SubscribeEvery(5000);
  Say(ReportLine("48.5 N", "9:3:8") + "\r\n$GPGGA,1\r\nOK\r\n");
  modem_->Forget();
  const Millis start = clock_.Now();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(modem_->TimesOf(kSwitchOn), ElementsAre(start, start + 1000));
  modem_->Forget();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn)) << "the one after that once";
}

TEST_F(AtDispatch, AfterAReportWithoutItsOwnOkAStopIsWrittenOnce) {
  StartQuietly();
  SubscribeEvery(5000);
  Say(ReportLine("48.5 N", "9:3:8") + "\r\n$GPGGA,1\r\nOK\r\n");
  modem_->Forget();
  clients_.back()->Unsubscribe();
  Settle(5000);
  EXPECT_THAT(Commands(), ElementsAre("AT+XLSRSTOP=0,17"));
}

TEST_F(AtDispatch, ASentenceOutsideAReportIsNothing) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Say("$GPGGA,1\r\nOK\r\n");
  EXPECT_THAT(client.Reports(), IsEmpty());
  modem_->Forget();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
}

TEST_F(AtDispatch, ASentenceBehindAPublishedFixIsNothing) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Say(ReportThenOkThenSentence("48.5 N", "9:3:8"));
  const std::size_t reports = client.Reports().size();
  Say("$GPGGA,2\r\n");
  modem_->Forget();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn)) << "its OK was not swallowed";
  EXPECT_THAT(client.Reports(), SizeIs(reports));
}

TEST_F(AtDispatch, AReportAmongTheSentencesOfTheOneBeforeDropsThese) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  Say(ReportLine("48.5 N", "9:3:8") + "\r\nOK\r\n$GPGGA,1\r\n" + ReportLine("49.5 N", "9:3:13") +
      "\r\n$GPGGA,2\r\nOK\r\n");
  ASSERT_THAT(client.Reports(), SizeIs(testing::Ge(1U)));
  EXPECT_EQ(client.Reports().back().latitude, 49.5);
  EXPECT_EQ(client.Reports().back().nmeaSentence, "$GPGGA,2\n");
}

TEST_F(AtDispatch, AReportThatStragglesInAfterTheStopHasItsSentencesSwallowedAndPostsNothing) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  client.Unsubscribe();
  Settle();
  Say(ReportThenOkThenSentence("48.5 N", "9:3:8"));
  EXPECT_THAT(client.Reports(), IsEmpty());
  EXPECT_EQ(State(client), kInitializing);
}

TEST_F(AtDispatch, AReportThatNobodyAskedForIsPublishedByTheNextOneThatCannotBeRead) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  client.Unsubscribe();
  Settle();
  Say(ReportThenOkThenSentence("48.5 N", "9:3:8"));
  ASSERT_EQ(client.Subscribe(), S_OK);
  Settle(2000);  // the mark of the sentences' OK costs a second attempt
  EXPECT_THAT(client.Reports(), IsEmpty());
  Say("+XLCSLSR: 0,50.5 N\r\nOK\r\n$GPGGA,9\r\nOK\r\n");
  ASSERT_THAT(client.Reports(), SizeIs(testing::Ge(1U)));
  EXPECT_EQ(client.Reports().back().latitude, 48.5);
}

/// A report that is no fix; the previous one stays.
class AtBadReport : public ModemTest, public testing::WithParamInterface<const char*> {};

TEST_P(AtBadReport, KeepsThePreviousFix) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Say(ReportThenOkThenSentence("48.5 N", "9:3:8"));
  Settle();
  const std::size_t reports = client.Reports().size();
  ASSERT_GE(reports, 1U);
  modem_->Say(std::string(GetParam()) + "\r\nOK\r\n$GPGGA,9\r\nOK\r\n");
  Settle();
  EXPECT_EQ(client.Reports().size(), reports);
  modem_->Say(ReportThenOkThenSentence("49.5 N", "9:3:18"));
  Settle();
  ASSERT_EQ(client.Reports().size(), reports + 1);
  EXPECT_EQ(client.Reports().back().latitude, 49.5);
  EXPECT_EQ(client.Reports().back().nmeaSentence, "$GPGGA,1\n");
  Settle(100);
  EXPECT_EQ(SwitchRadio(0), S_OK);
}

const std::string kCutInGroup = [] {
  std::string report = ReportLine("50.5 N", "9:3:28");
  report.pop_back();
  return report;
}();

std::string BadReportName(const testing::TestParamInfo<const char*>& test) {
  constexpr const char* kNames[] = {"UnknownForm", "CutAfterLatitude", "NoField",
                                    "CutInsideAGroup"};
  return kNames[test.index];
}

INSTANTIATE_TEST_SUITE_P(Reports, AtBadReport,
                         testing::Values("+XLCSLSR: 5,50.5 N,11.5 E,12,2014/7/5,9:3:28",
                                         "+XLCSLSR: 0,50.5 N", "+XLCSLSR: ", kCutInGroup.c_str()),
                         BadReportName);

TEST_F(AtDispatch, AReportWithANegativeSatelliteCountIsDroppedAndTheDriverGoesOn) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  std::string report = ReportLine("48.5 N", "9:3:8");
  report.replace(report.rfind("1,45,"), 1, "-1");
  Say(report + "\r\nOK\r\n");
  // What the language runtime keeps for a thread's first exception is no leak of the driver.
  rig_->redirector().Books().Mark();
  for (int i = 0; i < 3; ++i) Say(report + "\r\nOK\r\n");
  EXPECT_THAT(client.Reports(), IsEmpty());
  Say(ReportThenOkThenSentence("49.5 N", "9:3:9"));
  ASSERT_THAT(client.Reports(), SizeIs(testing::Ge(1U)));
  EXPECT_EQ(client.Reports().back().latitude, 49.5);
}

}  // namespace
}  // namespace bench
