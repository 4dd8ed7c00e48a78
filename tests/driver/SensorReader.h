// A client that reads data.
#pragma once

#include <optional>
#include <utility>

#include "tests/driver/SensorTest.h"

namespace bench {

class SensorReader : public SensorTest {
 protected:
  struct Result {
    HRESULT result;
    Millis took;
    std::optional<KeyValues> values;
  };
  /// The latitude; blocks as long as the driver waits for a fix.
  Result Read() {
    const Millis from = clock_.Now();
    SensorAnswer answer = client_->ReadData({kLatitude});
    return {
        .result = answer.result, .took = clock_.Now() - from, .values = std::move(answer.values)};
  }
  /// A subscriber in state ready; its second fix came at this time, which is returned.
  Millis Ready(ULONG interval) {
    StartSensor();
    client_ = Subscriber(interval);
    RunUntil(1000);
    SayFix();
    const Millis second = 1000 + static_cast<Millis>(interval);
    RunUntil(second);
    SayFix();
    EXPECT_EQ(State(), SENSOR_STATE_READY);
    EXPECT_EQ(ReportCount(), 2U);
    Mark();
    return second;
  }
  GnssFix FixAtLatitude(double latitude, double longitude) {
    GnssFix fix = FixNow();
    fix.latitude = latitude;
    fix.longitude = longitude;
    return fix;
  }
  void TearDown() override {
    client_.reset();
    SensorTest::TearDown();
  }

  Client client_;
};

}  // namespace bench
