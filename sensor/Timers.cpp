#include "sensor/Timers.h"

#include "sensor/Timers.trace.h"

namespace stelvane {

void Timers::Arm(SensorTimer timer, std::uint32_t milliseconds) {
  timers_[timer] = milliseconds;
  if (milliseconds == kTimerOff) {
    TRACE(TimerOff, TimerName(timer));
  } else {
    TRACE(TimerArmed, TimerName(timer), milliseconds);
  }
}

}  // namespace stelvane
