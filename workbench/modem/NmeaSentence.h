// One line of a receiver's log, taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/GnssFix.h"

namespace bench {

/// Views into the log's text.
struct NmeaSentence {
  std::string_view text;                 // "$" to the checksum
  std::vector<std::string_view> fields;  // between the commas; the first is the address

  /// The address' two halves, "GN" and "RMC"; both empty for a maker's own sentence.
  std::string_view Talker() const;
  std::string_view Type() const;

  /// An absent field reads as an empty one.
  std::string_view Field(std::size_t index) const;
  std::optional<double> Number(std::size_t index) const;
  std::optional<int> Integer(std::size_t index) const;

  /// Milliseconds since midnight of an "hhmmss.sss" field.
  std::optional<Millis> TimeOfDay(std::size_t index) const;
  /// The day of a "ddmmyy" field; years from 80 on are of the last century.
  std::optional<std::chrono::sys_days> Date(std::size_t index) const;
  /// Degrees of a "ddmm.mmm" field and the hemisphere letter after it, at most `limit`.
  std::optional<double> Coordinate(std::size_t index, double limit) const;
};

enum class LineKind { kSentence, kBadChecksum, kGarbage };

/// What a line is; `sentence` is filled for kSentence. A sentence may have garbage before it.
LineKind ReadNmeaLine(std::string_view line, NmeaSentence& sentence);

}  // namespace bench
