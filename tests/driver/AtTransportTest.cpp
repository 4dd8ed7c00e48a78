// The AT channel: bytes become lines, and the device is kept out of idle while it is in use.

#include "tests/driver/ModemTest.h"
#include "workbench/framework/FxDevice.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kAnswer = "AT+XLCSSWITCH=1\r\nOK\r\n";

class AtTransport : public ModemTest {
 protected:
  /// One command, answered by these chunks.
  HRESULT AnsweredWith(std::vector<std::string> chunks) {
    modem_->Answer(kSwitchOn, Silence());
    Thread speaker(clock_, [this, chunks = std::move(chunks)] {
      clock_.SleepFor(10);
      for (const std::string& chunk : chunks) modem_->Say(chunk);
    });
    modem_->Forget();
    const HRESULT result = SwitchRadio(0);
    EXPECT_THAT(Commands(), SizeIs(SUCCEEDED(result) ? 1 : 7));
    return result;
  }
};

TEST_F(AtTransport, SeveralCarriageReturnsBeforeTheLineFeedAreRemoved) {
  StartQuietly();
  EXPECT_EQ(AnsweredWith({"AT+XLCSSWITCH=1\r\r\r\nOK\r\r\n"}), S_OK);
}

TEST_F(AtTransport, ALineFeedAloneEndsALine) {
  StartQuietly();
  EXPECT_EQ(AnsweredWith({"AT+XLCSSWITCH=1\nOK\n"}), S_OK);
}

TEST_F(AtTransport, ACarriageReturnInsideALineBelongsToIt) {
  StartQuietly();
  EXPECT_EQ(AnsweredWith({"AT+XLCSSWITCH=1\rX\r\nOK\r\n"}), kNoAnswer);
}

TEST_F(AtTransport, ALoneLineFeedYieldsAnEmptyLineThatIsDropped) {
  StartQuietly();
  EXPECT_EQ(AnsweredWith({"\n\n\r\nAT+XLCSSWITCH=1\r\n\n\r\r\n\nOK\r\n\n"}), S_OK);
}

TEST_F(AtTransport, AnAnswerCutAtEveryByteIsPutTogether) {
  const std::string answer = kAnswer;
  StartQuietly();
  for (std::size_t cut = 1; cut < answer.size(); ++cut) {
    EXPECT_EQ(AnsweredWith({answer.substr(0, cut), answer.substr(cut)}), S_OK) << cut;
  }
}

TEST_F(AtTransport, AnAnswerThatComesByteByByteIsPutTogether) {
  StartQuietly();
  std::vector<std::string> bytes;
  for (const char c : std::string(kAnswer)) bytes.emplace_back(1, c);
  EXPECT_EQ(AnsweredWith(bytes), S_OK);
}

TEST_F(AtTransport, ABeginningOfALineIsKeptUntilItsRestArrives) {
  StartQuietly();
  Connect();
  modem_->Answer("AT+XLSRSTOP=", Raw("AT+XLSRSTOP=0,17\r\n"));
  modem_->Forget();
  Thread speaker(clock_, [this] {
    clock_.SleepFor(10);
    modem_->Say("+XLSR");
    clock_.SleepFor(500);
    modem_->Say("STOP: 17\r\nOK\r\n");
  });
  clients_.clear();
  Settle(5000);
  EXPECT_THAT(Commands(), ElementsAre("AT+XLSRSTOP=0,17"));
}

TEST_F(AtTransport, TwoLinesInOneReadAreDispatchedInOrder) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  modem_->Say(ReportThenOkThenSentence("48.5 N", "9:0:0") +
              ReportThenOkThenSentence("49.5 N", "9:0:10"));
  Settle();
  ASSERT_THAT(client.Reports(), SizeIs(testing::Ge(1U)));
  EXPECT_EQ(client.Reports().back().latitude, 49.5);
}

TEST_F(AtTransport, ALineOfAHundredThousandBytesIsPutTogether) {
  StartQuietly();
  EXPECT_EQ(AnsweredWith({std::string(100'000, 'x') + "\r\n" + kAnswer}), S_OK);
}

TEST_F(AtTransport, FailedReadsAreRestartedByTheFrameworkAndNothingElse) {
  StartQuietly();
  const std::size_t started = Calls("IWDFIoTargetStateManagement::Start");
  const std::size_t stopped = Calls("IWDFIoTargetStateManagement::Stop");
  rig_->host().usb().FailRead(kStalled);
  Settle();
  EXPECT_EQ(Calls("IUsbTargetPipeContinuousReaderCallbackReadersFailed::OnReaderFailure"), 1U);
  EXPECT_EQ(SwitchRadio(0), S_OK) << "the answer is still read";
  EXPECT_EQ(Calls("IWDFIoTargetStateManagement::Start"), started);
  EXPECT_EQ(Calls("IWDFIoTargetStateManagement::Stop"), stopped);
}

TEST_F(AtTransport, BytesBeforeAFailedReadAndAfterItFormOneLine) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  Thread speaker(clock_, [this] {
    clock_.SleepFor(10);
    modem_->Say("AT+XLCSSWITCH=1\r\nO");
    rig_->host().usb().FailRead(kStalled);
    modem_->Say("K\r\n");
  });
  EXPECT_EQ(SwitchRadio(0), S_OK);
}

TEST_F(AtTransport, AReopenedChannelReadsAgainBecauseTheCommandHoldsTheEngine) {
  StartQuietly();
  modem_->Answer(kSwitchOn, {Silence(), Silence(), Silence(), Ok()});
  const std::size_t started = Calls("IWDFIoTargetStateManagement::Start");
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_EQ(Calls("IWDFIoTargetStateManagement::Start"), started + 1);
  EXPECT_EQ(Calls("IWDFUsbTargetPipe2::ConfigureContinuousReader"), 2U);
}

TEST_F(AtTransport, TwoNestedUsesAndOneReleaseLeaveTheDeviceHeldAndTheSecondLetsItIdle) {
  StartQuietly();
  Connect();
  ASSERT_EQ(IdleHolds(), 1) << "the accepted location request";
  const std::size_t holds = Calls("IWDFDevice2::StopIdle");
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_EQ(IdleHolds(), 1) << "the switch command's use is given back, the request's stays";
  EXPECT_EQ(Calls("IWDFDevice2::StopIdle"), holds) << "the nested use asks for nothing";
  clients_.clear();
  Settle();
  EXPECT_EQ(IdleHolds(), 0);
}

TEST_F(AtTransport, EveryEngineUseWaitsForTheWorkingState) {
  StartQuietly();
  ClientSession& client = SubscribeEvery(5000);
  ASSERT_TRUE(client.SetProperty(DriverKey(2), Variant::Bool(true)).Accepted());
  Settle();
  client.Unsubscribe();
  Settle();
  EXPECT_EQ(SwitchRadio(1), S_OK);
  EXPECT_THAT(Calls("IWDFDevice2::StopIdle"), testing::Ge(4U));
  EXPECT_EQ(rig_->host().device()->UnwaitedStopIdles(), 0);
}

TEST_F(AtTransport, CommandsLeaveNoObjectBehindInTheFramework) {
  StartQuietly();
  ASSERT_EQ(SwitchRadio(0), S_OK);
  const auto objects = rig_->ledger().Alive();
  ASSERT_EQ(SwitchRadio(0), S_OK);
  ASSERT_EQ(SwitchRadio(0), S_OK);
  EXPECT_EQ(rig_->ledger().Alive(), objects);
}

TEST_F(AtTransport, ACommandIsWrittenAlsoWhenTheDeviceDoesNotLeaveIdle) {
  StartQuietly();
  rig_->calls().FailCall("IWDFDevice2::StopIdle", 1, E_FAIL);
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
}

TEST_F(AtTransport, AWriteWithoutAFrameworkDriverFails) {
  StartQuietly();
  rig_->calls().FailCall("IWDFDevice::GetDriver", 1, E_FAIL);
  EXPECT_EQ(SwitchRadio(0), E_FAIL);
  EXPECT_THAT(Commands(), IsEmpty());
}

}  // namespace
}  // namespace bench
