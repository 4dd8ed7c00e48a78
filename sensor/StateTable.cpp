#include "sensor/StateTable.h"

#include "platform/SensorClassExtension.h"
#include "sensor/Events.h"
#include "sensor/LeadTimes.h"

namespace stelvane {

namespace {

constexpr unsigned Bit(std::uint32_t state) {
  return 1U << state;
}
constexpr unsigned kAnyState = ~0U;

// The state table: on `event` a state out of `from` becomes `to`; all others stay.
struct Transition {
  std::uint32_t event;
  unsigned from;
  std::uint32_t to;
};
constexpr Transition kTransitions[] = {
    {EV_FIRST_CLIENT_CONNECTED, Bit(SENSOR_STATE_NO_DATA) | Bit(SENSOR_STATE_ERROR),
     SENSOR_STATE_INITIALIZING},
    {EV_LAST_CLIENT_DISCONNECTED, Bit(SENSOR_STATE_INITIALIZING), SENSOR_STATE_NO_DATA},
    {EV_DATA_ARRIVED, Bit(SENSOR_STATE_NO_DATA) | Bit(SENSOR_STATE_INITIALIZING),
     SENSOR_STATE_READY},
    {EV_SINGLE_SHOT_ERROR_RECEIVED, kAnyState, SENSOR_STATE_NO_DATA},
    {EV_RADIO_ON, Bit(SENSOR_STATE_NOT_AVAILABLE), SENSOR_STATE_NO_DATA},
    {EV_RADIO_OFF, kAnyState, SENSOR_STATE_NOT_AVAILABLE},
    {EV_DATA_REQUESTED, Bit(SENSOR_STATE_NO_DATA) | Bit(SENSOR_STATE_ERROR),
     SENSOR_STATE_INITIALIZING},
    {EV_FIX_LOST, Bit(SENSOR_STATE_READY), SENSOR_STATE_INITIALIZING},
};

}  // namespace

std::uint32_t NextState(std::uint32_t state, std::uint32_t event, bool fixRequestActive,
                        std::uint32_t currentInterval) {
  // An engine error matters to a single fix and to intervals below the longest periodic one.
  if (event == EV_SINGLE_SHOT_ERROR_RECEIVED && !fixRequestActive &&
      currentInterval >= kLongestPeriodicInterval) {
    return state;
  }
  for (const Transition& row : kTransitions) {
    if (row.event == event && (row.from & Bit(state)) != 0) return row.to;
  }
  return state;
}

bool IsExpectedEvent(std::uint32_t event) {
  for (const Transition& row : kTransitions) {
    if (row.event == event) return true;
  }
  return event == EV_REFRESH_REPORTING || event == EV_INIT || event == EV_CLEAR_ASSISTANCE_DATA;
}

}  // namespace stelvane
