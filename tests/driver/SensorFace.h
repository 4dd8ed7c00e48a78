// The driver's ISensorDriver itself, for calls that a well-behaved class extension never makes.
#pragma once

#include <memory>

#include "workbench/rig/Rig.h"

namespace bench {

/// Made after a rig whose own class extension is withheld, and before the device starts: it then
/// stands between the driver and the workbench's class extension and passes every call on. To be
/// destroyed before the rig.
class SensorFace {
 public:
  explicit SensorFace(Rig& rig);
  ~SensorFace();
  SensorFace(const SensorFace&) = delete;
  SensorFace& operator=(const SensorFace&) = delete;

  /// The driver's callbacks; null until the driver has initialised the class extension.
  ISensorDriver* Driver() const;

  struct State;

 private:
  std::shared_ptr<State> state_;
  DWORD cookie_ = 0;
};

}  // namespace bench
