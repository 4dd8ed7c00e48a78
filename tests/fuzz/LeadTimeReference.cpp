#include "tests/fuzz/LeadTimeReference.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace reference {

namespace {

/// There is no piece behind a comma at the end.
std::vector<std::string> Pieces(std::u16string_view text) {
  std::vector<std::string> pieces(1);
  for (const char16_t c : text) {
    if (c == ',') {
      pieces.emplace_back();
    } else {
      pieces.back() += c < 0x80 ? static_cast<char>(c) : '?';
    }
  }
  if (pieces.back().empty()) pieces.pop_back();
  return pieces;
}

/// Reads as a 32-bit wcstol does.
std::int64_t Seconds(const std::string& piece) {
  return std::clamp<std::int64_t>(std::strtoll(piece.c_str(), nullptr, 10), INT32_MIN, INT32_MAX);
}

}  // namespace

LeadTimeOutcome StoreLeadTimes(std::u16string_view text, unsigned takenRefusals,
                               LeadTimeTable table) {
  std::size_t count = 0;
  for (const std::string& piece : Pieces(text)) {
    const std::int64_t seconds = Seconds(piece);
    // Refused until that fails.
    if (seconds == 0) return {takenRefusals + 1, true, table};
    if (count < table.size()) table[count] = static_cast<std::uint32_t>(seconds * 1000);
    ++count;
  }
  if (count == table.size()) return {0, false, table};
  return {1, takenRefusals == 0, table};
}

std::string LeadTimeText(const LeadTimeTable& table) {
  std::string text;
  for (const std::uint32_t milliseconds : table) text += std::to_string(milliseconds / 1000) + ",";
  text.pop_back();
  return text;
}

}  // namespace reference
