// The call record: order, the fault plan by name and count, and the hook.
#include <gmock/gmock.h>

#include "tests/unit/bench_framework/FakeDriver.h"

namespace bench {
namespace {

using ::testing::ElementsAre;

std::vector<HRESULT> FiveCalls(CallRecord& calls) {
  std::vector<HRESULT> results;
  for (int i = 0; i < 5; ++i) results.push_back(calls.Run("x", "I::M", [] { return S_OK; }));
  return results;
}

TEST(CallRecord, OnlyTheNthCallOfThatNameFails) {
  VirtualClock clock;
  CallRecord calls(clock);
  calls.FailCall("I::M", 3, E_ABORT);
  EXPECT_EQ(calls.Run("x", "I::Other", [] { return S_OK; }), S_OK);
  EXPECT_THAT(FiveCalls(calls), ElementsAre(S_OK, S_OK, E_ABORT, S_OK, S_OK));
}

TEST(CallRecord, AllCallsFromTheNthOnFailIfSoPlanned) {
  VirtualClock clock;
  CallRecord calls(clock);
  calls.FailCall("I::M", 4, E_ABORT, true);
  EXPECT_THAT(FiveCalls(calls), ElementsAre(S_OK, S_OK, S_OK, E_ABORT, E_ABORT));
}

TEST(CallRecord, AFaultIsCountedFromWhenItIsPlanned) {
  VirtualClock clock;
  CallRecord calls(clock);
  FiveCalls(calls);
  calls.FailCall("I::M", 1, E_ABORT);
  EXPECT_THAT(FiveCalls(calls), ElementsAre(E_ABORT, S_OK, S_OK, S_OK, S_OK));
}

TEST(CallRecord, ClearedFaultsDoNotHappen) {
  VirtualClock clock;
  CallRecord calls(clock);
  calls.FailCall("I::M", 1, E_ABORT, true);
  calls.ClearFaults();
  EXPECT_THAT(FiveCalls(calls), ElementsAre(S_OK, S_OK, S_OK, S_OK, S_OK));
}

TEST(CallRecord, EntriesKeepOrderCalleeResultAndTime) {
  VirtualClock clock;
  CallRecord calls(clock);
  calls.Run("a 1", "I::First", [] { return S_OK; });
  clock.SleepFor(250);
  calls.Run("b 1", "I::Second", [] { return E_FAIL; });
  const auto entries = calls.Calls();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].object, "a 1");
  EXPECT_EQ(entries[0].time, 0);
  EXPECT_EQ(entries[1].call, "I::Second");
  EXPECT_EQ(entries[1].result, E_FAIL);
  EXPECT_EQ(entries[1].time, 250);
  EXPECT_EQ(entries[1].thread, std::this_thread::get_id());
}

TEST(CallRecord, ACallKnowsInWhichOneItWasMadeAndWhenItEnded) {
  VirtualClock clock;
  CallRecord calls(clock);
  calls.FailCall("I::Inner", 2, E_ABORT);
  calls.Run("a", "I::Outer", [&] {
    calls.Run("b", "I::Inner", [] { return S_OK; });
    return calls.Run("b", "I::Inner", [] { return S_OK; });
  });
  calls.NoteFailed("c", "after", E_FAIL);
  const auto entries = calls.Calls();
  ASSERT_EQ(entries.size(), 4U);
  EXPECT_EQ(entries[0].within, std::nullopt);
  EXPECT_EQ(entries[1].within, 0U);
  EXPECT_EQ(entries[2].within, 0U);
  EXPECT_EQ(entries[3].within, std::nullopt);
  EXPECT_EQ(entries[0].ended, 3U);
  EXPECT_EQ(entries[1].ended, 2U);
  EXPECT_FALSE(entries[1].planned);
  EXPECT_TRUE(entries[2].planned);
  EXPECT_TRUE(entries[3].planned);
}

TEST(CallRecord, AnotherThreadsCallIsInNoneOfThisOnes) {
  VirtualClock clock;
  CallRecord calls(clock);
  calls.Run("a", "I::Outer", [&] {
    std::thread([&] { calls.NoteFailed("b", "elsewhere", E_FAIL); }).join();
    calls.NoteFailed("b", "here", E_FAIL);
    return S_OK;
  });
  EXPECT_EQ(calls.Calls()[1].within, std::nullopt);
  EXPECT_EQ(calls.Calls()[2].within, 0U);
}

TEST(CallRecord, TheHookRunsBeforeTheCallTakesEffectAndMayLookAtTheRecord) {
  VirtualClock clock;
  CallRecord calls(clock);
  std::vector<std::string> seen;
  calls.SetHook([&](const CallEntry& entry) {
    seen.push_back(entry.call + " after " + std::to_string(calls.Count("I::M")));
  });
  calls.Run("x", "I::M", [&] {
    seen.push_back("body");
    return S_OK;
  });
  EXPECT_THAT(seen, ElementsAre("I::M after 1", "body"));
}

TEST(CallRecord, APlannedFaultKeepsTheCallFromHappening) {
  Bench bench;
  bench.host->AddDevice();
  bench.calls.FailCall("IWDFDevice::CreateRequest", 1, E_OUTOFMEMORY);
  ComPtr<IWDFIoRequest> request;
  EXPECT_EQ(bench.host->device()->CreateRequest(nullptr, nullptr, request.Put()), E_OUTOFMEMORY);
  EXPECT_FALSE(request);
  EXPECT_EQ(bench.host->device()->CreateRequest(nullptr, nullptr, request.Put()), S_OK);
}

TEST(CallRecord, AFaultOfACallWithoutAResultLeavesANullPointer) {
  Bench bench;
  bench.host->AddDevice();
  bench.calls.FailCall("IWDFDevice::GetDriver", 1, E_FAIL);
  ComPtr<IWDFDriver> driver;
  bench.host->device()->GetDriver(driver.Put());
  EXPECT_FALSE(driver);
}

TEST(CallRecord, OneInterfaceOfAnObjectCanBeMadeUnavailable) {
  Bench bench;
  bench.host->AddDevice();
  bench.calls.FailCall("IUnknown::QueryInterface(IWDFUsbTargetFactory)", 1, E_NOINTERFACE);
  const ComPtr<IWDFDevice> device(bench.host->device());
  ComPtr<IWDFUsbTargetFactory> factory;
  ComPtr<IWDFDevice3> device3;
  EXPECT_EQ(device.As(device3), S_OK);
  EXPECT_EQ(device.As(factory), E_NOINTERFACE);
  EXPECT_EQ(device.As(factory), S_OK);
}

}  // namespace
}  // namespace bench
