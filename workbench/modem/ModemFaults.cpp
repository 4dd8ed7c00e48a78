#include "workbench/modem/ModemFaults.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <optional>
#include <utility>

#include "workbench/modem/ReportWriter.h"
#include "workbench/modem/TextFile.h"
#include "workbench/modem/TextNumber.h"

namespace bench {

namespace {

enum class Argument { kNone, kSeconds, kMillis, kCount, kOptionalCount, kText };

struct ActionEntry {
  std::string_view name;
  ModemAction action;
  Argument argument;
};
constexpr std::array<ActionEntry, 9> kActions = {{
    {"silent", ModemAction::kSilent, Argument::kSeconds},
    {"lose-fix", ModemAction::kLoseFix, Argument::kSeconds},
    {"garbage", ModemAction::kGarbage, Argument::kOptionalCount},
    {"line", ModemAction::kLine, Argument::kText},
    {"sim", ModemAction::kSim, Argument::kText},
    {"restart", ModemAction::kRestart, Argument::kNone},
    {"obey", ModemAction::kObey, Argument::kNone},
    {"join", ModemAction::kJoin, Argument::kMillis},
    {"stall-control", ModemAction::kStallControl, Argument::kCount},
}};

struct ReactionEntry {
  std::string_view name;
  Reaction reaction;
  bool takesDelay;
};
constexpr std::array<ReactionEntry, 7> kReactions = {{
    {"silence", Reaction::kSilence, false},
    {"error", Reaction::kError, false},
    {"late", Reaction::kLate, true},
    {"twice", Reaction::kTwice, false},
    {"garbage", Reaction::kGarbage, false},
    {"no-echo", Reaction::kNoEcho, false},
    {"straggle", Reaction::kStraggle, true},
}};

constexpr std::int64_t kMostMillis = 1'000'000'000'000;  // some thirty years

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string_view TakeWord(std::string_view& rest) {
  rest = Trimmed(rest);
  const auto end = std::min(rest.find_first_of(" \t"), rest.size());
  const std::string_view word = rest.substr(0, end);
  rest = Trimmed(rest.substr(end));
  return word;
}

std::optional<Millis> Seconds(std::string_view word) {
  const auto seconds = ToNumber<double>(word);
  if (!seconds || !(*seconds >= 0) || *seconds * 1000 > kMostMillis) return std::nullopt;
  return std::llround(*seconds * 1000);
}

std::optional<std::int64_t> Whole(std::string_view word) {
  const auto number = ToNumber<std::int64_t>(word);
  return number && *number >= 0 && *number <= kMostMillis ? number : std::nullopt;
}

std::string Quoted(std::string_view word) {
  return '"' + std::string(word) + '"';
}

/// Reads the lines of one script; each function returns what is wrong, or nothing.
class ScriptReader {
 public:
  std::string ReadLine(std::string_view line) {
    rest_ = line;
    const std::string_view keyword = TakeWord(rest_);
    std::string wrong;
    if (keyword == "at") {
      wrong = ReadTimed();
    } else if (keyword == "on") {
      wrong = ReadReaction();
    } else {
      return "expected \"at\" or \"on\", not " + Quoted(keyword);
    }
    if (wrong.empty() && !rest_.empty()) wrong = "unexpected " + Quoted(rest_);
    return wrong;
  }

  ModemFaults Faults() && { return std::move(faults_); }

 private:
  std::string ReadTimed() {
    const std::string_view when = TakeWord(rest_);
    const auto at = Seconds(when);
    if (!at) return "expected a time in seconds, not " + Quoted(when);
    TimedFault fault{.at = *at, .text = {}};
    const std::string_view name = TakeWord(rest_);
    std::string wrong;
    if (name == "echo") {
      wrong = ReadEcho(fault);
    } else if (name == "cut") {
      wrong = ReadCut(fault);
    } else if (name == "form") {
      wrong = ReadForm(fault);
    } else if (name == "shape") {
      wrong = ReadShape(fault);
    } else {
      wrong = ReadPlainAction(name, fault);
    }
    if (wrong.empty()) faults_.timed.push_back(std::move(fault));
    return wrong;
  }

  std::string ReadEcho(TimedFault& fault) {
    const std::string_view word = TakeWord(rest_);
    if (word != "on" && word != "off") return "expected \"on\" or \"off\", not " + Quoted(word);
    fault.action = word == "on" ? ModemAction::kEchoOn : ModemAction::kEchoOff;
    return {};
  }

  std::string ReadCut(TimedFault& fault) {
    std::string_view word = TakeWord(rest_);
    fault.action = ModemAction::kCut;
    if (word == "off") return {};
    if (word == "random") {
      fault.action = ModemAction::kCutRandom;
      word = TakeWord(rest_);
    }
    return ReadWhole(word, fault.amount);
  }

  std::string ReadForm(TimedFault& fault) {
    fault.action = ModemAction::kForm;
    const std::string_view word = TakeWord(rest_);
    const auto form = Whole(word);
    if (!form || *form >= kReportForms) return "expected a report form, not " + Quoted(word);
    fault.amount = *form;
    return {};
  }

  std::string ReadShape(TimedFault& fault) {
    fault.action = ModemAction::kShape;
    const std::string_view word = TakeWord(rest_);
    if (word != "ok-first" && word != "sentences-first") {
      return "expected \"ok-first\" or \"sentences-first\", not " + Quoted(word);
    }
    const bool okFirst = word == "ok-first";
    fault.amount = static_cast<std::int64_t>(okFirst ? ReportShape::kOkThenSentences
                                                     : ReportShape::kSentencesOnly);
    return {};
  }

  std::string ReadPlainAction(std::string_view name, TimedFault& fault) {
    const auto entry = std::find_if(kActions.begin(), kActions.end(),
                                    [name](const ActionEntry& each) { return each.name == name; });
    if (entry == kActions.end()) return "unknown action " + Quoted(name);
    fault.action = entry->action;
    switch (entry->argument) {
      case Argument::kNone:
        return {};
      case Argument::kText:
        return ReadText(fault);
      case Argument::kSeconds:
        return ReadSeconds(fault);
      case Argument::kOptionalCount:
        fault.amount = kGarbageLength;
        return rest_.empty() ? std::string() : ReadWhole(TakeWord(rest_), fault.amount);
      case Argument::kMillis:
      case Argument::kCount:
        return ReadWhole(TakeWord(rest_), fault.amount);
    }
    return {};
  }

  std::string ReadText(TimedFault& fault) {
    if (rest_.empty()) return "expected a text";
    fault.text = std::exchange(rest_, {});
    return {};
  }

  std::string ReadSeconds(TimedFault& fault) {
    const std::string_view word = TakeWord(rest_);
    const auto duration = Seconds(word);
    if (!duration) return "expected a number of seconds, not " + Quoted(word);
    fault.amount = *duration;
    return {};
  }

  std::string ReadReaction() {
    CommandFault fault;
    fault.command = TakeWord(rest_);
    if (fault.command != "*" && !fault.command.starts_with("AT")) {
      return "expected a command or \"*\", not " + Quoted(fault.command);
    }
    const std::string_view name = TakeWord(rest_);
    const auto entry =
        std::find_if(kReactions.begin(), kReactions.end(),
                     [name](const ReactionEntry& each) { return each.name == name; });
    if (entry == kReactions.end()) return "unknown reaction " + Quoted(name);
    fault.reaction = entry->reaction;
    std::string wrong;
    if (entry->takesDelay) wrong = ReadWhole(TakeWord(rest_), fault.delay);
    if (wrong.empty() && !rest_.empty()) wrong = ReadCount(fault.count);
    if (wrong.empty()) faults_.reactions.push_back(std::move(fault));
    return wrong;
  }

  std::string ReadCount(std::int64_t& count) {
    const std::string_view word = TakeWord(rest_);
    if (word == "always") {
      count = kAlways;
      return {};
    }
    return ReadWhole(word, count);
  }

  static std::string ReadWhole(std::string_view word, std::int64_t& number) {
    const auto value = Whole(word);
    if (!value) return "expected a whole number, not " + Quoted(word);
    number = *value;
    return {};
  }

  std::string_view rest_;
  ModemFaults faults_;
};

}  // namespace

Outcome<ModemFaults> ParseFaults(std::string_view script, const std::string& name) {
  ScriptReader reader;
  for (int number = 1; !script.empty(); ++number) {
    const auto end = std::min(script.find('\n'), script.size());
    const std::string_view line = script.substr(0, end);
    script.remove_prefix(std::min(end + 1, script.size()));
    const std::string_view entry = Trimmed(line.substr(0, line.find('#')));
    if (entry.empty()) continue;
    const std::string wrong = reader.ReadLine(entry);
    if (!wrong.empty()) {
      return NoValue<ModemFaults>(name + ':' + std::to_string(number) + ": " + wrong);
    }
  }
  return {.value = std::move(reader).Faults(), .error = {}};
}

Outcome<ModemFaults> LoadFaults(const std::string& path) {
  auto script = ReadWholeFile(path);
  if (!script) return NoValue<ModemFaults>(std::move(script.error));
  return ParseFaults(*script, path);
}

bool CommandMatches(std::string_view line, std::string_view pattern) {
  if (pattern == "*") return true;
  if (!line.starts_with(pattern)) return false;
  return line.size() == pattern.size() ||
         std::isalnum(static_cast<unsigned char>(line[pattern.size()])) == 0;
}

}  // namespace bench
