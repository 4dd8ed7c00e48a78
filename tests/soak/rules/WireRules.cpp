#include "tests/soak/rules/WireRules.h"

namespace soak {

namespace {

constexpr Millis kAttemptTime = 1000;
constexpr unsigned kReopensAfter = 3;
constexpr Millis kBacklogTime = 1000;  // in which what lay about is read

}  // namespace

bool IsFinal(std::string_view line) {
  return line.starts_with("OK") || line.starts_with("+XLSRSTOP") ||
         line.find("ERROR") != std::string_view::npos;
}

void WireRules::Said(Millis at, std::string_view line) {
  if (IsFinal(line)) ++finals_;
}

void WireRules::Opened(Millis at) {
  opened_ = true;
}

void WireRules::ReadingGoesOn(Millis at) {
  reading_ = true;
  backlogUntil_ = at + kBacklogTime;
}

bool WireRules::MayBeOver(Millis at) const {
  return finals_ > 0 || spare_ || !reading_ || at <= backlogUntil_;
}

WireRules::Possible WireRules::Next(Millis at, std::string_view line) const {
  Possible next;
  if (attempts_.none() || MayBeOver(at)) next.set(1);
  if (at - at_ < kAttemptTime) return next;
  for (unsigned made = 1; made < kAttempts; ++made) {
    const bool reopened = made == kReopensAfter;
    if (attempts_[made] && line == line_ && opened_ == reopened) next.set(made + 1);
  }
  if (attempts_[kAttempts]) next.set(1);
  if (attempts_[kReopensAfter] && opened_ && openingMayFail_) next.set(1);
  return next;
}

void WireRules::Written(Millis at, std::string_view line) {
  const Possible next = Next(at, line);
  if (next.none()) {
    const std::string after = std::to_string(at - at_) + " ms after \"" + line_ + '"';
    const bool early = at - at_ < kAttemptTime;
    breaches_.Add(early ? "one-command" : "attempts", at,
                  '"' + std::string(line) + "\" is written " + after +
                      (early ? ", which has no final result" : ", against the order of attempts"));
  }
  Begin(at, line, next.none() ? Possible().set(1) : next);
}

void WireRules::Begin(Millis at, std::string_view line, Possible attempts) {
  // A final result that came too often, or in the last moment of an attempt, may be read as that
  // of the next command.
  spare_ = finals_ > 1 || (finals_ == 1 && line == line_);
  finals_ = 0;
  opened_ = false;
  line_ = line;
  at_ = at;
  attempts_ = attempts;
}

}  // namespace soak
