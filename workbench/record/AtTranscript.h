// What went over the modem's port, as lines.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "workbench/modem/ModemObserver.h"

namespace bench {

struct AtLine {
  Millis at = 0;         // when its last byte was written
  bool toModem = false;  // a command of the driver's
  std::string text;      // without its line end; bytes that do not print as "\xNN"
};

/// Cuts both directions into lines, however the bytes were cut, and hands each whole line on.
/// Empty lines are left out.
class AtTranscript final : public ModemObserver {
 public:
  using Listener = std::function<void(const AtLine&)>;

  /// `listener` runs on the modem's thread with no lock held.
  explicit AtTranscript(Listener listener);

  void OnCommand(Millis at, std::string_view line) override;
  void OnAnswer(Millis at, std::string_view bytes) override;

 private:
  const Listener listener_;
  std::string line_;  // of the modem's, its end not yet
};

/// "    1.234 > AT+CIMI": seconds since the start, direction (">" to the modem), text.
std::string TranscriptText(const AtLine& line);

}  // namespace bench
