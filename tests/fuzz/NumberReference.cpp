#include "tests/fuzz/NumberReference.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace reference {

namespace {

/// Walks over a text; behind its end it sees zeros.
struct Cursor {
  std::string_view text;
  std::size_t at = 0;

  char Here(std::size_t ahead = 0) const { return at + ahead < text.size() ? text[at + ahead] : 0; }
  bool OnDigit(std::size_t ahead = 0) const { return Here(ahead) >= '0' && Here(ahead) <= '9'; }
  bool OnSign(std::size_t ahead = 0) const { return Here(ahead) == '+' || Here(ahead) == '-'; }
  void SkipBlanks() {
    while (Here() == ' ') ++at;
  }
  void SkipDigits() {
    while (OnDigit()) ++at;
  }
};

/// The whole number at the text's start, held between the limits.
std::int64_t ReadWhole(std::string_view text, std::int64_t least, std::int64_t most) {
  Cursor cursor{text};
  cursor.SkipBlanks();
  const bool negative = cursor.Here() == '-';
  if (cursor.OnSign()) ++cursor.at;
  std::int64_t value = 0;
  for (; cursor.OnDigit(); ++cursor.at) {
    const std::int64_t digit = cursor.Here() - '0';
    value = std::clamp(value * 10 + (negative ? -digit : digit), least, most);
  }
  return value;
}

}  // namespace

Decimal ReadDecimal(std::string_view text) {
  Cursor cursor{text};
  cursor.SkipBlanks();
  const std::size_t start = cursor.at;
  if (cursor.OnSign()) ++cursor.at;
  if (!cursor.OnDigit() && !(cursor.Here() == '.' && cursor.OnDigit(1))) return {0.0, 0};
  cursor.SkipDigits();
  if (cursor.Here() == '.') ++cursor.at;
  cursor.SkipDigits();
  if (cursor.Here() == 'e' || cursor.Here() == 'E') {
    const std::size_t sign = cursor.OnSign(1) ? 1 : 0;
    if (cursor.OnDigit(1 + sign)) {
      cursor.at += 1 + sign;
      cursor.SkipDigits();
    }
  }
  const std::string number(text.substr(start, cursor.at - start));
  return {std::strtod(number.c_str(), nullptr), cursor.at};
}

std::int32_t ReadInteger(std::string_view text) {
  return static_cast<std::int32_t>(ReadWhole(text, INT32_MIN, INT32_MAX));
}

std::uint32_t ReadUnsigned(std::string_view text) {
  return static_cast<std::uint32_t>(ReadWhole(text, 0, UINT32_MAX));
}

void ReadThreeWords(std::string_view text, char separator, std::uint16_t words[3]) {
  // The library would hold a number beyond 64 bits, which must wrap: each run of digits is
  // replaced by its value modulo 65536 first.
  std::string shortened;
  for (Cursor cursor{text}; cursor.at < text.size();) {
    if (!cursor.OnDigit()) {
      shortened += cursor.Here();
      ++cursor.at;
      continue;
    }
    unsigned value = 0;
    for (; cursor.OnDigit(); ++cursor.at) {
      value = (value * 10 + static_cast<unsigned>(cursor.Here() - '0')) % 65536;
    }
    shortened += std::to_string(value);
  }
  if (separator == '/') {
    std::sscanf(shortened.c_str(), "%hu/%hu/%hu", &words[0], &words[1], &words[2]);
  } else {
    std::sscanf(shortened.c_str(), "%hu:%hu:%hu", &words[0], &words[1], &words[2]);
  }
}

}  // namespace reference
