// Tests that call the driver's ISensorDriver themselves.
#pragma once

#include <memory>
#include <utility>

#include "tests/driver/SensorFace.h"
#include "tests/driver/SensorTest.h"

namespace bench {

class SensorFaceTest : public SensorTest {
 protected:
  void StartWithFace() {
    RigOptions options;
    options.withheldClasses = {ApiClass::kClassExtension};
    LoadSensor(std::move(options));
    face_ = std::make_unique<SensorFace>(rig());
    StartLoaded();
    ASSERT_NE(Face(), nullptr);
  }
  void TearDown() override {
    rig().ReleaseDriver();
    face_.reset();
    SensorTest::TearDown();
  }
  /// The driver's callbacks.
  ISensorDriver* Face() { return face_->Driver(); }

  WCHAR sensorId_[1] = {};  // the driver has one sensor and does not look at it

 private:
  std::unique_ptr<SensorFace> face_;
};

}  // namespace bench
