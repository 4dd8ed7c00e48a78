// A location report read in the most obvious way: all fields are cut first, then looked up by
// their numbers.
#pragma once

#include <cstdint>
#include <string_view>

#include "at/FixRecord.h"

namespace reference {

struct Coordinate {
  double degrees;
  bool hasLetter;
};
Coordinate ReadCoordinate(std::string_view text);

/// Results beside those of the parser.
inline constexpr int kMemoryException = 256;

/// The parser's result, or kMemoryException where it must end with one. `fix` counts on 0 only.
int ReadReport(std::string_view line, stelvane::FixRecord& fix);

}  // namespace reference
