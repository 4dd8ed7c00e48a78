#include "sensor/Events.h"

#include <cstddef>

namespace stelvane {

namespace {

constexpr const char* kUnknown = "Unknown";

constexpr const char* kEventNames[] = {
    "EV_INVALID",
    "EV_FIRST_CLIENT_CONNECTED",
    "EV_LAST_CLIENT_DISCONNECTED",
    "EV_DATA_ARRIVED",
    "EV_SINGLE_SHOT_ERROR_RECEIVED",
    "EV_RADIO_ON",
    "EV_RADIO_OFF",
    kUnknown,  // never given out, and deliberately left without a name
    "EV_DATA_REQUESTED",
    "EV_REFRESH_REPORTING",
    "EV_INIT",
    "EV_FIX_LOST",
    "EV_INIT_SUPL",
    "EV_CLEAR_ASSISTANCE_DATA",
};

constexpr const char* kTimerNames[] = {
    "TIMER_DATA_NO_LONGER_FRESH",
    "TIMER_REMOVE_FAKE_CLIENT",
    "TIMER_PRGN",
    "TIMER_CHECK_FIX_LOST",
};

constexpr const char* kStateNames[] = {
    "SENSOR_STATE_READY",        "SENSOR_STATE_NOT_AVAILABLE", "SENSOR_STATE_NO_DATA",
    "SENSOR_STATE_INITIALIZING", "SENSOR_STATE_ACCESS_DENIED", "SENSOR_STATE_ERROR",
};

template <std::size_t Count>
const char* NameIn(const char* const (&names)[Count], std::uint32_t value) {
  return value < Count ? names[value] : kUnknown;
}

}  // namespace

const char* EventName(std::uint32_t event) {
  return NameIn(kEventNames, event);
}
const char* TimerName(std::uint32_t timer) {
  return NameIn(kTimerNames, timer);
}
const char* SensorStateName(std::uint32_t state) {
  return NameIn(kStateNames, state);
}

}  // namespace stelvane
