#include "workbench/modem/TextNumber.h"

#include <array>

namespace bench {

std::string Fixed(double value, int decimals) {
  std::array<char, 400> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                          std::chars_format::fixed, decimals);
  std::string result(text.data(), end);
  if (result.front() == '-' && result.find_first_not_of("-0.") == std::string::npos) {
    result.erase(0, 1);
  }
  return result;
}

double Rounded(double value, int decimals) {
  return ToNumber<double>(Fixed(value, decimals)).value_or(0);
}

}  // namespace bench
