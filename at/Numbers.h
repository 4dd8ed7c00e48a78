#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace stelvane {

// Numbers as the modem writes them. None of these looks at the process locale, allocates or
// throws; a blank is the character ' '.

/// The decimal number that `text` starts with: blanks, a sign, digits with an optional fraction,
/// an optional exponent. Reading stops at the first character that does not fit. `used`, when
/// given, receives the number of characters taken, blanks included; a text that starts with no
/// number gives 0 with 0 characters taken. The result is the double nearest to the text's value
/// (ties to even); beyond the range of a double it is an infinity or a zero of the text's sign.
double ParseDecimal(std::string_view text, std::size_t* used = nullptr);

/// The integer that `text` starts with, after blanks and with an optional sign, held within the
/// result's range; 0 when there is none.
std::int32_t ParseInteger(std::string_view text);

/// As ParseInteger; a negative number is held at 0.
std::uint32_t ParseUnsigned(std::string_view text);

/// Reads unsigned 16-bit numbers with one separator character between them, as scanf's "%hu" does:
/// white space before a number is skipped, a sign is taken, the value wraps at 65536, and the
/// separator must follow at once. The first mismatch ends the reading and leaves the remaining
/// targets as they were.
void ReadWords(std::string_view text, char separator,
               std::initializer_list<std::uint16_t*> targets);

}  // namespace stelvane
