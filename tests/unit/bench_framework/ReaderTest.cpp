// The continuous reader: chunks, stop and start, failures, and its end.
#include <gmock/gmock.h>

#include "tests/unit/bench_framework/FakeDriver.h"

namespace bench {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct ReaderBench : Bench {
  explicit ReaderBench(SIZE_T length = 4096, DevicePlan plan = {}) : Bench(std::move(plan)) {
    host->AddDevice();
    script.onBytes = [this](std::string bytes) { got.Add(std::move(bytes)); };
    pipe = ConfigureReader(length);
    state = StateOf(pipe);
  }
  Collected got{clock};
  ComPtr<IWDFUsbTargetPipe> pipe;
  ComPtr<IWDFIoTargetStateManagement> state;
};

TEST(Reader, ChunkBordersAreKeptAsTheModemFlushedThem) {
  ReaderBench bench;
  bench.state->Start();
  bench.modem.Say("OK\r\n");
  bench.modem.Say("+XLCS");
  bench.modem.Say("LSR: 1\r\n");
  EXPECT_THAT(bench.got.WaitFor(3), ElementsAre("OK\r\n", "+XLCS", "LSR: 1\r\n"));
}

TEST(Reader, AChunkLongerThanTheTransferIsSplit) {
  ReaderBench bench(4);
  bench.state->Start();
  bench.modem.Say("abcdefghij");
  bench.modem.Say("1234");
  EXPECT_THAT(bench.got.WaitFor(4), ElementsAre("abcd", "efgh", "ij", "1234"));
}

TEST(Reader, NothingIsDeliveredBeforeTheStart) {
  ReaderBench bench;
  bench.modem.Say("early");
  bench.clock.SleepFor(1000);
  EXPECT_THAT(bench.got.Items(), IsEmpty());
  EXPECT_EQ(bench.state->GetState(), WdfIoTargetStopped);
  bench.state->Start();
  EXPECT_EQ(bench.state->GetState(), WdfIoTargetStarted);
  EXPECT_THAT(bench.got.WaitFor(1), ElementsAre("early"));
}

TEST(Reader, BytesThatArriveWhileStoppedComeAfterTheNextStart) {
  ReaderBench bench;
  bench.state->Start();
  bench.modem.Say("one");
  bench.got.WaitFor(1);
  bench.state->Stop(WdfIoTargetCancelSentIo);
  bench.modem.Say("two");
  bench.clock.SleepFor(1000);
  EXPECT_THAT(bench.got.Items(), ElementsAre("one"));
  EXPECT_EQ(bench.host->usb().WaitingBytes(), 3U);
  bench.state->Start();
  EXPECT_THAT(bench.got.WaitFor(2), ElementsAre("one", "two"));
}

TEST(Reader, BytesLeftByADeletedTargetComeToTheNextOne) {
  ReaderBench bench;
  bench.modem.Say("kept");
  bench.state.Reset();
  bench.pipe.Reset();
  bench.CloseUsb();
  const auto pipe = bench.ConfigureReader();
  StateOf(pipe)->Start();
  EXPECT_THAT(bench.got.WaitFor(1), ElementsAre("kept"));
}

TEST(Reader, AStopThatDoesNotCancelTheReadIsCaught) {
  ReaderBench bench;
  bench.state->Start();
  bench.state->Stop(WdfIoTargetWaitForSentIoToComplete);
  bench.state->Start();
  bench.state->Stop(WdfIoTargetLeaveSentIoPending);
  EXPECT_EQ(bench.ledger.Count(rule::kUnexpectedCall), 2U);
}

TEST(Reader, StopWaitsForARunningCallback) {
  ReaderBench bench;
  Collected inside(bench.clock);
  bench.script.onBytes = [&](std::string bytes) {
    inside.Add("in");
    bench.clock.SleepFor(500);
    bench.got.Add(std::move(bytes));
  };
  bench.state->Start();
  bench.modem.Say("slow");
  inside.WaitFor(1);
  bench.state->Stop(WdfIoTargetCancelSentIo);
  EXPECT_EQ(bench.clock.Now(), 500);
  EXPECT_THAT(bench.got.Items(), ElementsAre("slow"));
}

TEST(Reader, DeletingTheTargetWaitsForARunningCallbackAndEndsTheReader) {
  ReaderBench bench;
  Collected inside(bench.clock);
  bench.script.onBytes = [&](std::string bytes) {
    inside.Add("in");
    bench.clock.SleepFor(500);
    bench.got.Add(std::move(bytes));
  };
  bench.state->Start();
  bench.modem.Say("slow");
  inside.WaitFor(1);
  bench.state.Reset();
  bench.pipe.Reset();
  bench.CloseUsb();
  EXPECT_THAT(bench.got.Items(), ElementsAre("slow"));
  bench.modem.Say("late");
  bench.clock.SleepFor(1000);
  EXPECT_THAT(bench.got.Items(), ElementsAre("slow"));
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Reader, DeletingATargetWhoseReaderIsIdleEndsAtOnce) {
  ReaderBench bench;
  bench.state->Start();
  bench.state.Reset();
  bench.pipe.Reset();
  bench.CloseUsb();
  EXPECT_EQ(bench.clock.Now(), 0);
  bench.host->RemoveDevice();
  bench.host->Unload();
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Reader, ASecondConfigurationIsAnInvalidState) {
  ReaderBench bench;
  EXPECT_EQ(bench.configured, S_OK);
  bench.ConfigureReader();
  EXPECT_EQ(bench.configured, kInvalidDeviceState);
}

TEST(Reader, APipeThatWritesCannotHaveAReader) {
  Bench bench;
  bench.host->AddDevice();
  const auto out = bench.Pipe(1, 1);
  ComPtr<IWDFUsbTargetPipe2> pipe2;
  out.As(pipe2);
  auto* const reader = new FakeReader(bench.script);
  const ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> hold(reader);
  EXPECT_EQ(pipe2->ConfigureContinuousReader(64, 0, 0, 1, nullptr, reader, nullptr, reader),
            kInvalidDeviceState);
}

TEST(Reader, AnInterruptPipeMayHaveAReaderThatStaysSilent) {
  Bench bench;
  bench.host->AddDevice();
  Collected got(bench.clock);
  bench.script.onBytes = [&](std::string bytes) { got.Add(std::move(bytes)); };
  const auto interrupt = bench.Pipe(0, 0);
  ComPtr<IWDFUsbTargetPipe2> pipe2;
  interrupt.As(pipe2);
  auto* const reader = new FakeReader(bench.script);
  const ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> hold(reader);
  EXPECT_EQ(pipe2->ConfigureContinuousReader(64, 0, 0, 1, nullptr, reader, nullptr, reader), S_OK);
  StateOf(interrupt)->Start();
  bench.modem.Say("for the bulk pipe");
  bench.clock.SleepFor(1000);
  EXPECT_THAT(got.Items(), IsEmpty());
}

TEST(Reader, APipeWithAReaderRefusesToSend) {
  ReaderBench bench;
  ComPtr<IWDFIoRequest> request;
  bench.host->device()->CreateRequest(nullptr, nullptr, request.Put());
  EXPECT_EQ(request->Send(bench.pipe.Get(), WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0),
            kInvalidDeviceState);
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Reader, AFailureComesAfterWhatWasFlushedBeforeAndTrueRestartsTheReader) {
  ReaderBench bench;
  bench.script.onReaderFailure = [&](IWDFUsbTargetPipe*, HRESULT status) {
    bench.got.Add(status == E_ABORT ? "failed" : "other");
    return TRUE;
  };
  bench.state->Start();
  bench.modem.Say("before");
  bench.host->usb().FailRead(E_ABORT);
  bench.modem.Say("after");
  EXPECT_THAT(bench.got.WaitFor(3), ElementsAre("before", "failed", "after"));
}

TEST(Reader, FalseLeavesTheReaderDownUntilStopAndStart) {
  ReaderBench bench;
  bench.script.onReaderFailure = [&](IWDFUsbTargetPipe*, HRESULT) {
    bench.got.Add("failed");
    return FALSE;
  };
  bench.state->Start();
  bench.host->usb().FailRead(E_ABORT);
  bench.modem.Say("waits");
  bench.got.WaitFor(1);
  bench.clock.SleepFor(1000);
  EXPECT_THAT(bench.got.Items(), ElementsAre("failed"));
  bench.state->Stop(WdfIoTargetCancelSentIo);
  bench.state->Start();
  EXPECT_THAT(bench.got.WaitFor(2), ElementsAre("failed", "waits"));
}

TEST(Reader, UnpluggingFailsTheReaderOnceThoughItAsksForARestart) {
  ReaderBench bench;
  bench.script.onReaderFailure = [&](IWDFUsbTargetPipe*, HRESULT) {
    bench.got.Add("failed");
    return TRUE;
  };
  bench.state->Start();
  bench.host->SurpriseRemoval();
  bench.got.WaitFor(1);
  bench.clock.SleepFor(1000);
  EXPECT_THAT(bench.got.Items(), ElementsAre("failed"));
}

TEST(Reader, StopFromItsOwnCallbackIsCaughtWithoutADeadlock) {
  ReaderBench bench;
  bench.script.onBytes = [&](std::string bytes) {
    bench.state->Stop(WdfIoTargetCancelSentIo);
    bench.got.Add(std::move(bytes));
  };
  bench.state->Start();
  bench.modem.Say("x");
  EXPECT_THAT(bench.got.WaitFor(1), ElementsAre("x"));
  EXPECT_EQ(bench.ledger.Count(rule::kReaderReentered), 1U);
}

TEST(Reader, StartFromTheFailureCallbackIsCaught) {
  ReaderBench bench;
  bench.script.onReaderFailure = [&](IWDFUsbTargetPipe*, HRESULT) {
    bench.state->Start();
    bench.got.Add("failed");
    return FALSE;
  };
  bench.state->Start();
  bench.host->usb().FailRead(E_ABORT);
  bench.got.WaitFor(1);
  EXPECT_EQ(bench.ledger.Count(rule::kReaderReentered), 1U);
}

TEST(Reader, AStartWhileAnotherThreadStopsIsCaught) {
  ReaderBench bench;
  Collected inside(bench.clock);
  bench.script.onBytes = [&](std::string) {
    inside.Add("in");
    bench.clock.SleepFor(500);
  };
  bench.state->Start();
  bench.modem.Say("slow");
  inside.WaitFor(1);
  Thread stopper(bench.clock, [&] { bench.state->Stop(WdfIoTargetCancelSentIo); });
  bench.clock.SleepFor(100);
  bench.state->Start();
  stopper.Join();
  EXPECT_EQ(bench.ledger.Count(rule::kReaderOverlap), 1U);
}

TEST(Reader, DeletingTheTargetFromItsOwnReaderIsCaughtWithoutADeadlock) {
  ReaderBench bench;
  bench.script.onBytes = [&](std::string bytes) {
    bench.usb->DeleteWdfObject();
    bench.got.Add(std::move(bytes));
  };
  bench.state->Start();
  bench.modem.Say("x");
  EXPECT_THAT(bench.got.WaitFor(1), ElementsAre("x"));
  EXPECT_EQ(bench.ledger.Count(rule::kReaderReentered), 1U);
}

TEST(Reader, MemoryKeptBeyondTheCallbackStaysReadable) {
  ReaderBench bench;
  struct Keeper final : CountedObject<IUsbTargetPipeContinuousReaderCallbackReadComplete> {
    explicit Keeper(Collected& notes) : got(notes) {}
    void STDMETHODCALLTYPE OnReaderCompletion(IWDFUsbTargetPipe*, IWDFMemory* memory, SIZE_T,
                                              PVOID) override {
      kept = ComPtr(memory);
      got.Add("kept");
    }
    Collected& got;
    ComPtr<IWDFMemory> kept;
  };
  bench.state.Reset();
  bench.pipe.Reset();
  bench.CloseUsb();
  auto* const keeper = new Keeper(bench.got);
  const ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> hold(keeper);
  const auto pipe = bench.Pipe(1, 0);
  ComPtr<IWDFUsbTargetPipe2> pipe2;
  pipe.As(pipe2);
  pipe2->ConfigureContinuousReader(64, 0, 0, 1, nullptr, keeper, nullptr, nullptr);
  StateOf(pipe)->Start();
  bench.modem.Say("text");
  bench.got.WaitFor(1);
  StateOf(pipe)->Stop(WdfIoTargetCancelSentIo);
  char bytes[4] = {};
  EXPECT_EQ(keeper->kept->CopyToBuffer(0, bytes, 4), S_OK);
  EXPECT_EQ(std::string(bytes, 4), "text");
  keeper->kept.Reset();
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

}  // namespace
}  // namespace bench
