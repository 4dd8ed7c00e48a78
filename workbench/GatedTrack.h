// A track that waits for the run to be ready for it.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "workbench/modem/TrackSource.h"

namespace bench {

/// There is no reception until the gate is opened; the track's own time starts then. So a recorded
/// log loses none of its fixes to the start of the device. Any thread may call it.
class GatedTrack final : public TrackSource {
 public:
  explicit GatedTrack(std::shared_ptr<const TrackSource> track) : track_(std::move(track)) {}

  /// `at` is in the time of this track.
  void Open(Millis at) { opened_ = at; }

  std::optional<GnssFix> At(Millis t) const override {
    const Millis opened = opened_;
    return t < opened ? std::nullopt : track_->At(t - opened);
  }
  Utc Start() const override { return track_->Start(); }
  Millis Length() const override {
    const Millis opened = opened_;
    const Millis length = track_->Length();
    return opened == kForever || length == kForever ? kForever : opened + length;
  }

 private:
  const std::shared_ptr<const TrackSource> track_;
  std::atomic<Millis> opened_{kForever};
};

}  // namespace bench
