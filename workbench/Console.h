// What a person sees of a run.
#pragma once

#include <string_view>

#include "workbench/clock/Clock.h"

namespace bench {

enum class Tone { kPlain, kToModem, kFromModem, kState, kReport, kTrace, kGood, kBad };

/// Writes lines to the standard output, each at once. In colour on a terminal that can show it,
/// unless NO_COLOR is set. One thread at a time.
class Console {
 public:
  Console();

  void Line(std::string_view text, Tone tone = Tone::kPlain) const;
  /// With the seconds since the run's start before it.
  void Line(Millis at, std::string_view text, Tone tone) const;

 private:
  bool colour_;
};

}  // namespace bench
