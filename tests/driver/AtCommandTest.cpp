// One AT command and its final result: attempts, time-outs, reopening, echoes.

#include <algorithm>
#include <cstring>

#include "tests/driver/ModemTest.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kOpen = "IWDFUsbTargetFactory::CreateUsbTargetDevice";
constexpr const char* kFirstOfWrite = "IUnknown::QueryInterface(IWDFIoTarget)";
constexpr GUID kEngineMessages = {
    0xb03fb04c, 0xc7b4, 0x424f, {0xb1, 0x46, 0xc5, 0xa6, 0x80, 0xe0, 0x57, 0x2d}};
constexpr USHORT kCommandEnds = 11;

auto IsCall(const char* name) {
  return testing::Field(&CallEntry::call, name);
}

class AtCommand : public ModemTest {
 protected:
  std::vector<Millis> AttemptsSince(Millis start) {
    std::vector<Millis> times = modem_->TimesOf(kSwitchOn);
    for (Millis& time : times) time -= start;
    return times;
  }
  /// The results with which commands have ended since the trace was switched on.
  std::vector<HRESULT> EndsOfCommands() {
    std::vector<HRESULT> ends;
    for (const TraceRecord& record : rig_->redirector().Tracing().TakeMessages()) {
      if (!IsEqualGUID(record.message, kEngineMessages) || record.number != kCommandEnds) continue;
      HRESULT& end = ends.emplace_back();
      std::memcpy(&end, record.arguments.data(), sizeof end);
    }
    return ends;
  }
};

TEST_F(AtCommand, IsWrittenAsExactlyItsBytesWithCrLfAndNoTerminatingZero) {
  Build();
  Start();
  ASSERT_THAT(modem_->Writes(), SizeIs(5));
  EXPECT_EQ(modem_->Writes()[0].bytes, "ATE1\r\n");
  EXPECT_EQ(modem_->Writes()[2].bytes, "AT+XLCSLQOS=50\r\n");
}

TEST_F(AtCommand, IsWrittenByTheFrameworksCallsInTheirFixedOrder) {
  StartQuietly();
  const std::size_t before = rig_->calls().Calls().size();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  std::vector<CallEntry> made = rig_->calls().Calls();
  made.erase(made.begin(), made.begin() + static_cast<std::ptrdiff_t>(before));
  made.erase(made.begin(), std::ranges::find(made, kFirstOfWrite, &CallEntry::call));
  ASSERT_THAT(made, testing::Not(IsEmpty()));
  // The answer is read on another thread.
  std::erase_if(made, [writer = made.front().thread](const CallEntry& entry) {
    return entry.thread != writer;
  });
  made.resize(std::min<std::size_t>(made.size(), 11));
  EXPECT_THAT(
      made, ElementsAre(IsCall(kFirstOfWrite), IsCall("IWDFIoTarget::GetTargetFile"),
                        IsCall("IWDFDevice::CreateRequest"), IsCall("IWDFDevice::GetDriver"),
                        IsCall("IWDFDriver::CreateWdfMemory"), IsCall("IWDFMemory::CopyFromBuffer"),
                        IsCall("IWDFIoTarget::FormatRequestForWrite"),
                        IsCall("IWDFIoRequest::Send"), IsCall("IWDFIoRequest::GetCompletionParams"),
                        IsCall("IWDFRequestCompletionParams::GetCompletionStatus"),
                        IsCall("IWDFObject::DeleteWdfObject")));
}

TEST_F(AtCommand, AnsweredWithOkSucceedsAfterOneWrite) {
  StartQuietly();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
}

TEST_F(AtCommand, AnsweredWithErrorFailsAndIsNotWrittenAgain) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Error());
  EXPECT_EQ(SwitchRadio(0), kRefused);
  Settle(10'000);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
}

TEST_F(AtCommand, ALineThatHoldsErrorAnywhereIsAnError) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Error("+CME ERROR: 4"));
  EXPECT_EQ(SwitchRadio(0), kRefused);
}

TEST_F(AtCommand, ALineThatOnlyBeginsWithOkIsAFinalResult) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Error("OKAY"));
  EXPECT_EQ(SwitchRadio(0), S_OK);
}

TEST_F(AtCommand, UnansweredIsWrittenSevenTimesASecondApartAndReopensOnceAfterTheThird) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  const std::size_t opened = Calls(kOpen);
  const Millis start = clock_.Now();
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_EQ(clock_.Now() - start, 7000);
  EXPECT_THAT(AttemptsSince(start), ElementsAre(0, 1000, 2000, 3000, 4000, 5000, 6000));
  EXPECT_EQ(Calls(kOpen), opened + 1);
  EXPECT_THAT(modem_->ControlRequests(), SizeIs(1)) << "the command port is woken again";
}

TEST_F(AtCommand, TheReopeningComesBetweenTheThirdAndTheFourthWrite) {
  StartQuietly();
  modem_->Answer(kSwitchOn, {Silence(), Silence(), Ok()});
  const std::size_t opened = Calls(kOpen);
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_EQ(Calls(kOpen), opened);
  modem_->Answer(kSwitchOn, {Silence(), Silence(), Silence(), Ok()});
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_EQ(Calls(kOpen), opened + 1);
}

TEST_F(AtCommand, AReopeningThatFailsEndsTheAttemptsWithATimeOut) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  rig_->calls().FailCall(kOpen, 1, E_FAIL);
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_THAT(Commands(), SizeIs(3));
}

TEST_F(AtCommand, AfterAFailedReopeningTheNextCommandOpensTheChannelItself) {
  StartQuietly();
  modem_->Answer(kSwitchOn, {Silence(), Silence(), Silence(), Ok()});
  rig_->calls().FailCall(kOpen, 1, E_FAIL);
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_EQ(SwitchRadio(0), S_OK);
}

TEST_F(AtCommand, AReopenedPortThatCannotBeReadEndsTheAttemptsWithATimeOut) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  rig_->calls().FailCall("IWDFIoTargetStateManagement::Start", 1, E_FAIL);
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_THAT(Commands(), SizeIs(3));
}

TEST_F(AtCommand, AfterAReopeningWithAStalledControlRequestTheNextCommandOpensTheChannelItself) {
  StartQuietly();
  modem_->Answer(kSwitchOn, {Silence(), Silence(), Silence(), Ok()});
  modem_->RefuseControl(1, kStalled);
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_EQ(SwitchRadio(0), E_FAIL) << "still stalled";
  EXPECT_THAT(Commands(), SizeIs(3));
  modem_->RefuseControl(0, 0);
  EXPECT_EQ(SwitchRadio(0), S_OK);
}

TEST_F(AtCommand, AFinalResultBehindAnotherEchoIsIgnored) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Raw("AT+OTHER\r\nOK\r\n"));
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  EXPECT_THAT(Commands(), SizeIs(7));
}

TEST_F(AtCommand, AnEchoThatIsOnlyABeginningOfTheCommandDoesNotMatch) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Raw("AT+XLCSSWITCH=\r\nOK\r\n"));
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
}

TEST_F(AtCommand, EchoOnIsAnsweredWithoutAnEchoWhenNoneWasSeenSinceTheDriverStarted) {
  Build();
  modem_->Answer("ATE1", Raw("OK\r\n"));
  Start();
  EXPECT_EQ(Commands(), BringUp());
}

TEST_F(AtCommand, WithEchoOffAnyOtherCommandTimesOutAfterSevenAttempts) {
  Build();
  modem_->Answer("", Raw("OK\r\n"));
  Start();
  Settle(20'000);
  std::vector<std::string> expected(8, "AT+XLCSSWITCH?");
  expected[0] = "ATE1";
  EXPECT_EQ(Commands(), expected);
}

TEST_F(AtCommand, OnceAnEchoWasSeenEchoOnNeedsItsEchoToo) {
  Build();
  modem_->Answer("ATE1", {Error(), Raw("OK\r\n")});
  modem_->Answer("AT+XLCSSWITCH?", Error());
  Start();
  Settle(60'000);
  EXPECT_THAT(Commands(), ElementsAre("ATE1", "ATE1", "AT+XLCSSWITCH?"))
      << "the echo of the first try still stands and is the same";
  modem_->Forget();
  ClientSession& client = Connect();
  ASSERT_TRUE(client.SetProperty(DriverKey(6), Variant::Bool(true)).Accepted());
  Settle(60'000);
  EXPECT_THAT(Commands(), SizeIs(28)) << "the last echo is of the switch query";
  EXPECT_THAT(Commands(), Each("ATE1"));
}

TEST_F(AtCommand, AnAnswerThatComesBeforeTheSecondIsOverCounts) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  Thread late(clock_, [this] {
    clock_.SleepFor(999);
    modem_->Say("AT+XLCSSWITCH=1\r\nOK\r\n");
  });
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), SizeIs(1));
}

TEST_F(AtCommand, AnAnswerThatComesAfterTheSecondWriteEndsThatAttempt) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  Thread late(clock_, [this] {
    clock_.SleepFor(1500);
    modem_->Say("AT+XLCSSWITCH=1\r\nOK\r\n");
  });
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), SizeIs(2));
}

TEST_F(AtCommand, ALateAnswerToACommandThatWasGivenUpDoesNotAnswerTheNext) {
  StartQuietly();
  modem_->Answer(kSwitchOn, Silence());
  EXPECT_EQ(SwitchRadio(0), kNoAnswer);
  modem_->Say("AT+XLCSSWITCH=1\r\nOK\r\n");
  Settle();
  modem_->Forget();
  modem_->Answer(kSwitchOff, {Silence(), Ok()});
  EXPECT_EQ(SwitchRadio(1), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOff, kSwitchOff));
}

TEST_F(AtCommand, NothingIsWrittenOnceTheCoreStops) {
  Build();
  modem_->Answer("ATE1", Silence());
  Start();
  EXPECT_THAT(Commands(), SizeIs(1));
  Settle(500);
  rig_->Shutdown();
  // The wait in flight ends by its time-out; neither a second attempt nor a retry is written.
  EXPECT_THAT(Commands(), SizeIs(1));
  EXPECT_LT(clock_.Now(), 10'000);
}

TEST_F(AtCommand, WhatIsNotWrittenBecauseTheCoreStopsFailsLikeARefusedCommand) {
  Build();
  modem_->Answer("ATE1", Silence());
  rig_->redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, ~0U);
  Start();
  Settle(500);
  ASSERT_EQ(rig_->host().Stop(), S_OK);
  // The one in flight and its three retries.
  EXPECT_THAT(EndsOfCommands(), ElementsAre(kRefused, kRefused, kRefused, kRefused));
}

TEST_F(AtCommand, AWriteThatEndsWithASuccessOfItsOwnGivesThatSuccess) {
  StartQuietly();
  rig_->calls().FailCall("IWDFRequestCompletionParams::GetCompletionStatus", 1, S_FALSE);
  EXPECT_EQ(SwitchRadio(0), S_FALSE);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
}

/// A step of writing a line that fails with its own result, once.
class AtWriteStep : public ModemTest, public testing::WithParamInterface<const char*> {};

TEST_P(AtWriteStep, FailingEndsTheCommandWithThatResultAndTheNextOneWorks) {
  constexpr auto kFault = static_cast<HRESULT>(0x8007AAAA);
  StartQuietly();
  const std::size_t opened = Calls(kOpen);
  rig_->calls().FailCall(GetParam(), 1, kFault);
  EXPECT_EQ(SwitchRadio(0), kFault);
  EXPECT_THAT(Commands(), testing::SizeIs(testing::Le(1U)));
  modem_->Forget();
  EXPECT_EQ(SwitchRadio(0), S_OK);
  EXPECT_THAT(Commands(), ElementsAre(kSwitchOn));
  EXPECT_EQ(Calls(kOpen), opened) << "the port is not closed for it";
}

INSTANTIATE_TEST_SUITE_P(Steps, AtWriteStep,
                         testing::Values("IWDFDevice::CreateRequest", "IWDFDriver::CreateWdfMemory",
                                         "IWDFMemory::CopyFromBuffer",
                                         "IWDFIoTarget::FormatRequestForWrite",
                                         "IWDFIoRequest::Send",
                                         "IWDFRequestCompletionParams::GetCompletionStatus"),
                         [](const auto& test) {
                           const std::string name = test.param;
                           return name.substr(name.find("::") + 2);
                         });

TEST_F(AtCommand, AWritePipeWithoutAnIoTargetInterfaceFailsTheCommandAtOnce) {
  StartQuietly();
  rig_->calls().FailCall("IUnknown::QueryInterface(IWDFIoTarget)", 1, E_NOINTERFACE);
  EXPECT_EQ(SwitchRadio(0), E_FAIL);
  EXPECT_THAT(Commands(), IsEmpty());
}

}  // namespace
}  // namespace bench
