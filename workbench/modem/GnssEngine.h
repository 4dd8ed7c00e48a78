// The modem's GNSS engine: serves one location request at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "workbench/modem/Agenda.h"
#include "workbench/modem/ModemOptions.h"
#include "workbench/modem/TrackSource.h"

namespace bench {

struct LocationRequest {
  std::uint32_t id = 0;
  std::optional<Millis> interval;  // nothing: a single fix

  bool operator==(const LocationRequest&) const = default;
};

/// Used under the modem's lock; times are of the modem's clock.
class GnssEngine {
 public:
  struct Events {
    std::function<void(Millis due, const LocationRequest&, const GnssFix&)> onFix;
    std::function<void(Millis due)> onNoFix;
  };

  /// `agenda` must outlive the engine; `options` gives the times.
  GnssEngine(Agenda& agenda, std::unique_ptr<TrackSource> track, const ModemOptions& options,
             Millis switchedOn, Events events);

  /// Starts a request, in place of the running one, and returns its id.
  std::uint32_t Start(Millis now, std::optional<Millis> interval);
  /// Ends the request with that id; false when it is not running.
  bool Stop(std::uint32_t id);
  /// Ends whatever runs.
  void Halt();

  /// The next start is a cold one.
  void ForgetAssistanceData() { hot_ = false; }
  /// No reception before `until`.
  void LoseFixUntil(Millis until) { lostUntil_ = until; }

  /// The newest fix, whether anybody asks for one or not.
  std::optional<GnssFix> Look(Millis now) const;

  const std::optional<LocationRequest>& Running() const { return running_; }
  std::uint32_t LastId() const { return lastId_; }

 private:
  void Tick(Millis due);
  void Report(Millis due, const GnssFix& fix);
  bool Overdue(Millis due) const;

  Agenda& agenda_;
  const std::unique_ptr<TrackSource> track_;
  const Millis coldStart_;
  const Millis hotStart_;
  const Millis fixTimeout_;
  const Millis switchedOn_;
  const Events events_;

  std::optional<LocationRequest> running_;
  std::uint32_t lastId_ = 0;
  bool hot_ = false;
  bool onGrid_ = false;  // the running request has had its first fix
  bool toldNoFix_ = false;
  Millis waitingSince_ = 0;
  Millis lostUntil_ = 0;
  std::optional<Utc> lastReported_;
};

}  // namespace bench
