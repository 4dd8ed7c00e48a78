// What goes wrong with the modem, as data and as a script.
//
// A script has one entry a line; "#" starts a comment.
//
//   at <seconds> <action>            once, that long after the modem was switched on
//     silent <seconds>               nothing is answered or sent
//     lose-fix <seconds>             the engine has no fix
//     garbage [bytes]                a line of bytes that mean nothing (default 16)
//     line <text>                    a line out of nowhere, "OK" for one
//     sim <imsi>                     the SIM is exchanged
//     restart                        as if switched off and on
//     echo off|on                    off: and ATE1 does not bring it back
//     cut <bytes>|random <seed>|off  output arrives in pieces of that many bytes
//     join <milliseconds>            output is held that long and arrives joined; 0 ends it
//     stall-control <count>          so many control requests fail
//     obey                           what is left of the reactions below is forgotten
//     form <0 to 3>                  reports have that form from now on
//     shape ok-first|sentences-first what follows a report from now on
//
//   on <command> <reaction> [count]  to the next `count` (default 1, or "always") such commands
//     silence                        neither echoed nor answered nor obeyed
//     error                          "ERROR" instead of the answer; not obeyed
//     late <milliseconds>            the answer comes that much later than usual
//     twice                          the answer comes twice
//     garbage                        a line of garbage before the answer
//     no-echo                        answered without its echo
//     straggle <milliseconds>        one more report, that long after the answer
//
// A command is named by its beginning up to a character that is neither letter nor digit
// ("AT+XLCSLSR"), or by "*" for any. Seconds may have a fraction. The first entry that names a
// command and has some of its count left is the one that applies.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/Outcome.h"

namespace bench {

/// What follows a report: its own "OK" and then the sentences, or the sentences at once. Both end
/// with an "OK" of their own.
enum class ReportShape { kOkThenSentences, kSentencesOnly };

enum class ModemAction {
  kSilent,        // amount: milliseconds
  kLoseFix,       // amount: milliseconds
  kGarbage,       // amount: bytes
  kLine,          // text
  kSim,           // text: the IMSI
  kRestart,       //
  kEchoOff,       //
  kEchoOn,        //
  kCut,           // amount: bytes, 0 for no cutting
  kCutRandom,     // amount: seed
  kJoin,          // amount: milliseconds
  kStallControl,  // amount: count
  kObey,          //
  kForm,          // amount: 0 to 3
  kShape,         // amount: a ReportShape
};

struct TimedFault {
  Millis at = 0;  // since the modem was switched on
  ModemAction action = ModemAction::kSilent;
  std::int64_t amount = 0;
  std::string text{};
};

enum class Reaction { kSilence, kError, kLate, kTwice, kGarbage, kNoEcho, kStraggle };

/// Bytes of a line of garbage when a script does not say.
inline constexpr int kGarbageLength = 16;

inline constexpr std::int64_t kAlways = INT64_MAX;

struct CommandFault {
  std::string command;
  Reaction reaction = Reaction::kSilence;
  std::int64_t count = 1;
  Millis delay = 0;  // of kLate and kStraggle
};

struct ModemFaults {
  std::vector<TimedFault> timed{};
  std::vector<CommandFault> reactions{};
};

/// Reads a script; `name` stands before the line number in the message of a failure.
Outcome<ModemFaults> ParseFaults(std::string_view script, const std::string& name);
/// As ParseFaults, from a file.
Outcome<ModemFaults> LoadFaults(const std::string& path);

/// Whether `line` is a command that a script names `pattern`.
bool CommandMatches(std::string_view line, std::string_view pattern);

}  // namespace bench
