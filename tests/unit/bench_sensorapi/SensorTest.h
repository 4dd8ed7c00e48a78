// A class extension on a fake driver's sensor.
#pragma once

#include "tests/unit/bench_sensorapi/ApiTest.h"
#include "tests/unit/bench_sensorapi/FakeSensorDriver.h"
#include "tests/unit/bench_sensorapi/SampleReport.h"
#include "workbench/sensorapi/ClassExtension.h"
#include "workbench/sensorapi/ClientSession.h"

namespace bench {

class SensorTest : public ApiTest {
 protected:
  HRESULT Initialize() { return extension->Initialize(device.Get(), driver.Get()); }
  HRESULT Post(const KeyValues& values, std::string_view sensor = kFakeSensorId) {
    return PostSets({values}, sensor);
  }
  HRESULT PostSets(const std::vector<KeyValues>& sets, std::string_view sensor = kFakeSensorId) {
    auto list = MakeApiObject<PortableDeviceValuesCollection>(world);
    for (const KeyValues& values : sets) {
      list->Add(MakeApiObject<PortableDeviceValues>(world, values).Get());
    }
    return extension->PostEvent(Wide(sensor).data(), list.Get());
  }
  HRESULT PostState(SensorState state, std::string_view sensor = kFakeSensorId) {
    return extension->PostStateChange(Wide(sensor).data(), state);
  }

  SensorService service{world};
  ComPtr<FakeSensorDriver> driver = MakeApiObject<FakeSensorDriver>(world);
  // Any object will do for the device.
  ComPtr<PortableDeviceKeyCollection> device = MakeApiObject<PortableDeviceKeyCollection>(world);
  ComPtr<ClassExtension> extension = MakeApiObject<ClassExtension>(world, service);
};

/// With the class extension initialized, and uninitialized at the end.
class RunningSensorTest : public SensorTest {
 protected:
  void SetUp() override { ASSERT_EQ(Initialize(), S_OK); }
  void TearDown() override {
    if (service.Extension() != nullptr) {
      EXPECT_EQ(extension->Uninitialize(), S_OK);
    }
  }
};

}  // namespace bench
