// Trace levels by name.
#pragma once

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string_view>

namespace bench {

/// By level less 1, as trace format files name them.
inline constexpr std::array<std::string_view, 5> kTraceLevels = {"critical", "error", "warning",
                                                                 "information", "verbose"};
inline constexpr const char* kTraceLevelHelp =
    "critical, error, warning, information or verbose (1 to 5)";

/// "error" or "2" is 2; nothing for what is no level.
inline std::optional<unsigned char> ToTraceLevel(std::string_view text) {
  if (text.size() == 1 && text[0] >= '1' && text[0] <= '5') {
    return static_cast<unsigned char>(text[0] - '0');
  }
  const auto* const found = std::ranges::find(kTraceLevels, text);
  if (found == kTraceLevels.end()) return std::nullopt;
  return static_cast<unsigned char>(found - kTraceLevels.begin() + 1);
}

}  // namespace bench
