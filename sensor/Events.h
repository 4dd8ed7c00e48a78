// The vocabulary of the sensor core: events, timers, sensor states, and their names for the trace.
#pragma once

#include <cstdint>

namespace stelvane {

/// What any thread may post. The value 7 was never given out.
enum SensorEvent : std::uint32_t {
  EV_INVALID = 0,  // never posted; an empty queue
  EV_FIRST_CLIENT_CONNECTED = 1,
  EV_LAST_CLIENT_DISCONNECTED = 2,
  EV_DATA_ARRIVED = 3,
  EV_SINGLE_SHOT_ERROR_RECEIVED = 4,
  EV_RADIO_ON = 5,
  EV_RADIO_OFF = 6,
  EV_DATA_REQUESTED = 8,
  EV_REFRESH_REPORTING = 9,
  EV_INIT = 10,
  EV_FIX_LOST = 11,
  EV_INIT_SUPL = 12,
  EV_CLEAR_ASSISTANCE_DATA = 13,
};

/// One-shot timers of the worker thread.
enum SensorTimer : std::uint32_t {
  TIMER_DATA_NO_LONGER_FRESH = 0,
  TIMER_REMOVE_FAKE_CLIENT = 1,
  TIMER_PRGN = 2,
  TIMER_CHECK_FIX_LOST = 3,
};
inline constexpr std::uint32_t kTimerCount = 4;

// The sensor states themselves are the Sensor API's SensorState values.

/// Constant names; "Unknown" for any other value (7 included, for events).
const char* EventName(std::uint32_t event);
const char* TimerName(std::uint32_t timer);
const char* SensorStateName(std::uint32_t state);

}  // namespace stelvane
