// The built-in track: a computed drive round four equal city blocks, the same in every run.
#pragma once

#include <vector>

#include "workbench/modem/TrackSource.h"

namespace bench {

struct DriveOptions {
  Utc start = std::chrono::sys_days{std::chrono::year{2014} / 7 / 3} + std::chrono::hours{12};
  double latitude = 48.1173;   // degrees, where the drive starts
  double longitude = 11.5167;  // degrees
  bool tunnel = true;          // each side of the lap has a short stretch without reception
};

/// Each side of the lap: pull away, bends, a tunnel, a stop at a light, a right turn. Four sides
/// close the lap, so that a run of any length stays in the same place.
class DriveTrack final : public TrackSource {
 public:
  explicit DriveTrack(DriveOptions options = {});

  std::optional<GnssFix> At(Millis t) const override;
  Utc Start() const override { return options_.start; }
  Millis Length() const override { return kForever; }

 private:
  /// Where the car is along one side, metres east and north of the side's start when it sets out
  /// northwards.
  struct Step {
    double east = 0;
    double north = 0;
    double heading = 0;  // radians, clockwise from north
    double speed = 0;    // metres per second
    bool covered = false;
  };

  const DriveOptions options_;
  std::vector<Step> side_;  // one per tenth of a second; the last is the next side's first
};

}  // namespace bench
