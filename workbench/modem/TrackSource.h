// Where the simulated receiver is: a computed drive or a recorded log.
#pragma once

#include <optional>

#include "workbench/clock/Clock.h"
#include "workbench/modem/GnssFix.h"

namespace bench {

/// Asked on the modem's thread only; times are since the modem was switched on.
class TrackSource {
 public:
  virtual ~TrackSource() = default;

  /// The newest fix at `t`; nothing while there is no reception.
  virtual std::optional<GnssFix> At(Millis t) const = 0;

  /// UTC at t = 0, for whoever sets the host's clock to the track's.
  virtual Utc Start() const = 0;

  /// When the track ends (there are no fixes after it); kForever when it does not.
  virtual Millis Length() const = 0;
};

}  // namespace bench
