// A device's context and queue asked for what the framework's order never asks of them. Only here
// are the driver's own classes within a test's reach, with the whole workbench around them.
#include <utility>
#include <vector>

#include "driver/DeviceCallbacks.h"
#include "driver/DeviceContext.h"
#include "driver/IoControlCodes.h"
#include "driver/Module.h"
#include "driver/QueueCallback.h"
#include "sensor/Events.h"
#include "tests/native/rig/ListenedTest.h"
#include "tests/unit/platform/FrameworkRecorders.h"

namespace bench {
namespace {

using stelvane::ComPtr;

constexpr const char* kInitialize = "ISensorClassExtension::Initialize";
constexpr const char* kUninitialize = "ISensorClassExtension::Uninitialize";
constexpr ULONG kReadRadio = stelvane::kIoctlReadRadioState;

class DeviceContextTest : public ListenedTest {
 protected:
  stelvane::DeviceCallbacks& driverCallbacks() {
    return static_cast<stelvane::DeviceCallbacks&>(*callbacks().pnp.Get());
  }
  ComPtr<stelvane::DeviceContext> Context() { return driverCallbacks().Context(); }
  /// A context that nobody has started or attached.
  static ComPtr<stelvane::DeviceContext> NewContext() {
    ComPtr<stelvane::DeviceContext> context;
    EXPECT_EQ(stelvane::CreateObject(context), S_OK);
    return context;
  }
};

TEST_P(DeviceContextTest, AStartedContextIsNotAttachedAgain) {
  AddAndStart();
  EXPECT_EQ(Context()->Attach(device(), &driverCallbacks()), E_UNEXPECTED);
}

TEST_P(DeviceContextTest, ASecondStartMakesNoSecondCoreAndNoSecondClassExtension) {
  AddAndStart();
  EXPECT_EQ(Context()->StartSensor(), S_OK);
  EXPECT_EQ(rig().calls().Count(kInitialize), 1U);
}

TEST_P(DeviceContextTest, AStartAfterAFailedOneFindsTheClassExtensionSetAlready) {
  Add();
  rig().calls().FailCall(kInitialize, 1, E_ABORT);
  ASSERT_EQ(rig().host().PrepareHardware(), E_ABORT);
  EXPECT_EQ(Context()->StartSensor(), E_UNEXPECTED);
  EXPECT_EQ(rig().calls().Count(kInitialize), 1U);
}

TEST_P(DeviceContextTest, TheCoreIsStoppedOnce) {
  AddAndStart();
  EXPECT_EQ(Context()->StopSensorCore(), S_OK);
  EXPECT_EQ(Context()->StopSensorCore(), S_OK);
}

TEST_P(DeviceContextTest, ASensorRequestWithoutAClassExtensionIsNotForwarded) {
  Add();
  NewContext()->ProcessIoControl(nullptr);
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::ProcessIoControl"), 0U);
}

TEST_P(DeviceContextTest, APrivateRequestOfAReleasedContextIsRefused) {
  AddAndStart();
  const ComPtr<stelvane::DeviceContext> context = Context();
  context->ReleaseClassExtension();
  EXPECT_EQ(rig().calls().Count(kUninitialize), 1U);
  EXPECT_EQ(context->HandlePrivateIoControl(nullptr, kReadRadio), kShutdownInProgress);
}

TEST_P(DeviceContextTest, APrivateRequestIsRefusedByAShutdownThatBeganAfterItsDispatch) {
  AddAndStart();
  rig().host().SurpriseRemoval();
  EXPECT_EQ(Context()->HandlePrivateIoControl(nullptr, kReadRadio), kShutdownInProgress);
}

TEST_P(DeviceContextTest, AnEventThatNobodyPostsConfiguresSuplAndAnUnknownOneDoesNothing) {
  AddAndStart();
  clock_.SleepFor(1000);
  auto expected = rig().modem().Snapshot().commandLines;
  Context()->PostSensorEvent(0xFFFF);
  clock_.SleepFor(1000);
  EXPECT_EQ(rig().modem().Snapshot().commandLines, expected);
  Context()->PostSensorEvent(stelvane::EV_INIT_SUPL);
  clock_.SleepFor(1000);
  ++expected["AT+CIMI"];
  EXPECT_EQ(rig().modem().Snapshot().commandLines, expected);
}

TEST_P(DeviceContextTest, TheDefaultQueueNeedsADevice) {
  Add();
  EXPECT_EQ(stelvane::EnsureDefaultQueue(nullptr), E_UNEXPECTED);
}

TEST_P(DeviceContextTest, ANewDefaultQueueNeedsAnOwnerAndAnOldOneIsLeft) {
  Add();
  stelvane::SetModuleDevice(device());
  EXPECT_EQ(stelvane::EnsureDefaultQueue(nullptr), E_INVALIDARG);
  EXPECT_EQ(stelvane::EnsureDefaultQueue(&driverCallbacks()), S_OK);
  EXPECT_EQ(stelvane::EnsureDefaultQueue(nullptr), S_OK);
  stelvane::SetModuleDevice(nullptr);
}

TEST_P(DeviceContextTest, APreparationLeavesTheModulesDeviceWhenItIsTheSame) {
  Add();
  stelvane::SetModuleDevice(device());
  EXPECT_EQ(rig().host().PrepareHardware(), S_OK);
  EXPECT_EQ(stelvane::ModuleDevice().Get(), device());
}

TEST_P(DeviceContextTest, IdleSettingsWithoutADeviceAreNoFailure) {
  Add();
  ASSERT_EQ(rig().host().PrepareHardware(), S_OK);
  ASSERT_EQ(rig().host().D0Entry(WdfPowerDeviceD3Final), S_OK);
  stelvane::SetModuleDevice(nullptr);
  EXPECT_EQ(rig().host().SelfManagedIoInit(), S_OK);
  EXPECT_EQ(rig().calls().Count("IWDFDevice3::AssignS0IdleSettingsEx"), 0U);
  stelvane::SetModuleDevice(device());
}

/// Notes what it is completed with.
struct NotedRequest : platform_test::WDFIoRequestRecorder<> {
  void STDMETHODCALLTYPE CompleteWithInformation(HRESULT status, SIZE_T information) override {
    answers.emplace_back(status, information);
  }
  std::vector<std::pair<HRESULT, SIZE_T>> answers;
};

TEST_P(DeviceContextTest, APrivateRequestWithoutAContextFailsAndTellsOfFourBytes) {
  Add();
  ComPtr<stelvane::QueueCallback> queue;
  ASSERT_EQ(stelvane::CreateObject(queue, &driverCallbacks()), S_OK);
  NotedRequest request;
  queue->OnDeviceIoControl(nullptr, &request, kReadRadio, 0, 4);
  EXPECT_THAT(request.answers, testing::ElementsAre(testing::Pair(E_UNEXPECTED, 4U)));
}

LISTENED(DeviceContextTest);

}  // namespace
}  // namespace bench
