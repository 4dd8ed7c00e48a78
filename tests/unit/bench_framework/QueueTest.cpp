// Clients' requests: the way through the queue, completion exactly once, stop and purge.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "tests/unit/bench_framework/FakeDriver.h"
#include "workbench/framework/FxQueue.h"

namespace bench {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct QueueBench : Bench {
  QueueBench() {
    host->AddDevice();
    queue = MakeQueue();
  }
  ClientRequest Send(ULONG code = 1, std::string_view input = {}, std::size_t outputSize = 0) {
    return host->SendIoControl(code, input, outputSize);
  }
  /// The driver keeps each request and returns without completing it.
  void KeepRequests() {
    script.onIoControl = [this](IWDFIoRequest* request, ULONG) {
      kept = request;
      got.Add("kept");
    };
  }
  IWDFIoRequest* kept = nullptr;
  Collected got{clock};
  ComPtr<IWDFIoQueue> queue;
};

TEST(Queue, ARequestCarriesItsCodeAndBuffersAndComesBackWithTheAnswer) {
  QueueBench bench;
  bench.script.onIoControl = [](IWDFIoRequest* request, ULONG code) {
    ComPtr<IWDFMemory> input;
    ComPtr<IWDFMemory> output;
    request->GetInputMemory(input.Put());
    request->GetOutputMemory(output.Put());
    char bytes[2] = {};
    input->CopyToBuffer(0, bytes, 2);
    output->CopyFromBuffer(1, bytes, 2);
    request->CompleteWithInformation(static_cast<HRESULT>(code), 3);
  };
  const ClientRequest request = bench.Send(77, "ab", 4);
  ASSERT_TRUE(request.Wait());
  EXPECT_EQ(request.Status(), 77);
  EXPECT_EQ(request.Information(), 3U);
  EXPECT_EQ(request.Output(), std::string("\0ab\0", 4));
  EXPECT_EQ(bench.host->OpenRequests(), 0U);
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Queue, TheCallbacksResultInTheRecordIsTheAnswer) {
  QueueBench bench;
  bench.script.onIoControl = [](IWDFIoRequest* request, ULONG) { request->Complete(E_ABORT); };
  ASSERT_TRUE(bench.host->SendIoControl(1, {}, 0, nullptr, Host::Dispatch::kCallingThread).Wait());
  const auto calls = bench.calls.Calls();
  const auto callback = std::ranges::find(calls, "IQueueCallbackDeviceIoControl::OnDeviceIoControl",
                                          &CallEntry::call);
  ASSERT_NE(callback, calls.end());
  EXPECT_EQ(callback->result, E_ABORT);
}

TEST(Queue, EmptyBuffersHaveNoMemory) {
  QueueBench bench;
  bench.script.onIoControl = [&](IWDFIoRequest* request, ULONG) {
    ComPtr<IWDFMemory> memory;
    request->GetInputMemory(memory.Put());
    bench.got.Add(memory ? "memory" : "none");
    request->GetOutputMemory(memory.Put());
    bench.got.Add(memory ? "memory" : "none");
    request->Complete(S_OK);
  };
  ASSERT_TRUE(bench.Send().Wait());
  EXPECT_THAT(bench.got.Items(), ElementsAre("none", "none"));
}

TEST(Queue, WithoutAQueueARequestFailsAtOnce) {
  Bench bench;
  bench.host->AddDevice();
  const ClientRequest request = bench.host->SendIoControl(1, {}, 0);
  EXPECT_TRUE(request.IsCompleted());
  EXPECT_TRUE(FAILED(request.Status()));
}

TEST(Queue, RequestsAreDispatchedInParallel) {
  QueueBench bench;
  bench.script.onIoControl = [&](IWDFIoRequest* request, ULONG code) {
    bench.got.Add("in");
    bench.got.WaitFor(2);
    request->Complete(static_cast<HRESULT>(code));
  };
  const ClientRequest first = bench.Send(1);
  const ClientRequest second = bench.Send(2);
  EXPECT_TRUE(first.Wait());
  EXPECT_TRUE(second.Wait());
  EXPECT_EQ(bench.clock.Now(), 0);
}

TEST(Queue, TheCallingThreadCanDispatch) {
  QueueBench bench;
  std::thread::id dispatcher;
  bench.script.onIoControl = [&](IWDFIoRequest* request, ULONG) {
    dispatcher = std::this_thread::get_id();
    request->Complete(S_OK);
  };
  const ClientRequest request =
      bench.host->SendIoControl(1, {}, 0, nullptr, Host::Dispatch::kCallingThread);
  EXPECT_TRUE(request.IsCompleted());
  EXPECT_EQ(dispatcher, std::this_thread::get_id());
}

TEST(Queue, ARequestMayBeCompletedLaterByAnotherThread) {
  QueueBench bench;
  bench.KeepRequests();
  const ClientRequest request = bench.Send();
  bench.got.WaitFor(1);
  EXPECT_FALSE(request.Wait(1000));
  EXPECT_EQ(bench.host->OpenRequests(), 1U);
  bench.kept->Complete(S_FALSE);
  EXPECT_TRUE(request.Wait(0));
  EXPECT_EQ(request.Status(), S_FALSE);
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Queue, ASecondCompletionIsCaughtAndChangesNothing) {
  QueueBench bench;
  bench.script.onIoControl = [](IWDFIoRequest* request, ULONG) {
    request->AddRef();
    request->Complete(S_OK);
    request->CompleteWithInformation(E_FAIL, 1);
    request->Release();
  };
  const ClientRequest request = bench.Send();
  ASSERT_TRUE(request.Wait());
  bench.queue->StopSynchronously();
  bench.host->RemoveDevice();
  EXPECT_EQ(request.Status(), S_OK);
  EXPECT_THAT(bench.ledger.Violations(), ElementsAre("request completed twice: client request 1: "
                                                     "IWDFIoRequest::CompleteWithInformation"));
}

TEST(Queue, TouchingARequestAfterItsCompletionIsCaught) {
  QueueBench bench;
  bench.script.onIoControl = [](IWDFIoRequest* request, ULONG) {
    request->Complete(S_OK);
    request->GetType();
  };
  bench.host->SendIoControl(1, {}, 0, nullptr, Host::Dispatch::kCallingThread);
  EXPECT_EQ(bench.ledger.Count(rule::kTouchedAfterCompletion), 1U);
}

TEST(Queue, TheRequestsMemoryIsOutOfReachAfterItsCompletion) {
  QueueBench bench;
  bench.script.onIoControl = [](IWDFIoRequest* request, ULONG) {
    ComPtr<IWDFMemory> memory;
    request->GetOutputMemory(memory.Put());
    request->Complete(S_OK);
    memory->GetSize();
  };
  bench.host->SendIoControl(1, {}, 4, nullptr, Host::Dispatch::kCallingThread);
  EXPECT_EQ(bench.ledger.Count(rule::kTouchedAfterCompletion), 1U);
}

TEST(Queue, AStoppedQueueKeepsRequestsUntilItStarts) {
  QueueBench bench;
  bench.script.onIoControl = [](IWDFIoRequest* request, ULONG) { request->Complete(S_OK); };
  bench.queue->StopSynchronously();
  const ClientRequest request = bench.Send();
  EXPECT_FALSE(request.Wait(1000));
  ULONG waiting = 0;
  ULONG withDriver = 7;
  const int state = bench.queue->GetState(&waiting, &withDriver);
  EXPECT_EQ(state, WdfIoQueueAcceptRequests | WdfIoQueueDriverNoRequests);
  EXPECT_EQ(waiting, 1U);
  EXPECT_EQ(withDriver, 0U);
  bench.queue->Start();
  EXPECT_TRUE(request.Wait());
}

TEST(Queue, StopWaitsForTheDriversAnswers) {
  QueueBench bench;
  bench.script.onIoControl = [&](IWDFIoRequest* request, ULONG) {
    bench.got.Add("in");
    bench.clock.SleepFor(400);
    request->Complete(S_OK);
  };
  const ClientRequest request = bench.Send();
  bench.got.WaitFor(1);
  bench.queue->StopSynchronously();
  EXPECT_EQ(bench.clock.Now(), 400);
  EXPECT_TRUE(request.IsCompleted());
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Queue, AnAnswerLaterThanASecondAfterTheStopIsReported) {
  QueueBench bench;
  bench.KeepRequests();
  bench.Send();
  bench.got.WaitFor(1);
  bench.queue->StopSynchronously();
  EXPECT_EQ(bench.clock.Now(), 1000);
  EXPECT_EQ(bench.ledger.Count(rule::kSlowAnswer), 1U);
}

TEST(Queue, APurgeCancelsWhatWaitsAndRefusesWhatComes) {
  QueueBench bench;
  bench.queue->StopSynchronously();
  const ClientRequest waiting = bench.Send();
  bench.queue->PurgeSynchronously();
  EXPECT_TRUE(waiting.Wait(0));
  EXPECT_EQ(waiting.Status(), kOperationAborted);
  const ClientRequest late = bench.Send();
  EXPECT_TRUE(late.Wait(0));
  EXPECT_TRUE(FAILED(late.Status()));
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Queue, ARequestNeverCompletedIsAbandonedAndReportedAtTheRemoval) {
  QueueBench bench;
  bench.KeepRequests();
  const ClientRequest request = bench.Send();
  bench.got.WaitFor(1);
  bench.queue.Reset();
  bench.host->RemoveDevice();
  EXPECT_TRUE(request.IsAbandoned());
  EXPECT_FALSE(request.Wait());
  EXPECT_EQ(bench.ledger.Count(rule::kNeverCompleted), 1U);
}

TEST(Queue, AWaitingRequestAbandonedAtTheRemovalIsNotTheDriversFault) {
  QueueBench bench;
  bench.queue->StopSynchronously();
  const ClientRequest request = bench.Send();
  bench.queue.Reset();
  bench.host->RemoveDevice();
  EXPECT_TRUE(request.IsAbandoned());
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Queue, ASecondDefaultQueueIsAnInvalidState) {
  QueueBench bench;
  EXPECT_FALSE(bench.MakeQueue());
  ComPtr<IWDFIoQueue> found;
  bench.host->device()->GetDefaultIoQueue(found.Put());
  EXPECT_EQ(found.Get(), bench.queue.Get());
}

TEST(Queue, WithoutADefaultQueueThePointerStaysUntouched) {
  Bench bench;
  bench.host->AddDevice();
  IWDFIoQueue* queue = nullptr;
  bench.host->device()->GetDefaultIoQueue(&queue);
  EXPECT_EQ(queue, nullptr);
}

TEST(Queue, ACallbackObjectWithoutAQueueInterfaceIsABadConfiguration) {
  Bench bench;
  bench.host->AddDevice();
  const ComPtr<IPnpCallback> wrong(new FakeDeviceCallbacks(bench.script));
  ComPtr<IWDFIoQueue> queue;
  EXPECT_EQ(bench.host->device()->CreateIoQueue(wrong.Get(), TRUE, WdfIoQueueDispatchParallel,
                                                FALSE, TRUE, queue.Put()),
            kBadConfiguration);
}

TEST(Queue, ARequestKnowsTheFileItCameThrough) {
  QueueBench bench;
  IWDFFile* const file = bench.host->OpenFile();
  bench.script.onIoControl = [&](IWDFIoRequest* request, ULONG) {
    ComPtr<IWDFFile> through;
    request->GetFileObject(through.Put());
    bench.got.Add(through.Get() == file ? "that file" : "another");
    request->Complete(S_OK);
  };
  ASSERT_TRUE(bench.host->SendIoControl(1, {}, 0, file).Wait());
  EXPECT_THAT(bench.got.Items(), ElementsAre("that file"));
}

TEST(Queue, CleanupTellsTheDriverOfTheFileAndThenDropsIt) {
  QueueBench bench;
  IWDFFile* const file = bench.host->OpenFile();
  IWDFFile* cleaned = nullptr;
  bench.script.onCleanupFile = [&](IWDFFile* closing) { cleaned = closing; };
  bench.host->CleanupFile(file);
  EXPECT_EQ(cleaned, file);
  file->AddRef();
  EXPECT_EQ(bench.ledger.Count(rule::kDeletedObject), 1U);
  EXPECT_THROW(bench.host->CleanupFile(file), std::logic_error);
}

}  // namespace
}  // namespace bench
