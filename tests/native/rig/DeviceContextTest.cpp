// A device's context and queue asked for what the framework's order never asks of them. Only here
// are the driver's own classes within a test's reach, with the whole workbench around them.
#include "driver/DeviceCallbacks.h"
#include "driver/DeviceContext.h"
#include "driver/IoControlCodes.h"
#include "driver/Module.h"
#include "driver/QueueCallback.h"
#include "sensor/Events.h"
#include "tests/driver/RigTest.h"

namespace bench {
namespace {

using stelvane::ComPtr;

constexpr const char* kInitialize = "ISensorClassExtension::Initialize";
constexpr const char* kUninitialize = "ISensorClassExtension::Uninitialize";
constexpr ULONG kReadRadio = stelvane::kIoctlReadRadioState;

class DeviceContextTest : public RigTest {
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

TEST_F(DeviceContextTest, AStartedContextIsNotAttachedAgain) {
  Start();
  EXPECT_EQ(Context()->Attach(device(), &driverCallbacks()), E_UNEXPECTED);
}

TEST_F(DeviceContextTest, ASecondStartMakesNoSecondCoreAndNoSecondClassExtension) {
  Start();
  EXPECT_EQ(Context()->StartSensor(), S_OK);
  EXPECT_EQ(rig().calls().Count(kInitialize), 1U);
}

TEST_F(DeviceContextTest, AStartAfterAFailedOneFindsTheClassExtensionSetAlready) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  rig().calls().FailCall(kInitialize, 1, E_ABORT);
  ASSERT_EQ(rig().host().PrepareHardware(), E_ABORT);
  EXPECT_EQ(Context()->StartSensor(), E_UNEXPECTED);
  EXPECT_EQ(rig().calls().Count(kInitialize), 1U);
}

TEST_F(DeviceContextTest, TheCoreIsStoppedOnce) {
  Start();
  EXPECT_EQ(Context()->StopSensorCore(), S_OK);
  EXPECT_EQ(Context()->StopSensorCore(), S_OK);
}

TEST_F(DeviceContextTest, ASensorRequestWithoutAClassExtensionIsNotForwarded) {
  Load();
  NewContext()->ProcessIoControl(nullptr);
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::ProcessIoControl"), 0U);
}

TEST_F(DeviceContextTest, APrivateRequestOfAReleasedContextIsRefused) {
  Start();
  const ComPtr<stelvane::DeviceContext> context = Context();
  context->ReleaseClassExtension();
  EXPECT_EQ(rig().calls().Count(kUninitialize), 1U);
  EXPECT_EQ(context->HandlePrivateIoControl(nullptr, kReadRadio), kShutdownInProgress);
}

TEST_F(DeviceContextTest, APrivateRequestIsRefusedByAShutdownThatBeganAfterItsDispatch) {
  Start();
  rig().host().SurpriseRemoval();
  EXPECT_EQ(Context()->HandlePrivateIoControl(nullptr, kReadRadio), kShutdownInProgress);
}

TEST_F(DeviceContextTest, AnEventThatNobodyPostsConfiguresSuplAndAnUnknownOneDoesNothing) {
  Start();
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

TEST_F(DeviceContextTest, TheDefaultQueueNeedsADevice) {
  Load();
  EXPECT_EQ(stelvane::EnsureDefaultQueue(nullptr), E_UNEXPECTED);
}

TEST_F(DeviceContextTest, ANewDefaultQueueNeedsAnOwnerAndAnOldOneIsLeft) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  stelvane::SetModuleDevice(device());
  EXPECT_EQ(stelvane::EnsureDefaultQueue(nullptr), E_INVALIDARG);
  EXPECT_EQ(stelvane::EnsureDefaultQueue(&driverCallbacks()), S_OK);
  EXPECT_EQ(stelvane::EnsureDefaultQueue(nullptr), S_OK);
  stelvane::SetModuleDevice(nullptr);
}

}  // namespace
}  // namespace bench
