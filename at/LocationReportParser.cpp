#include "at/LocationReportParser.h"

#include <cstddef>
#include <limits>
#include <new>
#include <optional>
#include <span>

#include "at/FieldSplitter.h"
#include "at/Numbers.h"

namespace stelvane {
namespace {

enum class FieldKind : std::uint8_t { kCoordinate, kNumber, kDate, kTime, kCount };
using enum FieldKind;

/// A field of the report that is kept; `value` is where a coordinate or a number goes.
struct KeptField {
  unsigned number;
  FieldKind kind;
  double FixRecord::*value = nullptr;
};

// The four forms of the report. Fields are numbered from 1 after the form number; a number that a
// table leaves out is a field that must be there and is skipped. The count comes last, with the
// satellite groups behind it.

constexpr KeptField kForm0[] = {
    {1, kCoordinate, &FixRecord::latitude},
    {2, kCoordinate, &FixRecord::longitude},
    {3, kNumber, &FixRecord::errorRadius},
    {4, kDate},
    {5, kTime},
    {8, kNumber, &FixRecord::trueHeading},
    {9, kNumber, &FixRecord::speedKnots},
    {17, kNumber, &FixRecord::pdop},
    {18, kNumber, &FixRecord::hdop},
    {19, kNumber, &FixRecord::vdop},
    {59, kCount},
};

constexpr KeptField kForm1[] = {
    {1, kCoordinate, &FixRecord::latitude},
    {2, kCoordinate, &FixRecord::longitude},
    {3, kNumber, &FixRecord::errorRadius},
    {7, kDate},
    {8, kTime},
    {11, kNumber, &FixRecord::trueHeading},
    {12, kNumber, &FixRecord::speedKnots},
    {20, kNumber, &FixRecord::pdop},
    {21, kNumber, &FixRecord::hdop},
    {22, kNumber, &FixRecord::vdop},
    {62, kCount},
};

constexpr KeptField kForm2[] = {
    {1, kCoordinate, &FixRecord::latitude},
    {2, kCoordinate, &FixRecord::longitude},
    {3, kNumber, &FixRecord::altitudeEllipsoid},
    {4, kNumber, &FixRecord::errorRadius},
    {7, kNumber, &FixRecord::altitudeEllipsoidError},
    {9, kDate},
    {10, kTime},
    {13, kNumber, &FixRecord::trueHeading},
    {14, kNumber, &FixRecord::speedKnots},
    {22, kNumber, &FixRecord::pdop},
    {23, kNumber, &FixRecord::hdop},
    {24, kNumber, &FixRecord::vdop},
    {64, kCount},
};

constexpr KeptField kForm3[] = {
    {1, kCoordinate, &FixRecord::latitude},
    {2, kCoordinate, &FixRecord::longitude},
    {4, kNumber, &FixRecord::errorRadius},
    {8, kDate},
    {9, kTime},
    {12, kNumber, &FixRecord::trueHeading},
    {13, kNumber, &FixRecord::speedKnots},
    {21, kNumber, &FixRecord::pdop},
    {22, kNumber, &FixRecord::hdop},
    {23, kNumber, &FixRecord::vdop},
    {63, kCount},
};

constexpr std::span<const KeptField> kForms[] = {kForm0, kForm1, kForm2, kForm3};

// A satellite group: elevation, azimuth, signal-to-noise ratio, four skipped fields and the
// satellite's number.
constexpr unsigned kSkippedInGroup = 4;
constexpr std::size_t kShortestGroup = 8;  // characters: seven empty fields and a one-digit number

void StoreNumber(std::string_view field, double& value) {
  if (!field.empty()) value = ParseDecimal(field);
}

bool SkipFields(FieldSplitter& fields, unsigned count) {
  for (; count > 0; --count) {
    if (!fields.Next()) return false;
  }
  return true;
}

/// Brings the five arrays to `count` elements; the byte sizes stay 0 until the groups are read.
void AllocateSatellites(FixRecord& fix, std::size_t count) {
  fix.elevation.resize(count);
  fix.azimuth.resize(count);
  fix.snRatios.resize(count);
  fix.satelliteIds.resize(count);
  fix.prns.resize(count);
}

bool ReadSatellite(FieldSplitter& fields, FixRecord& fix, std::size_t i) {
  for (double* value : {&fix.elevation[i], &fix.azimuth[i], &fix.snRatios[i]}) {
    const auto field = fields.Next();
    if (!field) return false;
    StoreNumber(*field, *value);
  }
  if (!SkipFields(fields, kSkippedInGroup)) return false;
  const auto id = fields.Next();
  if (!id) return false;
  fix.satelliteIds[i] = fix.prns[i] = ParseUnsigned(*id);
  return true;
}

/// Reads the groups behind the count, which is already in the record. False when one is cut off.
bool ReadSatellites(FieldSplitter& fields, FixRecord& fix) {
  constexpr auto kMostSatellites =
      std::numeric_limits<std::uint32_t>::max() / std::uint32_t{sizeof(double)};
  // A negative count wraps to a large one.
  const auto count = static_cast<std::uint32_t>(fix.satellitesInView);
  if (count > kMostSatellites) throw std::bad_array_new_length();
  // Memory is only taken for groups that can be there.
  if (count > fields.Remaining() / kShortestGroup) return false;

  AllocateSatellites(fix, count);
  for (std::size_t i = 0; i < count; ++i) {
    if (!ReadSatellite(fields, fix, i)) return false;
  }
  fix.elevationBytes = fix.azimuthBytes = fix.snRatioBytes = count * std::uint32_t{sizeof(double)};
  fix.satelliteIdBytes = fix.prnBytes = count * std::uint32_t{sizeof(std::uint32_t)};
  return true;
}

void StoreTime(std::string_view date, std::string_view time, SYSTEMTIME& fixTime) {
  fixTime.wMilliseconds = 0;
  ReadWords(date, '/', {&fixTime.wYear, &fixTime.wMonth, &fixTime.wDay});
  ReadWords(time, ':', {&fixTime.wHour, &fixTime.wMinute, &fixTime.wSecond});
}

}  // namespace

std::uint8_t ParseLocationReport(std::string_view line, FixRecord& fix) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return kReportWithoutBlank;
  FieldSplitter fields(line.substr(blank), ',');

  const auto formField = fields.Next();
  if (!formField) return kReportTruncated;
  const auto form = static_cast<std::uint32_t>(ParseInteger(*formField));
  if (form >= std::size(kForms)) return kReportOfUnknownForm;

  std::string_view date;
  std::string_view time;
  unsigned read = 0;
  for (const KeptField& kept : kForms[form]) {
    if (!SkipFields(fields, kept.number - read - 1)) return kReportTruncated;
    const auto field = fields.Next();
    if (!field) return kReportTruncated;
    read = kept.number;
    switch (kept.kind) {
      case kCoordinate:
        if (!field->empty()) ParseCoordinate(*field, fix.*kept.value);
        break;
      case kNumber:
        StoreNumber(*field, fix.*kept.value);
        break;
      case kDate:
        date = *field;
        break;
      case kTime:
        time = *field;
        break;
      case kCount:
        fix.satellitesInView = ParseInteger(*field);
        break;
    }
  }
  if (!ReadSatellites(fields, fix)) return kReportTruncated;

  StoreTime(date, time, fix.fixTime);
  fix.fixQuality = 1;
  fix.fixType = 1;
  return kReportParsed;
}

bool ParseCoordinate(std::string_view text, double& value) {
  std::size_t used = 0;
  value = ParseDecimal(text, &used);
  text.remove_prefix(used);
  const std::size_t letterAt = text.find_first_not_of(' ');
  if (letterAt == std::string_view::npos) return false;
  const char letter = text[letterAt];
  if (letter == 'S' || letter == 'W') value = -value;
  return letter == 'N' || letter == 'E' || letter == 'S' || letter == 'W';
}

}  // namespace stelvane
