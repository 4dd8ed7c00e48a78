// What a device context answers in moments that no caller can choose.

#include <gtest/gtest.h>

#include "driver/DeviceContext.h"
#include "driver/IoControlCodes.h"

namespace stelvane {
namespace {

class AttachedContext : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(CreateObject(owner_), S_OK);
    ASSERT_EQ(CreateObject(context_), S_OK);
    ASSERT_EQ(context_->Attach(nullptr, owner_.Get()), S_OK);
  }
  void TearDown() override { context_->ReleaseClassExtension(); }

  ComPtr<DeviceCallbacks> owner_;
  ComPtr<DeviceContext> context_;
};

// The queue has let the request in, and then the shutdown begins.
TEST_F(AttachedContext, APrivateRequestThatAShutdownOvertakesIsToldSo) {
  owner_->Guard().BeginShutdown();
  EXPECT_EQ(context_->HandlePrivateIoControl(nullptr, kIoctlReadRadioState), kShutdownInProgress);
  // The request's flag is cleared again: a second shutdown has nobody to wait for.
  owner_->Guard().BeginShutdown();
}

TEST_F(AttachedContext, APrivateRequestThatTheReleaseOvertakesIsToldSo) {
  context_->ReleaseClassExtension();
  EXPECT_EQ(context_->HandlePrivateIoControl(nullptr, kIoctlSwitchRadio), kShutdownInProgress);
}

TEST_F(AttachedContext, StoppingTheCoreTwiceSucceedsTwice) {
  EXPECT_EQ(context_->StopSensorCore(), S_OK);
  EXPECT_EQ(context_->StopSensorCore(), S_OK);
}

}  // namespace
}  // namespace stelvane
