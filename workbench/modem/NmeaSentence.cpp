#include "workbench/modem/NmeaSentence.h"

#include <algorithm>
#include <cmath>

#include "workbench/modem/TextNumber.h"

namespace bench {

namespace {

constexpr std::size_t kAddressLength = 5;
constexpr double kMinutesPerDegree = 60;

bool IsPlainAddress(std::string_view address) {
  return address.size() == kAddressLength && address.front() != 'P';
}

std::optional<unsigned> HexByte(std::string_view digits) {
  unsigned value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  if (digits.size() != 2 || error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

// Two digits at `at`, of at most `limit`.
std::optional<int> TwoDigits(std::string_view text, std::size_t at, int limit) {
  const auto value = ToNumber<int>(text.substr(at, 2));
  return value && *value >= 0 && *value <= limit ? value : std::nullopt;
}

std::vector<std::string_view> Split(std::string_view body) {
  std::vector<std::string_view> fields;
  for (;;) {
    const auto comma = body.find(',');
    fields.push_back(body.substr(0, comma));
    if (comma == std::string_view::npos) return fields;
    body.remove_prefix(comma + 1);
  }
}

}  // namespace

std::string_view NmeaSentence::Talker() const {
  return IsPlainAddress(fields.front()) ? fields.front().substr(0, 2) : std::string_view();
}

std::string_view NmeaSentence::Type() const {
  return IsPlainAddress(fields.front()) ? fields.front().substr(2) : std::string_view();
}

std::string_view NmeaSentence::Field(std::size_t index) const {
  return index < fields.size() ? fields[index] : std::string_view();
}

std::optional<double> NmeaSentence::Number(std::size_t index) const {
  const auto number = ToNumber<double>(Field(index));
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<int> NmeaSentence::Integer(std::size_t index) const {
  return ToNumber<int>(Field(index));
}

std::optional<Millis> NmeaSentence::TimeOfDay(std::size_t index) const {
  const std::string_view digits = Field(index);
  if (digits.size() < 6) return std::nullopt;
  const auto hours = TwoDigits(digits, 0, 23);
  const auto minutes = TwoDigits(digits, 2, 59);
  const auto wholeSeconds = TwoDigits(digits, 4, 60);
  const auto seconds = ToNumber<double>(digits.substr(4));
  if (!hours || !minutes || !wholeSeconds || !seconds || *seconds >= 61) return std::nullopt;
  return (*hours * 60 + *minutes) * Millis{60'000} + std::llround(*seconds * 1000);
}

std::optional<std::chrono::sys_days> NmeaSentence::Date(std::size_t index) const {
  const std::string_view digits = Field(index);
  if (digits.size() != 6) return std::nullopt;
  const auto day = TwoDigits(digits, 0, 31);
  const auto month = TwoDigits(digits, 2, 12);
  const auto year = TwoDigits(digits, 4, 99);
  if (!day || !month || !year) return std::nullopt;
  const std::chrono::year_month_day date(
      std::chrono::year(*year < 80 ? 2000 + *year : 1900 + *year),
      std::chrono::month(static_cast<unsigned>(*month)),
      std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date);
}

std::optional<double> NmeaSentence::Coordinate(std::size_t index, double limit) const {
  const auto number = Number(index);
  const std::string_view hemisphere = Field(index + 1);
  if (!number || *number < 0 || hemisphere.size() != 1) return std::nullopt;
  const double degrees = std::floor(*number / 100);
  const double minutes = *number - degrees * 100;
  const double value = degrees + minutes / kMinutesPerDegree;
  if (minutes >= kMinutesPerDegree || value > limit) return std::nullopt;
  switch (hemisphere.front()) {
    case 'N':
    case 'E':
      return value;
    case 'S':
    case 'W':
      return -value;
    default:
      return std::nullopt;
  }
}

LineKind ReadNmeaLine(std::string_view line, NmeaSentence& sentence) {
  const auto start = line.rfind('$');
  if (start == std::string_view::npos) return LineKind::kGarbage;
  line.remove_prefix(start);
  line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
  const auto star = line.rfind('*');
  if (star == std::string_view::npos) return LineKind::kBadChecksum;
  const std::string_view body = line.substr(1, star - 1);
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  if (HexByte(line.substr(star + 1)) != sum) return LineKind::kBadChecksum;
  sentence.text = line;
  sentence.fields = Split(body);
  return LineKind::kSentence;
}

}  // namespace bench
