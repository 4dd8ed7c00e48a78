// What the tests of the Sensor API's side start from.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "workbench/clock/VirtualClock.h"
#include "workbench/framework/World.h"
#include "workbench/sensorapi/PortableDeviceCollections.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

constexpr PROPERTYKEY Key(DWORD pid) {
  return {keys::kSensorCommonSet, pid};
}
constexpr PROPERTYKEY LocationKey(DWORD pid) {
  return {keys::kLocationSet, pid};
}

class ApiTest : public testing::Test {
 protected:
  VirtualClock clock;
  Ledger ledger;
  CallRecord calls{clock};
  const World world{clock, ledger, calls};
};

}  // namespace bench
