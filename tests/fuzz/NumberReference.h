// Numbers as the modem writes them, read in the most obvious way: what belongs to the number is cut
// out character by character and given to the C library.
#pragma once

#include <cstdint>
#include <string_view>

namespace reference {

struct Decimal {
  double value;
  std::size_t used;  // characters, blanks included; 0: no number
};

Decimal ReadDecimal(std::string_view text);
std::int32_t ReadInteger(std::string_view text);
std::uint32_t ReadUnsigned(std::string_view text);

/// As scanf with "%hu", the separator, "%hu", the separator and "%hu".
void ReadThreeWords(std::string_view text, char separator, std::uint16_t words[3]);

}  // namespace reference
