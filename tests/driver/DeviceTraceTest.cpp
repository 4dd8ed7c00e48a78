// What the device's callbacks and its queue trace, and from which level and under which flag.

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/driver/RigTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The messages of driver/DeviceCallbacks.cpp and of driver/QueueCallback.cpp.
constexpr GUID kCallbackMessages = {
    0x3b6a5f2e, 0x94c1, 0x4d7b, {0xb0, 0xa8, 0x1e, 0x2f, 0x7c, 0x6d, 0x90, 0x35}};
constexpr GUID kQueueMessages = {
    0x5e0d3c7a, 0x61f4, 0x4a0b, {0x9c, 0x52, 0x8d, 0x7e, 0x1b, 0x3f, 0x2a, 0x64}};
// The messages of sensor/EventQueue.cpp.
constexpr GUID kEventMessages = {
    0x09fc53bc, 0xd2ad, 0x4cd3, {0xb1, 0x22, 0xe0, 0x32, 0x12, 0xb7, 0xc9, 0xf1}};
constexpr ULONG kGeneralFlag = 0x1;
constexpr ULONG kUsbFlag = 0x4;

class DeviceTrace : public RigTest {
 protected:
  void LoadAndListen(UCHAR level, ULONG flags = kGeneralFlag, RigOptions options = {}) {
    Load(std::move(options));
    ASSERT_EQ(rig().host().AddDevice(), S_OK);
    Listen(level, flags);
  }
  void Listen(UCHAR level, ULONG flags = kGeneralFlag) {
    rig().redirector().Tracing().Enable(level, flags);
  }
  /// The messages of one source file that came since the last look.
  std::vector<TraceRecord> Traced(const GUID& file) {
    std::vector<TraceRecord> messages;
    for (TraceRecord& message : rig().redirector().Tracing().TakeMessages()) {
      if (IsEqualGUID(message.message, file)) messages.push_back(std::move(message));
    }
    return messages;
  }
  std::vector<USHORT> Numbers(const GUID& file) {
    std::vector<USHORT> numbers;
    for (const TraceRecord& message : Traced(file)) numbers.push_back(message.number);
    return numbers;
  }
};

TEST_F(DeviceTrace, EveryCallbackTracesItsEntryAndItsExitAtLevelFour) {
  LoadAndListen(TRACE_LEVEL_INFORMATION);
  Host& host = rig().host();
  const auto& selfManagedIo = callbacks().selfManagedIo;
  struct Row {
    const char* name;
    std::function<void()> call;
    std::vector<USHORT> numbers;
  };
  const Row rows[] = {
      {"prepare", [&] { host.PrepareHardware(); }, {19, 20}},
      {"D0 entry", [&] { host.D0Entry(WdfPowerDeviceD3Final); }, {10, 11}},
      {"init", [&] { host.SelfManagedIoInit(); }, {28, 30, 29}},
      {"query remove", [&] { host.QueryRemove(); }, {17, 41}},
      {"query stop", [&] { host.QueryStop(); }, {18, 42}},
      {"file", [&] { host.CleanupFile(host.OpenFile()); }, {39, 40}},
      {"suspend", [&] { host.SelfManagedIoSuspend(); }, {33, 34}},
      {"D0 exit", [&] { host.D0Exit(WdfPowerDeviceD3); }, {13, 14}},
      {"restart", [&] { selfManagedIo->OnSelfManagedIoRestart(device()); }, {31, 32}},
      {"stop", [&] { selfManagedIo->OnSelfManagedIoStop(device()); }, {38, 44}},
      {"flush", [&] { host.SelfManagedIoFlush(); }, {35, 36}},
      {"cleanup", [&] { host.SelfManagedIoCleanup(); }, {37, 43}},
      {"removal", [&] { host.SurpriseRemoval(); }, {15, 16}},
      {"release", [&] { host.ReleaseHardware(); }, {26, 27}},
  };
  for (const Row& row : rows) {
    row.call();
    EXPECT_EQ(Numbers(kCallbackMessages), row.numbers) << row.name;
  }
}

TEST_F(DeviceTrace, TheInitEventIsPostedBeforeTheIdleSettingsAreApplied) {
  LoadAndListen(TRACE_LEVEL_VERBOSE);
  ASSERT_EQ(rig().host().PrepareHardware(), S_OK);
  ASSERT_EQ(rig().host().D0Entry(WdfPowerDeviceD3Final), S_OK);
  Traced(kCallbackMessages);
  ASSERT_EQ(rig().host().SelfManagedIoInit(), S_OK);
  std::vector<std::string> order;
  for (const TraceRecord& message : rig().redirector().Tracing().TakeMessages()) {
    if (message.thread != GetCurrentThreadId()) continue;
    if (IsEqualGUID(message.message, kEventMessages)) {
      order.emplace_back(reinterpret_cast<const char*>(message.arguments.data()));
    } else if (IsEqualGUID(message.message, kCallbackMessages) && message.number == 30) {
      order.emplace_back("idle settings");
    }
  }
  EXPECT_THAT(order, ElementsAre("EV_INIT", "idle settings"));
}

TEST_F(DeviceTrace, WithoutAFailureTheCallbacksTraceNothingBelowLevelFour) {
  LoadAndListen(TRACE_LEVEL_WARNING);
  EXPECT_EQ(rig().host().Start(), S_OK);
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_THAT(Numbers(kCallbackMessages), IsEmpty());
}

TEST_F(DeviceTrace, AnExitCarriesTheResult) {
  LoadAndListen(TRACE_LEVEL_INFORMATION);
  rig().host().SurpriseRemoval();
  Traced(kCallbackMessages);
  EXPECT_EQ(callbacks().pnp->OnD0Entry(device(), WdfPowerDeviceD3), kShutdownInProgress);
  const std::vector<TraceRecord> messages = Traced(kCallbackMessages);
  ASSERT_EQ(messages.size(), 2U);
  HRESULT result = S_OK;
  ASSERT_EQ(messages[1].arguments.size(), sizeof(std::int32_t));
  std::memcpy(&result, messages[1].arguments.data(), sizeof(std::int32_t));
  EXPECT_EQ(result, kShutdownInProgress);
}

TEST_F(DeviceTrace, AFailedPowerUpIsCritical) {
  LoadAndListen(TRACE_LEVEL_CRITICAL);
  ASSERT_EQ(rig().host().PrepareHardware(), S_OK);
  rig().calls().FailCall("IWDFIoTargetStateManagement::Start", 1, E_ABORT);
  EXPECT_EQ(rig().host().D0Entry(WdfPowerDeviceD3Final), E_ABORT);
  EXPECT_THAT(Numbers(kCallbackMessages), ElementsAre(12));
}

TEST_F(DeviceTrace, ASensorThatDoesNotStartIsCritical) {
  RigOptions options;
  options.withheldClasses = {ApiClass::kClassExtension};
  LoadAndListen(TRACE_LEVEL_CRITICAL, kGeneralFlag, std::move(options));
  EXPECT_EQ(rig().host().PrepareHardware(), E_UNEXPECTED);
  EXPECT_THAT(Numbers(kCallbackMessages), ElementsAre(24));
}

TEST_F(DeviceTrace, ThePreparationsSummaryStandsUnderTheUsbFlag) {
  LoadAndListen(TRACE_LEVEL_VERBOSE, kUsbFlag);
  EXPECT_EQ(rig().host().Start(), S_OK);
  EXPECT_THAT(Numbers(kCallbackMessages), ElementsAre(25));
}

TEST_F(DeviceTrace, RequestsAreTracedAtLevelFiveOnly) {
  constexpr ULONG kReadRadioState = 0x89056000;
  LoadAndListen(TRACE_LEVEL_INFORMATION);
  ASSERT_EQ(rig().host().Start(), S_OK);
  const auto ask = [&] {
    const ClientRequest request =
        rig().host().SendIoControl(kReadRadioState, "", 4, nullptr, Host::Dispatch::kCallingThread);
    EXPECT_TRUE(request.IsCompleted());
  };
  ask();
  EXPECT_THAT(Numbers(kQueueMessages), IsEmpty());
  Listen(TRACE_LEVEL_VERBOSE);
  ask();
  EXPECT_THAT(Numbers(kQueueMessages), ElementsAre(10, 11));
}

}  // namespace
}  // namespace bench
