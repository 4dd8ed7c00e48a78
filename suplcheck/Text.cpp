#include "suplcheck/Text.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

namespace suplcheck {

namespace {

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string Utf8(std::wstring_view text) {
  const int wide = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), wide, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), wide, result.data(), size, nullptr, nullptr);
  return result;
}

std::string Printable(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result += c;
      continue;
    }
    char code[8];
    std::snprintf(code, sizeof code, "\\x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    result += code;
  }
  return result;
}

std::string Quoted(std::string_view text) {
  return '"' + Printable(text) + '"';
}

bool IsDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool EqualButForCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, Lower, Lower);
}

}  // namespace suplcheck
