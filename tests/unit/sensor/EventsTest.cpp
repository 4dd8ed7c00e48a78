// The names of the sensor core's vocabulary.

#include "sensor/Events.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace stelvane {
namespace {

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();

TEST(EventName, EachEventHasItsName) {
  constexpr std::array<std::string_view, 14> kNames = {
      "EV_INVALID",
      "EV_FIRST_CLIENT_CONNECTED",
      "EV_LAST_CLIENT_DISCONNECTED",
      "EV_DATA_ARRIVED",
      "EV_SINGLE_SHOT_ERROR_RECEIVED",
      "EV_RADIO_ON",
      "EV_RADIO_OFF",
      "Unknown",
      "EV_DATA_REQUESTED",
      "EV_REFRESH_REPORTING",
      "EV_INIT",
      "EV_FIX_LOST",
      "EV_INIT_SUPL",
      "EV_CLEAR_ASSISTANCE_DATA",
  };
  for (std::uint32_t event = 0; event < kNames.size(); ++event) {
    EXPECT_EQ(EventName(event), kNames[event]) << event;
  }
}

TEST(EventName, TheConstantsStandForTheirNumbers) {
  EXPECT_STREQ(EventName(EV_FIRST_CLIENT_CONNECTED), "EV_FIRST_CLIENT_CONNECTED");
  EXPECT_STREQ(EventName(EV_DATA_REQUESTED), "EV_DATA_REQUESTED");
  EXPECT_STREQ(EventName(EV_CLEAR_ASSISTANCE_DATA), "EV_CLEAR_ASSISTANCE_DATA");
}

TEST(EventName, SevenAndFourteenAreUnknown) {
  EXPECT_STREQ(EventName(7), "Unknown");
  EXPECT_STREQ(EventName(14), "Unknown");
  EXPECT_STREQ(EventName(kLargest), "Unknown");
}

TEST(TimerName, FourTimersHaveNamesAndTheFifthIsUnknown) {
  EXPECT_STREQ(TimerName(0), "TIMER_DATA_NO_LONGER_FRESH");
  EXPECT_STREQ(TimerName(1), "TIMER_REMOVE_FAKE_CLIENT");
  EXPECT_STREQ(TimerName(2), "TIMER_PRGN");
  EXPECT_STREQ(TimerName(3), "TIMER_CHECK_FIX_LOST");
  EXPECT_STREQ(TimerName(4), "Unknown");
  EXPECT_STREQ(TimerName(kLargest), "Unknown");
}

TEST(SensorStateName, SixStatesHaveNamesAndTheSeventhIsUnknown) {
  EXPECT_STREQ(SensorStateName(0), "SENSOR_STATE_READY");
  EXPECT_STREQ(SensorStateName(1), "SENSOR_STATE_NOT_AVAILABLE");
  EXPECT_STREQ(SensorStateName(2), "SENSOR_STATE_NO_DATA");
  EXPECT_STREQ(SensorStateName(3), "SENSOR_STATE_INITIALIZING");
  EXPECT_STREQ(SensorStateName(4), "SENSOR_STATE_ACCESS_DENIED");
  EXPECT_STREQ(SensorStateName(5), "SENSOR_STATE_ERROR");
  EXPECT_STREQ(SensorStateName(6), "Unknown");
  EXPECT_STREQ(SensorStateName(kLargest), "Unknown");
}

}  // namespace
}  // namespace stelvane
