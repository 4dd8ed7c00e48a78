// A drive whose reception and whose fixes' completeness the checks decide.
#pragma once

#include <atomic>
#include <memory>

#include "workbench/modem/DriveTrack.h"

namespace bench::acceptance {

/// What the checks set; any thread, at any time.
struct Sky {
  std::atomic<bool> reception{true};
  std::atomic<bool> errorRadius{true};  // fixes have one
  std::atomic<bool> extras{true};       // altitude, speed, heading and the like are known
};

class SteeredTrack final : public TrackSource {
 public:
  explicit SteeredTrack(std::shared_ptr<const Sky> sky) : sky_(std::move(sky)) {}

  std::optional<GnssFix> At(Millis t) const override {
    if (!sky_->reception) return std::nullopt;
    auto fix = drive_.At(t);
    if (!fix) return fix;
    if (!sky_->errorRadius) fix->errorRadius.reset();
    if (!sky_->extras) {
      for (auto* value : {&fix->altitudeEllipsoid, &fix->altitudeEllipsoidError, &fix->speedKnots,
                          &fix->trueHeading, &fix->vdop}) {
        value->reset();
      }
    }
    return fix;
  }
  Utc Start() const override { return drive_.Start(); }
  Millis Length() const override { return kForever; }

 private:
  const DriveTrack drive_{{.tunnel = false}};
  const std::shared_ptr<const Sky> sky_;
};

}  // namespace bench::acceptance
