// A final result that comes after its command was given up: whether the next command takes it.
// The radio is switched off, which the modem answers too late, and then on. The two final results
// always differ, so that the outcome tells whose was taken.

#include "tests/driver/ModemTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr const char* kOff = "AT+XLCSSWITCH=0,1";
constexpr const char* kOn = "AT+XLCSSWITCH=1";
constexpr const char* kStop = "AT+XLSRSTOP=0,17";
constexpr const char* kStopLine = "+XLSRSTOP: 17";

using Lines = std::vector<std::string>;

std::string Bytes(const Lines& lines) {
  std::string bytes;
  for (const std::string& line : lines) bytes.append(line).append("\r\n");
  return bytes;
}

std::string Report() {
  return ReportLine("48.5 N", "9:3:8");
}

class AtLateAnswer : public ModemTest {
 protected:
  /// A start, and a command that was given up; its echo came in time, or not at all.
  void GiveUpSwitchingOff(bool echoed) {
    StartQuietly();
    modem_->Answer(kOff, Raw(echoed ? Bytes({kOff}) : std::string()));
    ASSERT_EQ(SwitchRadio(1), kNoAnswer);
    modem_->Forget();
  }
  /// Says lines that long from now, while the test waits in the driver.
  Thread SayLater(Millis after, const Lines& lines) {
    return {clock_, [this, after, bytes = Bytes(lines)] {
              clock_.SleepFor(after);
              modem_->Say(bytes);
            }};
  }
  void Say(const Lines& lines) {
    modem_->Say(Bytes(lines));
    Settle();
  }
};

struct LateCase {
  const char* name;
  bool echoed;                 // the command that was given up, in time
  std::vector<Lines> replies;  // to the next command's writes
  Lines later;                 // 10 ms after the first of them
  HRESULT result;
  std::size_t writes;
};

std::string CaseName(const testing::TestParamInfo<LateCase>& test) {
  return test.param.name;
}

class AtLateAnswerCase : public AtLateAnswer, public testing::WithParamInterface<LateCase> {
 protected:
  void Run() {
    const LateCase& late = GetParam();
    GiveUpSwitchingOff(late.echoed);
    std::vector<Reply> replies;
    for (const Lines& lines : late.replies) replies.push_back(Raw(Bytes(lines)));
    modem_->Answer(kOn, replies);
    {
      const Thread speaker = SayLater(10, late.later);
      EXPECT_EQ(SwitchRadio(0), late.result);
    }
    EXPECT_THAT(Commands(), SizeIs(late.writes));
    // Whatever came of it ends with that command.
    modem_->Answer(kOn, Ok());
    modem_->Forget();
    EXPECT_EQ(SwitchRadio(0), S_OK);
    EXPECT_THAT(Commands(), SizeIs(1));
  }
};

class AtLateAnswerIsNotTaken : public AtLateAnswerCase {};

TEST_P(AtLateAnswerIsNotTaken, ForTheNextCommands) {
  Run();
}

INSTANTIATE_TEST_SUITE_P(
    Holds, AtLateAnswerIsNotTaken,
    testing::ValuesIn(std::vector<LateCase>{
        {"AnOkBeforeTheNextEcho", true, {{"OK", kOn, "ERROR"}}, {}, kRefused, 1},
        {"AnErrorBeforeTheNextEcho", true, {{"ERROR", kOn, "OK"}}, {}, S_OK, 1},
        {"AnOkWhoseEchoNeverCame", false, {{"OK", kOn, "ERROR"}}, {}, kRefused, 1},
        {"AnErrorWhoseEchoNeverCame", false, {{"+CME ERROR: 4", kOn, "OK"}}, {}, S_OK, 1},
        {"AnOkWithItsEchoBeforeTheNextEcho", false, {{kOff, "OK", kOn, "ERROR"}}, {}, kRefused, 1},
        {"AnErrorWithItsEchoBeforeTheNextEcho", true, {{kOff, "ERROR", kOn, "OK"}}, {}, S_OK, 1},
        // The echo hides the next command's own result too, which costs it another attempt.
        {"AnOkWithItsEchoBehindTheNextEcho",
         false,
         {{kOn, kOff, "OK"}, {kOn, "ERROR"}},
         {"ERROR"},
         kRefused,
         2},
        {"AnErrorWithItsEchoBehindTheNextEcho",
         true,
         {{kOn, kOff, "ERROR"}, {kOn, "OK"}},
         {"OK"},
         S_OK,
         2},
        {"TwoBeforeTheNextEcho", true, {{"OK", "OK", kOn, "ERROR"}}, {}, kRefused, 1},
        {"TwoThatDifferBeforeTheNextEcho", true, {{"OK", "ERROR", kOn, "OK"}}, {}, S_OK, 1},
        {"TwoWithTheirEchoesBeforeTheNextEcho",
         false,
         {{kOff, "OK", kOff, "OK", kOn, "ERROR"}},
         {},
         kRefused,
         1},
        {"TwoWithTheirEchoesAroundTheNextEcho",
         true,
         {{kOff, "ERROR", kOn, kOff, "ERROR"}, {kOn, "OK"}},
         {"OK"},
         S_OK,
         2},
        {"AStopWithItsEchoBeforeTheNextEcho",
         true,
         {{kStop, kStopLine, "OK", kOn, "ERROR"}},
         {},
         kRefused,
         1},
        {"AStopWithItsEchoBehindTheNextEcho",
         true,
         {{kOn, kStop, kStopLine, "OK"}, {kOn, "ERROR"}},
         {"ERROR"},
         kRefused,
         2},
        {"AReportWithItsOkBeforeTheNextEcho",
         true,
         {{Report(), "OK", kOn, "ERROR"}},
         {},
         kRefused,
         1},
        {"AReportWithItsOkBehindTheNextEcho",
         true,
         {{kOn, Report(), "OK"}},
         {"ERROR"},
         kRefused,
         1},
        {"AReportWithItsOkAndSentencesBehindTheNextEcho",
         true,
         {{kOn, Report(), "OK", "$GPGGA,1", "OK"}},
         {"ERROR"},
         kRefused,
         1},
        {"AReportWithErrorBehindTheNextEcho",
         true,
         {{kOn, "+XLCSLSR: ERROR: no position"}},
         {"OK"},
         S_OK,
         1},
    }),
    CaseName);

class AtLateAnswerCannotBeTold : public AtLateAnswerCase {};

// A final result carries no name: behind the next command's echo it is that command's.
TEST_P(AtLateAnswerCannotBeTold, FromTheNextCommandsOwn) {
  Run();
}

INSTANTIATE_TEST_SUITE_P(
    IsTaken, AtLateAnswerCannotBeTold,
    testing::ValuesIn(std::vector<LateCase>{
        {"AnOkBehindTheNextEcho", true, {{kOn, "OK"}}, {"ERROR"}, S_OK, 1},
        {"AnErrorBehindTheNextEcho", true, {{kOn, "ERROR"}}, {"OK"}, kRefused, 1},
        {"TheFirstOfTwoBehindTheNextEcho", true, {{kOn, "OK"}}, {"ERROR", "ERROR"}, S_OK, 1},
        {"TheSecondOfTwoAroundTheNextEcho", true, {{"OK", kOn, "ERROR"}}, {"OK"}, kRefused, 1},
    }),
    CaseName);

// ---- The same text again.

TEST_F(AtLateAnswer, ToAnEarlierAttemptOfTheSameCommandAnswersIt) {
  StartQuietly();
  modem_->Answer(kOn, Silence());
  const Thread speaker = SayLater(1500, {kOn, "ERROR"});
  EXPECT_EQ(SwitchRadio(0), kRefused);
  EXPECT_THAT(Commands(), SizeIs(2));
}

TEST_F(AtLateAnswer, ToTheLaterAttemptOfARetriedCommandIsNotTakenForTheNext) {
  StartQuietly();
  modem_->Answer(kOff, Silence());
  {
    const Thread speaker = SayLater(1500, {kOff, "OK"});
    EXPECT_EQ(SwitchRadio(1), S_OK);
  }
  modem_->Answer(kOn, Raw(Bytes({kOff, "OK", kOn, "ERROR"})));
  EXPECT_EQ(SwitchRadio(0), kRefused);
}

TEST_F(AtLateAnswer, BetweenTwoCommandsDoesNotAnswerTheSecondEvenOfTheSameText) {
  StartQuietly();
  modem_->Answer(kOn, Silence());
  ASSERT_EQ(SwitchRadio(0), kNoAnswer);
  Say({kOn, "OK"});
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
}

TEST_F(AtLateAnswer, ToACommandOfTheSameTextCannotBeToldFromTheSecondOnesOwn) {
  StartQuietly();
  modem_->Answer(kOn, Silence());
  ASSERT_EQ(SwitchRadio(0), kNoAnswer);
  modem_->Answer(kOn, Raw(Bytes({kOn, "ERROR"})));
  const Thread speaker = SayLater(10, {kOn, "OK"});
  EXPECT_EQ(SwitchRadio(0), kRefused) << "the first one's ERROR, with its echo";
}

TEST_F(AtLateAnswer, ToACommandOfTheSameTextThatWasEchoedIsTakenBeforeTheSecondOnesEcho) {
  StartQuietly();
  modem_->Answer(kOn, Raw(Bytes({kOn})));
  ASSERT_EQ(SwitchRadio(0), kNoAnswer);
  modem_->Answer(kOn, Raw(Bytes({"ERROR"})));
  const Thread speaker = SayLater(10, {kOn, "OK"});
  EXPECT_EQ(SwitchRadio(0), kRefused) << "the echo that still stands is the same";
}

// ---- Stops and location requests.

TEST_F(AtLateAnswer, AStopThatWasEchoedInTimeIsTakenForTheNextCommandBehindItsEcho) {
  StartQuietly();
  SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Raw(Bytes({kStop})));
  clients_.back()->Unsubscribe();
  Settle(8000);  // given up
  modem_->Answer(kOn, Raw(Bytes({kOn, kStopLine})));
  const Thread speaker = SayLater(10, {"ERROR"});
  EXPECT_EQ(SwitchRadio(0), S_OK) << "the stop's line completes whatever is pending";
}

TEST_F(AtLateAnswer, AStopThatWasEchoedInTimeIsNotTakenForTheNextCommandBeforeItsEcho) {
  StartQuietly();
  SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Raw(Bytes({kStop})));
  clients_.back()->Unsubscribe();
  Settle(8000);
  modem_->Answer(kOn, Raw(Bytes({kStopLine, "OK", kOn, "ERROR"})));
  EXPECT_EQ(SwitchRadio(0), kRefused);
}

TEST_F(AtLateAnswer, OfALocationRequestStillGivesTheIdThatIsStopped) {
  StartQuietly();
  modem_->Answer("AT+XLCSLSR=", Silence());
  ClientSession& client = Connect();
  Settle(8000);  // given up
  modem_->Answer(kOn,
                 Raw(Bytes({Commands().back(), "+XLCSLSR: request id 23", "OK", kOn, "ERROR"})));
  EXPECT_EQ(SwitchRadio(0), kRefused);
  modem_->Answer("AT+XLCSLSR=", Ok());
  ASSERT_TRUE(client.SetReportInterval(5000).Accepted());
  ASSERT_EQ(client.Subscribe(), S_OK);
  Settle();
  modem_->Forget();
  client.Unsubscribe();
  Settle();
  EXPECT_THAT(Commands(), ElementsAre("AT+XLSRSTOP=0,23"));
}

TEST_F(AtLateAnswer, AReportWhileACommandIsPendingReachesTheClientAndLeavesTheCommandItsResult) {
  StartQuietly();
  const ClientSession& client = SubscribeEvery(5000);
  modem_->Answer(kOn, Raw(Bytes({kOn, Report(), "OK", "$GPGGA,1", "OK"})));
  {
    const Thread speaker = SayLater(10, {"ERROR"});
    EXPECT_EQ(SwitchRadio(0), kRefused);
  }
  EXPECT_THAT(client.Reports(), SizeIs(testing::Ge(1U)));
}

TEST_F(AtLateAnswer, AResultAmongAReportsSentencesCannotBeToldFromTheReportsEnd) {
  StartQuietly();
  const ClientSession& client = SubscribeEvery(5000);
  modem_->Answer(kOn, Raw(Bytes({kOn, Report(), "OK", "$GPGGA,1", "ERROR"})));
  {
    const Thread speaker = SayLater(10, {"OK"});
    EXPECT_EQ(SwitchRadio(0), S_OK) << "the OK that ends the report";
  }
  EXPECT_THAT(client.Reports(), SizeIs(testing::Ge(1U))) << "the ERROR ended it";
}

// ---- Before any echo was seen.

TEST_F(AtLateAnswer, BeforeAnyEchoCannotBeToldFromThatToEchoOn) {
  Build();
  modem_->Answer("ATE1", {Raw(Bytes({"ERROR"})), Ok()});  // of something before the driver
  Start();
  EXPECT_THAT(Commands(), ElementsAre("ATE1"));
  Settle(1000);
  std::vector<std::string> expected = BringUp();
  expected.insert(expected.begin(), "ATE1");
  EXPECT_EQ(Commands(), expected) << "bring-up tries again";
}

TEST_F(AtLateAnswer, OfEchoOnIsNotTakenForACommandThatHasNoEchoYet) {
  Build();
  modem_->Answer("ATE1", Raw(Bytes({"OK"})));
  modem_->Answer("AT+XLCSSWITCH?", Raw(Bytes({"OK"})));  // echo on's second one
  Start();
  Settle(500);
  EXPECT_THAT(Commands(), ElementsAre("ATE1", "AT+XLCSSWITCH?")) << "not completed";
  modem_->Answer("AT+XLCSSWITCH?", Ok());
  Settle(1000);
  EXPECT_THAT(modem_->TimesOf("AT+XLCSSWITCH?"), SizeIs(2));
  EXPECT_THAT(modem_->TimesOf("AT+CIMI"), SizeIs(1)) << "bring-up comes to its end";
}

TEST_F(AtLateAnswer, OfTheDeviceBeforeIsNotTakenForEchoOn) {
  StartQuietly();
  ASSERT_EQ(SwitchRadio(0), S_OK);
  ASSERT_EQ(rig_->host().Stop(), S_OK);
  rig_->host().RemoveDevice();
  modem_->Forget();
  modem_->Answer("ATE1", Raw(Bytes({"ERROR", "ATE1", "OK"})));
  ASSERT_EQ(rig_->host().AddDevice(), S_OK);
  ASSERT_EQ(rig_->host().Start(), S_OK);
  Settle();
  EXPECT_EQ(Commands(), BringUp()) << "echo on is not tried again";
}

// ---- While the device stops.

TEST_F(AtLateAnswer, WhileTheDeviceStopsEndsTheWaitAndNothingMoreIsWritten) {
  Build();
  modem_->Answer("ATE1", Silence());
  Start();
  Settle(500);
  {
    const Thread speaker = SayLater(100, {"ATE1", "OK"});
    ASSERT_EQ(rig_->host().Stop(), S_OK);
  }
  EXPECT_THAT(Commands(), ElementsAre("ATE1"));
}

TEST_F(AtLateAnswer, AfterTheDeviceHasStoppedReachesNobody) {
  Build();
  modem_->Answer("ATE1", Silence());
  Start();
  ASSERT_EQ(rig_->host().Stop(), S_OK);
  Say({"ATE1", "OK"});
  EXPECT_THAT(Commands(), ElementsAre("ATE1"));
}

TEST_F(AtLateAnswer, OfAStopSentAtTheEndIsNotTakenAfterANewStart) {
  StartQuietly();
  SubscribeEvery(5000);
  modem_->Answer("AT+XLSRSTOP=", Silence());
  clients_.clear();
  Settle(500);
  ASSERT_EQ(rig_->host().Stop(), S_OK);
  rig_->host().RemoveDevice();
  modem_->Forget();
  modem_->Answer("ATE1", Raw(Bytes({kStop, kStopLine, "OK", "ATE1", "OK"})));
  ASSERT_EQ(rig_->host().AddDevice(), S_OK);
  ASSERT_EQ(rig_->host().Start(), S_OK);
  Settle();
  EXPECT_THAT(modem_->TimesOf("ATE1"), SizeIs(1));
  EXPECT_THAT(modem_->TimesOf("AT+CIMI"), SizeIs(1)) << "bring-up comes to its end";
}

}  // namespace
}  // namespace bench
