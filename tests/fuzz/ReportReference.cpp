#include "tests/fuzz/ReportReference.h"

#include <string_view>
#include <vector>

#include "tests/fuzz/NumberReference.h"

namespace reference {

namespace {

constexpr int kParsed = 0;
constexpr int kNoBlank = 1;
constexpr int kTruncated = 2;
constexpr int kUnknownForm = 4;
constexpr std::size_t kGroupFields = 8;

using Fields = std::vector<std::string_view>;

/// Adjacent commas have an empty field between them, a comma at the end none behind it.
Fields Split(std::string_view text) {
  Fields fields;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != ',') continue;
    fields.push_back(text.substr(start, i - start));
    start = i + 1;
  }
  if (start < text.size()) fields.push_back(text.substr(start));
  return fields;
}

/// What stands in which field, for one form. The later ones keep their distance from the date.
struct Form {
  std::size_t errorRadius;
  std::size_t date;
  std::size_t altitude = 0;  // 0: the form has none
  std::size_t altitudeError = 0;
};
constexpr Form kForms[] = {
    {.errorRadius = 3, .date = 4},
    {.errorRadius = 3, .date = 7},
    {.errorRadius = 4, .date = 9, .altitude = 3, .altitudeError = 7},
    {.errorRadius = 4, .date = 8},
};
constexpr std::size_t kTimeBehindDate = 1;
constexpr std::size_t kHeadingBehindDate = 4;
constexpr std::size_t kSpeedBehindDate = 5;
constexpr std::size_t kPdopBehindDate = 13;
constexpr std::size_t kHdopBehindDate = 14;
constexpr std::size_t kVdopBehindDate = 15;
constexpr std::size_t kCountBehindDate = 15 + 7 + 32 + 1;

void Take(std::string_view field, double& value) {
  if (!field.empty()) value = ReadDecimal(field).value;
}

void TakeSatellite(const std::string_view* group, stelvane::FixRecord& fix) {
  double elevation = 0.0;
  double azimuth = 0.0;
  double snRatio = 0.0;
  Take(group[0], elevation);
  Take(group[1], azimuth);
  Take(group[2], snRatio);
  fix.elevation.push_back(elevation);
  fix.azimuth.push_back(azimuth);
  fix.snRatios.push_back(snRatio);
  fix.satelliteIds.push_back(ReadUnsigned(group[7]));
  fix.prns.push_back(ReadUnsigned(group[7]));
}

void TakePosition(const Fields& fields, const Form& form, stelvane::FixRecord& fix) {
  if (!fields[1].empty()) fix.latitude = ReadCoordinate(fields[1]).degrees;
  if (!fields[2].empty()) fix.longitude = ReadCoordinate(fields[2]).degrees;
  Take(fields[form.errorRadius], fix.errorRadius);
  if (form.altitude != 0) {
    Take(fields[form.altitude], fix.altitudeEllipsoid);
    Take(fields[form.altitudeError], fix.altitudeEllipsoidError);
  }
  Take(fields[form.date + kHeadingBehindDate], fix.trueHeading);
  Take(fields[form.date + kSpeedBehindDate], fix.speedKnots);
  Take(fields[form.date + kPdopBehindDate], fix.pdop);
  Take(fields[form.date + kHdopBehindDate], fix.hdop);
  Take(fields[form.date + kVdopBehindDate], fix.vdop);
}

void TakeTime(std::string_view date, std::string_view time, SYSTEMTIME& fixTime) {
  std::uint16_t words[3] = {};
  ReadThreeWords(date, '/', words);
  fixTime.wYear = words[0];
  fixTime.wMonth = words[1];
  fixTime.wDay = words[2];
  std::uint16_t clock[3] = {};
  ReadThreeWords(time, ':', clock);
  fixTime.wHour = clock[0];
  fixTime.wMinute = clock[1];
  fixTime.wSecond = clock[2];
}

}  // namespace

Coordinate ReadCoordinate(std::string_view text) {
  const Decimal number = ReadDecimal(text);
  std::size_t at = number.used;
  while (at < text.size() && text[at] == ' ') ++at;
  const char letter = at < text.size() ? text[at] : '?';
  if (letter == 'N' || letter == 'E') return {number.value, true};
  if (letter == 'S' || letter == 'W') return {-number.value, true};
  return {number.value, false};
}

int ReadReport(std::string_view line, stelvane::FixRecord& fix) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return kNoBlank;
  const Fields fields = Split(line.substr(blank));
  const std::int32_t number = ReadInteger(fields.at(0));
  if (number < 0 || number > 3) return kUnknownForm;
  const Form& form = kForms[number];
  const std::size_t countField = form.date + kCountBehindDate;
  if (fields.size() <= countField) return kTruncated;

  TakePosition(fields, form, fix);
  fix.satellitesInView = ReadInteger(fields[countField]);
  // The size in bytes of an array of doubles must fit 32 bits.
  const std::int64_t count = fix.satellitesInView;
  if (count < 0 || count * 8 > 0xFFFFFFFF) return kMemoryException;
  const auto groups = static_cast<std::size_t>(count);
  if (fields.size() - countField - 1 < groups * kGroupFields) return kTruncated;
  for (std::size_t i = 0; i < groups; ++i) {
    TakeSatellite(&fields[countField + 1 + i * kGroupFields], fix);
  }
  fix.elevationBytes = fix.azimuthBytes = fix.snRatioBytes = static_cast<std::uint32_t>(8 * groups);
  fix.satelliteIdBytes = fix.prnBytes = static_cast<std::uint32_t>(4 * groups);
  TakeTime(fields[form.date], fields[form.date + kTimeBehindDate], fix.fixTime);
  fix.fixQuality = 1;
  fix.fixType = 1;
  return kParsed;
}

}  // namespace reference
