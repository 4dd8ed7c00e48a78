#include "at/Numbers.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace stelvane {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

std::size_t CountBlanks(std::string_view text) {
  const std::size_t end = text.find_first_not_of(' ');
  return end == std::string_view::npos ? text.size() : end;
}

/// Takes a sign off the front of `text`; returns whether it was a minus.
bool TakeSign(std::string_view& text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

bool StartsWithDecimal(std::string_view text) {
  if (text.starts_with('.')) text.remove_prefix(1);
  return !text.empty() && IsDigit(text.front());
}

/// Whether a decimal number without sign, known to be outside the range of a double, is too large
/// rather than too small.
bool IsTooLarge(std::string_view number) {
  const std::size_t exponentAt = number.find_first_of("eE");
  const std::string_view mantissa = number.substr(0, exponentAt);
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto leading = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
  const std::int64_t exponent =
      exponentAt == std::string_view::npos ? 0 : ParseInteger(number.substr(exponentAt + 1));
  return point - leading + exponent > 0;
}

/// The digits that `text` starts with, held at `limit`.
std::uint64_t ParseDigits(std::string_view text, std::uint64_t limit) {
  std::uint64_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc::result_out_of_range || value > limit ? limit : value;
}

/// Takes one number off the front of `text` as "%hu" does; false on a mismatch.
bool TakeWord(std::string_view& text, std::uint16_t& word) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
  const bool negative = TakeSign(text);
  if (text.empty() || !IsDigit(text.front())) return false;
  std::uint32_t value = 0;
  while (!text.empty() && IsDigit(text.front())) {
    value = (value * 10 + static_cast<std::uint32_t>(text.front() - '0')) & 0xFFFF;
    text.remove_prefix(1);
  }
  word = static_cast<std::uint16_t>(negative ? 0x10000 - value : value);
  return true;
}

}  // namespace

double ParseDecimal(std::string_view text, std::size_t* used) {
  std::string_view number = text.substr(CountBlanks(text));
  const bool negative = TakeSign(number);
  if (used != nullptr) *used = 0;
  // from_chars would also take a second minus, "inf" and "nan".
  if (!StartsWithDecimal(number)) return 0.0;

  double value = 0.0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  number = number.substr(0, static_cast<std::size_t>(end - number.data()));
  if (error == std::errc::result_out_of_range) {
    value = IsTooLarge(number) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  if (used != nullptr) *used = static_cast<std::size_t>(end - text.data());
  return negative ? -value : value;
}

std::int32_t ParseInteger(std::string_view text) {
  text.remove_prefix(CountBlanks(text));
  const bool negative = TakeSign(text);
  const std::uint64_t limit = negative ? 0x80000000 : 0x7FFFFFFF;
  const auto value = static_cast<std::int64_t>(ParseDigits(text, limit));
  return static_cast<std::int32_t>(negative ? -value : value);
}

std::uint32_t ParseUnsigned(std::string_view text) {
  text.remove_prefix(CountBlanks(text));
  const std::uint64_t limit = TakeSign(text) ? 0 : 0xFFFFFFFF;
  return static_cast<std::uint32_t>(ParseDigits(text, limit));
}

void ReadWords(std::string_view text, char separator,
               std::initializer_list<std::uint16_t*> targets) {
  for (std::uint16_t* const& target : targets) {
    if (&target != targets.begin()) {
      if (!text.starts_with(separator)) return;
      text.remove_prefix(1);
    }
    if (!TakeWord(text, *target)) return;
  }
}

}  // namespace stelvane
