// The lines of a stream, cut in the most obvious way.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// What a reader that sees the whole stream at once makes of it.
inline std::vector<std::string> ReferenceLines(std::string_view stream) {
  std::vector<std::string> lines;
  std::string line;
  for (const char c : stream) {
    if (c != '\n') {
      line += c;
      continue;
    }
    while (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
    line.clear();
  }
  return lines;
}

}  // namespace fuzz
