#include "workbench/record/SentFixes.h"

#include <cctype>
#include <string_view>

namespace bench {

namespace {

// A report, not the answer that gives the request's id nor the news that there is no position.
bool IsReport(std::string_view line) {
  constexpr std::string_view kBeginning = "+XLCSLSR: ";
  return line.starts_with(kBeginning) && line.size() > kBeginning.size() &&
         std::isdigit(static_cast<unsigned char>(line[kBeginning.size()])) != 0;
}

}  // namespace

void SentFixes::OnFixSent(const SentFix& sent) {
  const std::lock_guard lock(mutex_);
  fixes_.push_back({.sent = sent, .arrived = std::nullopt});
}

void SentFixes::OnLine(const AtLine& line) {
  if (line.toModem || !IsReport(line.text)) return;
  const std::lock_guard lock(mutex_);
  if (arrived_ < fixes_.size()) fixes_[arrived_++].arrived = line.at;
}

std::size_t SentFixes::Count() const {
  const std::lock_guard lock(mutex_);
  return fixes_.size();
}

std::vector<FixOnItsWay> SentFixes::All() const {
  const std::lock_guard lock(mutex_);
  return fixes_;
}

}  // namespace bench
