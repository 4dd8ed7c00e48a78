#include "sensor/LeadTimes.h"

#include <algorithm>

namespace stelvane {

namespace {

// Upper bound, included, of each bracket of report intervals; the last bracket has none.
constexpr std::array<std::uint32_t, LeadTimes::kCount - 1> kBracketEnds = {60000, 600000, 1800000,
                                                                           3600000, 7200000};
constexpr std::array<std::uint32_t, LeadTimes::kCount> kDefaults = {3000,  6000,  10000,
                                                                    20000, 40000, 50000};

}  // namespace

void LeadTimes::SetDefaults() {
  const ScopedLock lock(lock_);
  milliseconds_ = kDefaults;
}

std::uint32_t LeadTimes::For(std::uint32_t interval) {
  if (interval <= kLongestPeriodicInterval) return 0;
  const auto bracket = std::lower_bound(kBracketEnds.begin(), kBracketEnds.end(), interval);
  const ScopedLock lock(lock_);
  return milliseconds_[static_cast<std::size_t>(bracket - kBracketEnds.begin())];
}

std::string LeadTimes::Text() {
  const ScopedLock lock(lock_);
  std::string text;
  for (const std::uint32_t milliseconds : milliseconds_) {
    if (!text.empty()) text += ",";
    text += std::to_string(milliseconds / 1000);
  }
  return text;
}

namespace lead_times {

bool NextPiece(const WCHAR*& text, const WCHAR*& piece) {
  if (*text == 0) return false;
  piece = text;
  while (*text != 0 && *text != ',') ++text;
  if (*text == ',') ++text;
  return true;
}

LONG ReadNumber(const WCHAR* piece) {
  while (*piece == ' ' || (*piece >= '\t' && *piece <= '\r')) ++piece;
  const bool negative = *piece == '-';
  if (negative || *piece == '+') ++piece;
  std::int64_t value = 0;
  for (; *piece >= '0' && *piece <= '9'; ++piece) {
    value = std::min<std::int64_t>(value * 10 + (*piece - '0'), std::int64_t{MAXLONG} + 1);
  }
  return static_cast<LONG>(negative ? -value : std::min<std::int64_t>(value, MAXLONG));
}

}  // namespace lead_times

}  // namespace stelvane
