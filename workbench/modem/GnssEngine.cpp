#include "workbench/modem/GnssEngine.h"

#include <utility>

namespace bench {

namespace {
constexpr Millis kSearchStep = 250;  // how often an engine without its first fix looks
}

GnssEngine::GnssEngine(Agenda& agenda, std::unique_ptr<TrackSource> track,
                       const ModemOptions& options, Millis switchedOn, Events events)
    : agenda_(agenda),
      track_(std::move(track)),
      coldStart_(options.coldStart),
      hotStart_(options.hotStart),
      fixTimeout_(options.fixTimeout),
      switchedOn_(switchedOn),
      events_(std::move(events)) {}

std::uint32_t GnssEngine::Start(Millis now, std::optional<Millis> interval) {
  Halt();
  running_ = LocationRequest{.id = ++lastId_, .interval = interval};
  onGrid_ = false;
  toldNoFix_ = false;
  waitingSince_ = now;
  agenda_.Add(now + (hot_ ? hotStart_ : coldStart_), Job::kEngine,
              [this](Millis due) { Tick(due); });
  return lastId_;
}

bool GnssEngine::Stop(std::uint32_t id) {
  if (!running_ || running_->id != id) return false;
  Halt();
  return true;
}

void GnssEngine::Halt() {
  running_.reset();
  agenda_.Cancel(Job::kEngine);
}

std::optional<GnssFix> GnssEngine::Look(Millis now) const {
  return now < lostUntil_ ? std::nullopt : track_->At(now - switchedOn_);
}

void GnssEngine::Tick(Millis due) {
  // A receiver reports each of its fixes once, however often it looks.
  const auto fix = Look(due);
  if (fix && fix->time != lastReported_) {
    Report(due, *fix);
  } else if (Overdue(due)) {
    toldNoFix_ = true;
    events_.onNoFix(due);
    if (!running_->interval) running_.reset();
  }
  if (!running_) return;
  const Millis next = onGrid_ ? *running_->interval : kSearchStep;
  agenda_.Add(due + next, Job::kEngine, [this](Millis nextDue) { Tick(nextDue); });
}

void GnssEngine::Report(Millis due, const GnssFix& fix) {
  hot_ = true;
  onGrid_ = true;
  toldNoFix_ = false;
  waitingSince_ = due;
  lastReported_ = fix.time;
  events_.onFix(due, *running_, fix);
  if (!running_->interval) running_.reset();
}

bool GnssEngine::Overdue(Millis due) const {
  return !toldNoFix_ && fixTimeout_ > 0 && due - waitingSince_ >= fixTimeout_;
}

}  // namespace bench
