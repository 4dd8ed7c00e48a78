// A test with a rig: whatever it does, nothing may be left behind and no rule broken.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "tests/driver/TraceAll.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/framework/FxDevice.h"
#include "workbench/rig/Rig.h"

namespace bench {

class RigTest : public testing::Test {
 protected:
  void TearDown() override {
    if (!rig_) return;
    rig_->Shutdown();
    EXPECT_THAT(rig_->Findings(), testing::IsEmpty());
  }

  /// Loads the DLL; may be called once.
  Rig& Load(RigOptions options = {}) {
    TraceIfAsked(options);
    rig_ = std::make_unique<Rig>(clock_, std::move(options));
    return *rig_;
  }
  /// Loads the DLL and starts the device.
  Rig& Start(RigOptions options = {}) {
    Rig& rig = Load(std::move(options));
    EXPECT_EQ(rig.Start(), S_OK);
    return rig;
  }
  Rig& rig() { return *rig_; }
  const DeviceCallbackSet& callbacks() { return rig_->host().device()->callbacks(); }
  FxDevice* device() { return rig_->host().device(); }
  FaultPlan& faults() { return rig_->redirector().Faults(); }

  VirtualClock clock_;

 private:
  std::unique_ptr<Rig> rig_;
};

inline constexpr HRESULT kShutdownInProgress = static_cast<HRESULT>(0x8007045BL);

}  // namespace bench
