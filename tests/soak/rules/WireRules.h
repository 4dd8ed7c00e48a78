// Commands on the AT port: one at a time, and how often one is written again.
#pragma once

#include <bitset>
#include <string>
#include <string_view>

#include "tests/soak/rules/Breaches.h"

namespace soak {

/// Rules:
///   one-command  a command is written only after the final result of the one before, or after the
///                second that its attempt has;
///   attempts     a silent command is written again, seven times in all, and the port is opened
///                afresh after the third time and at no other.
///
/// A final result on the wire need not have reached the driver, so the rules keep every number of
/// attempts that is possible.
class WireRules {
 public:
  explicit WireRules(Breaches& breaches) : breaches_(breaches) {}

  void Written(Millis at, std::string_view line);
  /// A line of the modem's.
  void Said(Millis at, std::string_view line);
  /// The driver opens the port.
  void Opened(Millis at);
  /// From now on an opening may fail, which ends a command after its third attempt.
  void OpeningMayFail() { openingMayFail_ = true; }
  /// The modem's words may lie about unread, and be read later.
  void ReadingStops() { reading_ = false; }
  void ReadingGoesOn(Millis at);

 private:
  static constexpr unsigned kAttempts = 7;
  using Possible = std::bitset<kAttempts + 1>;  // by the attempts made

  bool MayBeOver(Millis at) const;
  Possible Next(Millis at, std::string_view line) const;
  void Begin(Millis at, std::string_view line, Possible attempts);

  Breaches& breaches_;
  std::string line_;
  Millis at_ = 0;
  Possible attempts_;
  int finals_ = 0;       // final results since the last write
  bool spare_ = false;   // more of them than commands: one may count for the next
  bool opened_ = false;  // since the last write
  bool openingMayFail_ = false;
  bool reading_ = true;
  Millis backlogUntil_ = 0;
};

/// Whether a line ends a command: "OK…", what holds "ERROR", and the answer to a stop.
bool IsFinal(std::string_view line);

}  // namespace soak
