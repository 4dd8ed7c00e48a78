// The default queue's making, with arguments that the device's preparation never gives.

#include <gtest/gtest.h>

#include "driver/Module.h"
#include "driver/QueueCallback.h"
#include "tests/unit/platform/FrameworkRecorders.h"

namespace stelvane {
namespace {

/// Has no default queue, and notes how it is asked to make one.
class QueuelessDevice final : public platform_test::WDFDeviceRecorder<> {
 public:
  HRESULT STDMETHODCALLTYPE CreateIoQueue(IUnknown* callbackInterface, BOOL isDefault,
                                          WDF_IO_QUEUE_DISPATCH_TYPE dispatchType,
                                          BOOL powerManaged, BOOL allowZeroLength,
                                          IWDFIoQueue** ioQueue) override {
    ++queuesMade;
    hasCallback = callbackInterface != nullptr;
    isDefaultQueue = isDefault;
    dispatch = dispatchType;
    isPowerManaged = powerManaged;
    takesZeroLength = allowZeroLength;
    *ioQueue = nullptr;
    return S_OK;
  }

  int queuesMade = 0;
  bool hasCallback = false;
  BOOL isDefaultQueue = FALSE;
  WDF_IO_QUEUE_DISPATCH_TYPE dispatch = WdfIoQueueDispatchSequential;
  BOOL isPowerManaged = TRUE;
  BOOL takesZeroLength = FALSE;
};

class DefaultQueue : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(CreateObject(owner_), S_OK); }
  void TearDown() override { SetModuleDevice(nullptr); }

  QueuelessDevice device_;
  ComPtr<DeviceCallbacks> owner_;
};

TEST_F(DefaultQueue, WithoutAModuleDeviceIsUnexpected) {
  EXPECT_EQ(EnsureDefaultQueue(owner_.Get()), E_UNEXPECTED);
}

TEST_F(DefaultQueue, WithoutAnOwnerIsAnInvalidArgument) {
  SetModuleDevice(&device_);
  EXPECT_EQ(EnsureDefaultQueue(nullptr), E_INVALIDARG);
  EXPECT_EQ(device_.queuesMade, 0);
}

TEST_F(DefaultQueue, IsParallelAndNotPowerManagedAndTakesRequestsOfZeroLength) {
  SetModuleDevice(&device_);
  EXPECT_EQ(EnsureDefaultQueue(owner_.Get()), S_OK);
  EXPECT_EQ(device_.queuesMade, 1);
  EXPECT_TRUE(device_.hasCallback);
  EXPECT_EQ(device_.isDefaultQueue, TRUE);
  EXPECT_EQ(device_.dispatch, WdfIoQueueDispatchParallel);
  EXPECT_EQ(device_.isPowerManaged, FALSE);
  EXPECT_EQ(device_.takesZeroLength, TRUE);
}

}  // namespace
}  // namespace stelvane
