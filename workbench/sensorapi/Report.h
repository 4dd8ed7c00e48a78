// One location data report as a client sees it.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/SensorKeys.h"
#include "workbench/clock/Clock.h"
#include "workbench/sensorapi/PortableDeviceValues.h"

namespace bench {

inline constexpr std::size_t kReportFieldCount = 23;

/// The 23 data fields with the types that a location sensor has to give them. A field that the
/// report lacks, or that it holds as VT_EMPTY, has no value; `TypeOf` tells the two apart.
struct Report {
  Millis time = 0;  // when it arrived

  std::optional<double> latitude;                // degrees, north positive
  std::optional<double> longitude;               // degrees, east positive
  std::optional<double> errorRadius;             // metres
  std::optional<FILETIME> timestamp;             // UTC
  std::optional<double> altitudeEllipsoidError;  // metres
  std::optional<double> altitudeEllipsoid;       // metres
  std::optional<LONG> fixQuality;
  std::optional<LONG> fixType;
  std::optional<LONG> operationMode;
  std::optional<LONG> selectionMode;
  std::optional<LONG> gpsStatus;
  std::optional<double> hdop;
  std::optional<std::string> nmeaSentence;
  std::optional<double> pdop;
  std::optional<LONG> satellitesInView;
  std::vector<double> azimuth;    // degrees
  std::vector<double> elevation;  // degrees
  std::vector<std::uint32_t> satelliteIds;
  std::vector<std::uint32_t> prns;
  std::vector<double> snRatio;
  std::optional<double> speedKnots;
  std::optional<double> trueHeading;  // degrees
  std::optional<double> vdop;

  std::optional<GUID> eventId;

  /// Departures from the prescribed types and sizes, one line each.
  std::vector<std::string> faults;
  /// The variant type of each field in the order of `ReportFields`; VT_ILLEGAL where it is missing.
  std::array<VARTYPE, kReportFieldCount> types{};

  /// The variant type of a field; nothing when the report lacks it.
  std::optional<VARTYPE> TypeOf(const PROPERTYKEY& key) const;
  /// The names of the fields that the report lacks.
  std::vector<std::string> MissingFields() const;
};

/// Reads a report out of the values of an event or a data read.
Report DecodeReport(Millis time, const KeyValues& values);

/// One data field: its key, its place in a report, and whether VT_EMPTY may stand for its value.
struct ReportField {
  using Place =
      std::variant<std::optional<double> Report::*, std::optional<LONG> Report::*,
                   std::optional<FILETIME> Report::*, std::optional<std::string> Report::*,
                   std::vector<double> Report::*, std::vector<std::uint32_t> Report::*>;

  PROPERTYKEY key;
  const char* name;
  Place place;
  bool mayBeAbsent = false;

  /// The variant type that the field has to have when it is not empty.
  VARTYPE Type() const;
};

std::span<const ReportField, kReportFieldCount> ReportFields();
/// The keys of all data fields, to ask for.
std::vector<PROPERTYKEY> ReportKeys();

struct UtcTime {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  unsigned millisecond = 0;

  bool operator==(const UtcTime&) const = default;
};

UtcTime ToUtc(FILETIME time);
FILETIME ToFileTime(const UtcTime& time);
/// "2014-07-03 12:34:56.000".
std::string UtcText(FILETIME time);

/// One line for people: time, position, altitude, speed, heading, satellites, error radius.
std::string ReportText(const Report& report);

}  // namespace bench
