// Numbers to text and back, the same in every locale.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace bench {

/// `value` with that many decimals; never "-0".
std::string Fixed(double value, int decimals);
/// `value` as it reads back from Fixed.
double Rounded(double value, int decimals);

/// The whole of `text` as a number, or nothing.
template <typename Number>
std::optional<Number> ToNumber(std::string_view text) {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

}  // namespace bench
