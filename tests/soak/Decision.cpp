#include "tests/soak/Decision.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "workbench/modem/TextNumber.h"

namespace soak {

namespace {

struct Entry {
  Deed deed;
  std::string_view name;
  std::size_t numbers;
};
constexpr Entry kDeeds[] = {
    {Deed::kConnect, "connect", 1},
    {Deed::kLeave, "leave", 1},
    {Deed::kVanish, "vanish", 1},
    {Deed::kSubscribe, "subscribe", 1},
    {Deed::kUnsubscribe, "unsubscribe", 1},
    {Deed::kInterval, "interval", 2},
    {Deed::kAccuracy, "accuracy", 2},
    {Deed::kGet, "get", 1},
    {Deed::kSet, "set", 2},
    {Deed::kRead, "read", 1},
    {Deed::kLists, "lists", 1},
    {Deed::kRadio, "radio", 1},
    {Deed::kRadioQuery, "radio-query", 1},
    {Deed::kRadioStore, "radio-store", 1},
    {Deed::kOddRequest, "odd-request", 1},
    {Deed::kClear, "clear", 2},
    {Deed::kInitAgain, "init-again", 1},
    {Deed::kSilent, "silent", 1},
    {Deed::kLoseFix, "lose-fix", 1},
    {Deed::kGarbage, "garbage", 1},
    {Deed::kStray, "stray", 1},
    {Deed::kSim, "sim", 1},
    {Deed::kRestart, "restart", 0},
    {Deed::kEcho, "echo", 1},
    {Deed::kCut, "cut", 1},
    {Deed::kShred, "shred", 1},
    {Deed::kJoin, "join", 1},
    {Deed::kStall, "stall", 1},
    {Deed::kReact, "react", 4},
    {Deed::kForm, "form", 1},
    {Deed::kShape, "shape", 1},
    {Deed::kSleep, "sleep", 0},
    {Deed::kWake, "wake", 0},
    {Deed::kConfig, "config", 1},
    {Deed::kCalm, "calm", 0},
    {Deed::kUnplug, "unplug", 0},
    {Deed::kStop, "stop", 0},
};

std::string_view TakeWord(std::string_view& rest) {
  const auto begin = std::min(rest.find_first_not_of(" \t\r"), rest.size());
  const auto end = std::min(rest.find_first_of(" \t\r", begin), rest.size());
  const std::string_view word = rest.substr(begin, end - begin);
  rest.remove_prefix(end);
  return word;
}

}  // namespace

std::string DecisionText(const Decision& decision) {
  const auto* const entry = std::ranges::find(kDeeds, decision.deed, &Entry::deed);
  char time[32];
  std::snprintf(time, sizeof time, "%.3f ", static_cast<double>(decision.at) / 1000);
  std::string text = time + std::string(entry->name);
  for (std::size_t i = 0; i < entry->numbers; ++i) {
    text += ' ' + std::to_string(decision.numbers[i]);
  }
  return text;
}

bench::Outcome<Decision> ReadDecision(std::string_view line) {
  const auto fail = [](const std::string& why) { return bench::NoValue<Decision>(why); };
  const auto seconds = bench::ToNumber<double>(TakeWord(line));
  if (!seconds || !(*seconds >= 0) || *seconds > 1e9) return fail("expected a time in seconds");
  const std::string_view name = TakeWord(line);
  const auto* const entry = std::ranges::find(kDeeds, name, &Entry::name);
  if (entry == std::end(kDeeds)) return fail("unknown deed \"" + std::string(name) + '"');
  Decision decision{.at = std::llround(*seconds * 1000), .deed = entry->deed};
  for (std::size_t i = 0; i < entry->numbers; ++i) {
    const auto number = bench::ToNumber<std::int64_t>(TakeWord(line));
    if (!number || *number < 0) return fail("expected a number");
    decision.numbers[i] = *number;
  }
  if (!TakeWord(line).empty()) return fail("too many numbers");
  return {.value = decision, .error = {}};
}

std::string PlanText(const Plan& plan) {
  std::string text = "seed " + std::to_string(plan.seed) + '\n';
  for (const Decision& decision : plan.decisions) text += DecisionText(decision) + '\n';
  return text;
}

bench::Outcome<Plan> ReadPlan(std::string_view text, const std::string& name) {
  Plan plan;
  bool seeded = false;
  for (int number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line = line.substr(0, line.find('#'));
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    const auto fail = [&](const std::string& why) {
      return bench::NoValue<Plan>(name + ':' + std::to_string(number) + ": " + why);
    };
    if (!seeded) {
      const bool named = TakeWord(line) == "seed";
      const auto seed = bench::ToNumber<std::uint64_t>(TakeWord(line));
      if (!named || !seed) return fail("expected \"seed\" and its number");
      plan.seed = *seed;
      seeded = true;
      continue;
    }
    const auto decision = ReadDecision(line);
    if (!decision) return fail(decision.error);
    if (!plan.decisions.empty() && decision.value->at < plan.decisions.back().at) {
      return fail("earlier than the line before");
    }
    plan.decisions.push_back(*decision.value);
  }
  if (!seeded) return bench::NoValue<Plan>(name + ": no seed");
  return {.value = std::move(plan), .error = {}};
}

}  // namespace soak
