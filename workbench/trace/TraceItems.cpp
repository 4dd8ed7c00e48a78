#include "workbench/trace/TraceItems.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "workbench/trace/ResultNames.h"

namespace bench {

namespace {

struct ItemType {
  std::string_view name;
  ItemKind kind;
  std::size_t size;
};

constexpr std::size_t kPointerSize = sizeof(void*);  // the workbench and its DLL are of one kind

constexpr ItemType kTypes[] = {
    {"ItemChar", ItemKind::kSigned, 1},
    {"ItemUChar", ItemKind::kUnsigned, 1},
    {"ItemShort", ItemKind::kSigned, 2},
    {"ItemUShort", ItemKind::kUnsigned, 2},
    {"ItemLong", ItemKind::kSigned, 4},
    {"ItemULong", ItemKind::kUnsigned, 4},
    {"ItemULongX", ItemKind::kUnsigned, 4},
    {"ItemLongLong", ItemKind::kSigned, 8},
    {"ItemULongLong", ItemKind::kUnsigned, 8},
    {"ItemLongLongX", ItemKind::kUnsigned, 8},
    {"ItemPtr", ItemKind::kUnsigned, kPointerSize},
    {"ItemString", ItemKind::kText, 0},
    {"ItemWString", ItemKind::kWideText, 0},
    {"ItemHRESULT", ItemKind::kResult, 4},
    {"ItemWINERROR", ItemKind::kWindowsError, 4},
    {"ItemGuid", ItemKind::kGuid, 16},
    {"ItemListByte", ItemKind::kList, 1},
    {"ItemListShort", ItemKind::kList, 2},
    {"ItemListLong", ItemKind::kList, 4},
};

std::vector<std::string> SplitNames(std::string_view list) {
  std::vector<std::string> names;
  for (bool more = true; more;) {
    const auto comma = list.find(',');
    names.emplace_back(list.substr(0, comma));
    more = comma != std::string_view::npos;
    if (more) list.remove_prefix(comma + 1);
  }
  return names;
}

std::uint64_t Number(std::string_view raw) {
  std::uint64_t number = 0;
  std::memcpy(&number, raw.data(), std::min(raw.size(), sizeof number));
  return number;
}

std::string ListText(const TraceItem& item, std::uint64_t index) {
  return index < item.names.size() ? item.names[index] : std::to_string(index);
}

std::string NumberText(const TraceItem& item, std::uint64_t number) {
  switch (item.kind) {
    case ItemKind::kSigned:
      return std::to_string(SignExtended(number, item.size));
    case ItemKind::kResult:
      return ResultText(static_cast<std::uint32_t>(number));
    case ItemKind::kWindowsError:
      return WindowsErrorText(static_cast<std::uint32_t>(number));
    case ItemKind::kList:
      return ListText(item, number);
    default:
      return std::to_string(number);
  }
}

// Line ends within a text would break the line that it is shown in; those at its end say nothing.
std::string OnOneLine(std::string_view raw) {
  while (raw.ends_with('\n') || raw.ends_with('\r')) raw.remove_suffix(1);
  std::string text;
  for (const char c : raw) {
    if (c == '\n') {
      text += "\\n";
    } else if (c == '\r') {
      text += "\\r";
    } else {
      text += c;
    }
  }
  return text;
}

std::optional<TraceValue> TakeText(std::string_view& bytes) {
  const auto end = bytes.find('\0');
  if (end == std::string_view::npos) return std::nullopt;
  TraceValue value{.text = OnOneLine(bytes.substr(0, end))};
  bytes.remove_prefix(end + 1);
  return value;
}

std::optional<TraceValue> TakeWideText(std::string_view& bytes) {
  std::string narrow;
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    std::uint16_t unit = 0;
    std::memcpy(&unit, bytes.data() + at, sizeof unit);
    if (unit == 0) {
      bytes.remove_prefix(at + 2);
      return TraceValue{.text = OnOneLine(narrow)};
    }
    narrow += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  return std::nullopt;
}

std::string GuidBytesText(std::string_view raw) {
  GUID guid = {};
  std::memcpy(&guid, raw.data(), sizeof guid);
  return GuidText(guid);
}

}  // namespace

std::int64_t SignExtended(std::uint64_t number, std::size_t size) {
  const unsigned unused = 64 - 8 * static_cast<unsigned>(size);
  return static_cast<std::int64_t>(number << unused) >> unused;
}

std::string GuidText(const GUID& guid) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                static_cast<unsigned long>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0],
                guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                guid.Data4[6], guid.Data4[7]);
  return text.data();
}

std::optional<TraceItem> ItemOfType(std::string_view type) {
  const auto open = std::min(type.find('('), type.size());
  const auto* const known = std::ranges::find(kTypes, type.substr(0, open), &ItemType::name);
  if (known == std::end(kTypes)) return std::nullopt;
  TraceItem item{.kind = known->kind, .size = known->size};
  const std::string_view list = type.substr(open);
  if ((item.kind == ItemKind::kList) == list.empty()) return std::nullopt;
  if (list.empty()) return item;
  if (list.size() < 3 || !list.ends_with(')')) return std::nullopt;
  item.names = SplitNames(list.substr(1, list.size() - 2));
  return item;
}

std::optional<TraceValue> TakeValue(const TraceItem& item, std::string_view& bytes) {
  if (item.kind == ItemKind::kText) return TakeText(bytes);
  if (item.kind == ItemKind::kWideText) return TakeWideText(bytes);
  if (bytes.size() < item.size) return std::nullopt;
  const std::string_view raw = bytes.substr(0, item.size);
  bytes.remove_prefix(item.size);
  if (item.kind == ItemKind::kGuid) return TraceValue{.text = GuidBytesText(raw)};
  const std::uint64_t number = Number(raw);
  return TraceValue{.number = number, .text = NumberText(item, number)};
}

}  // namespace bench
