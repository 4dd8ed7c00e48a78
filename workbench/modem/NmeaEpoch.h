// From the sentences of one moment to a fix.
#pragma once

#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "workbench/modem/NmeaSentence.h"

namespace bench {

/// The sentences that a log has for one time of day.
struct NmeaEpoch {
  std::optional<Millis> timeOfDay;  // nothing: the receiver does not know the time yet
  Millis due = 0;                   // since the log's first epoch
  std::vector<NmeaSentence> sentences;
};

/// Where `sentence` has its time of day; nothing for a type that has none.
std::optional<std::size_t> TimeField(const NmeaSentence& sentence);

/// Reads the epochs of one log in their order. Receivers send some sentences with every few epochs
/// only: satellites and dilutions hold for ten seconds, the date until the next.
class NmeaEpochReader {
 public:
  /// The fix of `epoch`, without its date; nothing when its position is void.
  struct Reading {
    std::optional<GnssFix> fix;
    std::optional<std::chrono::sys_days> date;
  };
  Reading Read(const NmeaEpoch& epoch);

 private:
  struct Sky {
    Millis seen = 0;
    std::vector<Satellite> satellites;
  };
  struct Solution {
    Millis seen = 0;
    std::optional<double> pdop;
    std::optional<double> hdop;
    std::optional<double> vdop;
    std::vector<std::pair<Constellation, int>> used;
  };

  void ReadSatellites(const NmeaEpoch& epoch);
  void ReadSolution(const NmeaEpoch& epoch);
  void AddSky(Millis due, GnssFix& fix) const;

  std::array<Sky, kConstellations> skies_;
  Solution solution_;
};

}  // namespace bench
