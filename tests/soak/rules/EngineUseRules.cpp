#include "tests/soak/rules/EngineUseRules.h"

#include <algorithm>
#include <string>

namespace soak {

namespace {

constexpr Millis kAttemptTime = 1000;
constexpr Millis kCommandUnderWay = 1400;  // a command, its silence and a pause between two
constexpr int kAttempts = 7;
constexpr Millis kLeaving = 10'000;  // from the last client's leaving to the last command's end

}  // namespace

void EngineUseRules::StopIdle(Millis at) {
  // Two threads may take the first hold at once; one of them gives it back in the same moment.
  if (holds_ > 0 && firstHold_ != at) {
    breaches_.Add("engine-use-balance", at, "StopIdle while the device is held");
  }
  if (holds_++ == 0) firstHold_ = at;
}

void EngineUseRules::ResumeIdle(Millis at, bool sure) {
  if (holds_ == 0) {
    breaches_.Add("engine-use-balance", at, "ResumeIdle without a hold");
    return;
  }
  if (--holds_ > 0) return;
  // Whether the driver took the last attempt's result is not seen: nothing follows in either case.
  const bool seen = startedAt_ >= 0 && startWrites_ < kAttempts;
  if (seen && !MayHaveEnded(sure)) {
    breaches_.Add("engine-use-kept", at,
                  "the device may idle although the location request accepted at " +
                      std::to_string(startedAt_) + " ms runs");
  }
  startedAt_ = -1;
}

bool EngineUseRules::MayHaveEnded(bool sure) const {
  return ending_ || endedAt_ >= calmSince_ || ((single_ || !sure) && fixAt_ >= calmSince_);
}

void EngineUseRules::Written(Millis at, std::string_view line, bool sure) {
  // A use is taken before the command waits for its turn, and may be lost meanwhile.
  const bool waited = at - std::max(lastWritten_, openedAt_) <= kCommandUnderWay;
  if (holds_ == 0 && !(waited && MayHaveEnded(sure))) {
    breaches_.Add("engine-use-talking", at,
                  '"' + std::string(line) + "\" is written to a device that may idle");
  }
  const bool again = at - lastWritten_ >= kAttemptTime && at - lastWritten_ <= kCommandUnderWay;
  if (at - lastWritten_ > kCommandUnderWay) calmSince_ = at;
  lastWritten_ = at;
  const bool start = line.starts_with("AT+XLCSLSR=");
  if (start) {
    startWrites_ = starting_ && again ? startWrites_ + 1 : 1;
    single_ = line.find(",,,,,,,") != std::string_view::npos;
    startedAt_ = -1;
  }
  starting_ = start;
  idSaid_ = false;
  resultSaid_ = false;
}

void EngineUseRules::Said(Millis at, std::string_view line) {
  if (line.find("ERROR") != std::string_view::npos) {
    fair_ = false;
    resultSaid_ = true;
    if (at == startedAt_) startedAt_ = -1;  // of two results at once either may count
    if (line.starts_with("+XLCSLSR: ")) endedAt_ = at;
  }
  if (line.starts_with("+XLSRSTOP")) endedAt_ = at;
  if (line.starts_with("$")) fixAt_ = at;
  if (line.starts_with("+XLCSLSR: request id")) idSaid_ = true;
  if (line != "OK") return;
  const bool inTime = holds_ > 0 && at - lastWritten_ < kAttemptTime;
  if (starting_ && idSaid_ && !resultSaid_ && inTime) startedAt_ = at;
  resultSaid_ = true;
}

void EngineUseRules::PowerUp(Millis at) {
  reading_ = true;
  endedAt_ = at;
}

void EngineUseRules::Opened(Millis at) {
  if (!reading_ || endedAt_ > openedAt_) endedAt_ = at;
  if (fixAt_ > openedAt_) fixAt_ = at;
  openedAt_ = at;
}

void EngineUseRules::Clients(Millis at, int change) {
  connected_ += change;
  if (connected_ == 0) emptySince_ = at;
}

void EngineUseRules::Quiet(Millis at) {
  const Millis since = std::max(emptySince_, lastWritten_);
  if (!fair_ || connected_ > 0 || holds_ == 0 || at - since < kLeaving) return;
  breaches_.Add("engine-use-returned", at, "the device is held although nobody is connected");
  fair_ = false;
}

}  // namespace soak
