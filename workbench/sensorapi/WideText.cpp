#include <cstdint>

#include "workbench/sensorapi/Variant.h"

namespace bench {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// Takes one code point from `text` at `*position`; a malformed byte counts as one replacement.
char32_t TakeUtf8(std::string_view text, std::size_t* position) {
  const auto byteAt = [&](std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
  };
  const std::uint32_t first = byteAt((*position)++);
  if (first < 0x80) return first;
  const std::size_t following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
  if (following == 0) return kReplacement;
  std::uint32_t point = first & (0x3Fu >> following);
  for (std::size_t i = 0; i < following; ++i) {
    const std::uint32_t next = byteAt(*position);
    if ((next & 0xC0) != 0x80) return kReplacement;
    point = (point << 6) | (next & 0x3F);
    ++*position;
  }
  return point;
}

void AppendUtf8(char32_t point, std::string* text) {
  const auto append = [&](std::uint32_t byte) { text->push_back(static_cast<char>(byte)); };
  if (point < 0x80) {
    append(point);
  } else if (point < 0x800) {
    append(0xC0 | (point >> 6));
    append(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    append(0xE0 | (point >> 12));
    append(0x80 | ((point >> 6) & 0x3F));
    append(0x80 | (point & 0x3F));
  } else {
    append(0xF0 | (point >> 18));
    append(0x80 | ((point >> 12) & 0x3F));
    append(0x80 | ((point >> 6) & 0x3F));
    append(0x80 | (point & 0x3F));
  }
}

}  // namespace

std::vector<WCHAR> Wide(std::string_view utf8) {
  std::vector<WCHAR> wide;
  wide.reserve(utf8.size() + 1);
  for (std::size_t position = 0; position < utf8.size();) {
    const char32_t point = TakeUtf8(utf8, &position);
    if (point < 0x10000) {
      wide.push_back(static_cast<WCHAR>(point));
    } else {
      wide.push_back(static_cast<WCHAR>(0xD800 + ((point - 0x10000) >> 10)));
      wide.push_back(static_cast<WCHAR>(0xDC00 + (point & 0x3FF)));
    }
  }
  wide.push_back(0);
  return wide;
}

std::string Utf8(const WCHAR* text) {
  std::string utf8;
  if (text == nullptr) return utf8;
  for (; *text != 0; ++text) {
    char32_t point = static_cast<std::uint16_t>(*text);
    const char32_t next = static_cast<std::uint16_t>(text[1]);
    if ((point & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00) {
      point = 0x10000 + ((point & 0x3FF) << 10) + (next & 0x3FF);
      ++text;
    }
    AppendUtf8(point, &utf8);
  }
  return utf8;
}

}  // namespace bench
