// A track read from a receiver's NMEA log.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/modem/Outcome.h"
#include "workbench/modem/TrackSource.h"

namespace bench {

struct NmeaEpoch;

/// What reading a log came to.
struct NmeaLogSummary {
  std::size_t lines = 0;         // not counting empty ones
  std::size_t sentences = 0;     // with a right checksum
  std::size_t badChecksums = 0;  // wrong, or none; skipped
  std::size_t garbage = 0;       // lines that hold no sentence; skipped
  std::size_t epochs = 0;        // sentences of one time of day
  std::size_t fixes = 0;         // epochs with a valid position
  std::size_t jumps = 0;         // epochs whose time went back or far forward
};

/// The log is played at its own pace: an epoch is due as long after the first as its time of day
/// says. Where time goes back, or forward by more than a minute, the next epoch follows at the
/// log's usual pace; the fix keeps the time that the log gives it.
class NmeaTrack final : public TrackSource {
 public:
  /// Fails with one line of text when the file cannot be read or holds no valid fix.
  static Outcome<std::unique_ptr<NmeaTrack>> Load(const std::string& path);
  /// As Load, of a log already in memory; `name` stands in the message.
  static Outcome<std::unique_ptr<NmeaTrack>> Parse(std::string_view log, const std::string& name);

  std::optional<GnssFix> At(Millis t) const override;
  Utc Start() const override { return start_; }
  Millis Length() const override;

  const NmeaLogSummary& Summary() const { return summary_; }

  /// One line for a person: fixes, epochs, what was skipped.
  std::string Describe() const;

 private:
  struct Epoch {
    Millis due = 0;
    std::optional<GnssFix> fix;
  };

  NmeaTrack() = default;

  void ReadEpochs(const std::vector<NmeaEpoch>& epochs);

  std::vector<Epoch> epochs_;
  Millis pace_ = 1000;  // the most usual time between epochs
  Utc start_{};
  NmeaLogSummary summary_;
};

}  // namespace bench
