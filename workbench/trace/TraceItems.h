// The arguments of a trace message: types, values, and the values' texts.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// What a type's bytes mean.
enum class ItemKind { kSigned, kUnsigned, kText, kWideText, kResult, kWindowsError, kGuid, kList };

struct TraceItem {
  ItemKind kind = ItemKind::kUnsigned;
  std::size_t size = 4;              // in bytes; 0 for texts, which end with a zero
  std::vector<std::string> names{};  // of a list, by index
  int insert = 0;                    // its number in the text
};

/// "ItemULong", "ItemListLong(no,yes)"; nothing for a type that is not known.
std::optional<TraceItem> ItemOfType(std::string_view type);

/// One argument, taken from an event.
struct TraceValue {
  std::optional<std::uint64_t> number{};  // the bytes, without regard to a sign
  std::string text{};                     // as shown with the format "s"
};

/// Takes the item's bytes from the front of `bytes`; nothing when they end too early.
std::optional<TraceValue> TakeValue(const TraceItem& item, std::string_view& bytes);

/// What the lowest `size` bytes of `number` are as a signed number.
std::int64_t SignExtended(std::uint64_t number, std::size_t size);

/// As trace format files are named: 36 characters in lower case, no braces.
std::string GuidText(const GUID& guid);

}  // namespace bench
