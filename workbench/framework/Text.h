// Wide strings of the platform, independent of the native width of wchar_t.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace bench {

static_assert(sizeof(WCHAR) == sizeof(char16_t));

/// Null gives the empty text.
inline std::u16string TextOf(PCWSTR characters) {
  std::u16string text;
  for (; characters != nullptr && *characters != 0; ++characters) {
    text.push_back(static_cast<char16_t>(*characters));
  }
  return text;
}

/// Writes the text and its terminator; `place` has room for size() + 1.
inline void CopyText(const std::u16string& text, PWSTR place) {
  for (std::size_t i = 0; i < text.size(); ++i) place[i] = static_cast<WCHAR>(text[i]);
  place[text.size()] = 0;
}

}  // namespace bench
