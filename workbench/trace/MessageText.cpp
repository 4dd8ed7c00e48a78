#include "workbench/trace/MessageText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <regex>

namespace bench {

namespace {

constexpr std::string_view kFunctionFirst = "%!FUNC! ";

std::string Hex(const std::vector<BYTE>& bytes) {
  std::string text;
  for (const BYTE byte : bytes) {
    std::array<char, 4> digits{};
    std::snprintf(digits.data(), digits.size(), " %02x", static_cast<unsigned>(byte));
    text += digits.data();
  }
  return text;
}

MessageText Undecoded(const TraceRecord& record, const std::string& why) {
  return {.level = {},
          .place = GuidText(record.message) + " " + std::to_string(record.number),
          .text = why + ";" + (record.arguments.empty() ? " no bytes" : Hex(record.arguments)),
          .decoded = false};
}

/// A printf conversion without its percent sign: "d", "08x", "I64u", ".4s".
std::optional<std::string> Converted(const std::string& conversion, std::size_t size,
                                     const TraceValue& value) {
  static const std::regex kForm(R"(([-+ #0]*\d{0,3}(?:\.\d{0,3})?)(?:I64|ll|l|h)?([diuxXocsp]))");
  std::smatch found;
  if (!std::regex_match(conversion, found, kForm)) return std::nullopt;
  const char kind = found[2].str().front();
  const bool isText = kind == 's';
  if (!isText && !value.number) return std::nullopt;
  std::array<char, 32> number{};
  if (kind == 'c') return std::string(1, static_cast<char>(*value.number));
  if (kind == 'p') {
    std::snprintf(number.data(), number.size(), "0x%016llx",
                  static_cast<unsigned long long>(*value.number));
    return number.data();
  }
  const std::string form = "%" + found[1].str() + (isText ? "s" : std::string("ll") + kind);
  const auto print = [&form](auto argument) {
    const int length = std::snprintf(nullptr, 0, form.c_str(), argument);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::snprintf(text.data(), text.size() + 1, form.c_str(), argument);
    return text;
  };
  if (isText) return print(value.text.c_str());
  return kind == 'd' || kind == 'i' ? print(SignExtended(*value.number, size))
                                    : print(*value.number);
}

/// What stands for "%!NAME!".
std::optional<std::string> Named(const TraceFormat& format, const std::string& name) {
  if (name == "FUNC") return format.function;
  if (name == "LEVEL") return format.level;
  if (name == "FLAGS") return format.flag;
  if (name == "FILE") return format.source;
  return std::nullopt;
}

std::optional<std::string> Inserted(const TraceFormat& format, int insert,
                                    const std::string& conversion,
                                    const std::vector<TraceValue>& values) {
  const auto item = std::ranges::find(format.items, insert, &TraceItem::insert);
  if (item == format.items.end()) return std::nullopt;
  const auto index = static_cast<std::size_t>(item - format.items.begin());
  return index < values.size() ? Converted(conversion, item->size, values[index]) : std::nullopt;
}

}  // namespace

std::string FillText(const TraceFormat& format, const std::vector<TraceValue>& values,
                     bool& whole) {
  static const std::regex kPlace(R"(%(?:(%|n|t)|!(\w+)!|(\d{1,4})!([^!]*)!))");
  std::string filled;
  auto from = format.text.cbegin();
  for (std::sregex_iterator place(format.text.begin(), format.text.end(), kPlace), end;
       place != end; ++place) {
    const std::smatch& found = *place;
    filled.append(from, found[0].first);
    from = found[0].second;
    std::optional<std::string> text;
    if (found[1].matched) {
      text = found[1].str() == "%" ? "%" : " ";  // line breaks and tabs would break the line
    } else if (found[2].matched) {
      text = Named(format, found[2]);
    } else {
      text = Inserted(format, std::stoi(found[3]), found[4], values);
    }
    whole = whole && text.has_value();
    filled += text.value_or(found[0].str());
  }
  return filled.append(from, format.text.cend());
}

MessageText DecodeMessage(const TraceFormats& formats, const TraceRecord& record) {
  const TraceFormat* const format = formats.Find(record.message, record.number);
  if (format == nullptr) return Undecoded(record, "no format file has this message");
  std::string_view bytes(reinterpret_cast<const char*>(record.arguments.data()),
                         record.arguments.size());
  std::vector<TraceValue> values;
  for (const TraceItem& item : format->items) {
    auto value = TakeValue(item, bytes);
    if (!value) return Undecoded(record, "shorter than its format says");
    values.push_back(std::move(*value));
  }
  if (!bytes.empty()) return Undecoded(record, "longer than its format says");
  MessageText message{.level = format->level,
                      .place = format->source + " " + format->function,
                      .text = {},
                      .decoded = true};
  message.text = FillText(*format, values, message.decoded);
  // The place names the function already.
  if (format->text.starts_with(kFunctionFirst)) {
    message.text.erase(0, format->function.size() + 1);
  }
  return message;
}

std::string MessageLine(const MessageText& message) {
  std::string line = message.level.empty() ? "?" : message.level;
  line.resize(std::max<std::size_t>(line.size(), 11), ' ');
  return line + "  " + message.place + ": " + message.text;
}

}  // namespace bench
