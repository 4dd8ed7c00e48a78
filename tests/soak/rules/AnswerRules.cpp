#include "tests/soak/rules/AnswerRules.h"

#include <utility>

namespace soak {

void AnswerRules::Asked(Millis at, int id, std::string what, Millis limit) {
  open_[id] = {.since = at, .what = std::move(what), .limit = limit};
}

void AnswerRules::Answered(Millis at, int id) {
  const auto found = open_.find(id);
  if (found == open_.end()) return;
  const Open& open = found->second;
  if (at - open.since > open.limit) {
    breaches_.Add("answered", at,
                  open.what + " took " + std::to_string(at - open.since) + " ms, more than " +
                      std::to_string(open.limit));
  }
  open_.erase(found);
}

void AnswerRules::IntervalAnswered(Millis at, std::int64_t milliseconds, bool accepted) {
  if (accepted == IsAcceptable(milliseconds)) return;
  breaches_.Add("interval-accepted", at,
                "an interval of " + std::to_string(milliseconds) + " ms was " +
                    (accepted ? "accepted" : "refused"));
}

void AnswerRules::Ended(Millis at) {
  for (const auto& [id, open] : open_) {
    breaches_.Add("answered", at,
                  open.what + " of " + std::to_string(open.since) + " ms was never answered");
  }
  open_.clear();
}

}  // namespace soak
