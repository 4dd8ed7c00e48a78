// The states of a sensor.
#pragma once

#include <propidl.h>

enum SensorState : int {
  SENSOR_STATE_MIN = 0,
  SENSOR_STATE_READY = 0,
  SENSOR_STATE_NOT_AVAILABLE = 1,
  SENSOR_STATE_NO_DATA = 2,
  SENSOR_STATE_INITIALIZING = 3,
  SENSOR_STATE_ACCESS_DENIED = 4,
  SENSOR_STATE_ERROR = 5,
  SENSOR_STATE_MAX = 5,
};
