// One report against the fix that it was made of, field by field.
#include <chrono>
#include <cstdio>

#include "workbench/record/Delivery.h"

namespace bench {

namespace {

/// What the driver shows as an absent value, where a field can be absent at all.
constexpr double kAbsent = -1.0;

std::string Text(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}
std::string Text(LONG value) {
  return std::to_string(value);
}
std::string Text(std::uint32_t value) {
  return std::to_string(value);
}
std::string Text(const std::string& value) {
  return std::to_string(value.size()) + " characters";
}

class Comparison {
 public:
  template <typename Value>
  void Same(const char* name, const Value& sent, const std::optional<Value>& reported) {
    if (reported == sent) return;
    Add(name, Text(sent), reported ? Text(*reported) : "nothing");
  }

  /// A field that a report may leave open.
  void Optional(const char* name, std::optional<double> sent, std::optional<double> reported) {
    if (sent == kAbsent) sent.reset();
    if (sent == reported) return;
    Add(name, sent ? Text(*sent) : "nothing", reported ? Text(*reported) : "nothing");
  }

  template <typename Value>
  void List(const char* name, const std::vector<Value>& sent, const std::vector<Value>& reported) {
    if (sent == reported) return;
    if (sent.size() != reported.size()) {
      return Add(name, std::to_string(sent.size()) + " values",
                 std::to_string(reported.size()) + " values");
    }
    std::size_t i = 0;
    while (sent[i] == reported[i]) ++i;
    Add(name, Text(sent[i]), Text(reported[i]));
  }

  void Add(const char* name, const std::string& sent, const std::string& reported) {
    lines_.push_back(std::string(name) + ": sent " + sent + ", reported " + reported);
  }

  std::vector<std::string> Lines() && { return std::move(lines_); }

 private:
  std::vector<std::string> lines_;
};

void CompareTime(Comparison& comparison, Utc sent, const std::optional<FILETIME>& reported) {
  // A FILETIME counts from 1601, in units of 100 ns.
  constexpr std::chrono::sys_days kEpoch = std::chrono::year{1601} / 1 / 1;
  const std::int64_t expected = (sent - kEpoch) / std::chrono::milliseconds(1) * 10'000;
  if (!reported) return comparison.Add("timestamp", std::to_string(expected), "nothing");
  const auto found = static_cast<std::int64_t>((std::uint64_t{reported->dwHighDateTime} << 32) |
                                               reported->dwLowDateTime);
  if (found != expected) {
    comparison.Add("timestamp", std::to_string(expected), std::to_string(found));
  }
}

void CompareSatellites(Comparison& comparison, const std::vector<Satellite>& sent,
                       const Report& report) {
  std::vector<double> azimuth;
  std::vector<double> elevation;
  std::vector<double> snRatio;
  std::vector<std::uint32_t> numbers;
  for (const Satellite& satellite : sent) {
    azimuth.push_back(satellite.azimuth.value_or(0));
    elevation.push_back(satellite.elevation.value_or(0));
    snRatio.push_back(satellite.snr.value_or(0));
    numbers.push_back(static_cast<std::uint32_t>(satellite.number));
  }
  comparison.Same("satellites in view", static_cast<LONG>(sent.size()), report.satellitesInView);
  comparison.List("azimuth", azimuth, report.azimuth);
  comparison.List("elevation", elevation, report.elevation);
  comparison.List("signal-to-noise ratio", snRatio, report.snRatio);
  comparison.List("satellite ids", numbers, report.satelliteIds);
  comparison.List("satellite PRNs", numbers, report.prns);
}

}  // namespace

std::vector<std::string> Differences(const GnssFix& sent, const Report& report) {
  Comparison comparison;
  comparison.Same("latitude", sent.latitude, report.latitude);
  comparison.Same("longitude", sent.longitude, report.longitude);
  comparison.Same("error radius", sent.errorRadius.value_or(0), report.errorRadius);
  CompareTime(comparison, sent.time, report.timestamp);
  comparison.Optional("altitude", sent.altitudeEllipsoid, report.altitudeEllipsoid);
  comparison.Optional("altitude error", sent.altitudeEllipsoidError, report.altitudeEllipsoidError);
  comparison.Optional("speed", sent.speedKnots, report.speedKnots);
  comparison.Optional("heading", sent.trueHeading, report.trueHeading);
  comparison.Same("hdop", sent.hdop.value_or(0), report.hdop);
  comparison.Same("pdop", sent.pdop.value_or(0), report.pdop);
  comparison.Optional("vdop", sent.vdop, report.vdop);
  CompareSatellites(comparison, sent.satellites, report);

  std::string sentences;
  for (const std::string& sentence : sent.sentences) sentences.append(sentence).append("\n");
  comparison.Same("NMEA text", sentences, report.nmeaSentence);

  // What no report of the modem's tells: the driver's own constants.
  comparison.Same<LONG>("fix quality", 1, report.fixQuality);
  comparison.Same<LONG>("fix type", 1, report.fixType);
  comparison.Same<LONG>("operation mode", 1, report.operationMode);
  comparison.Same<LONG>("selection mode", 0, report.selectionMode);
  comparison.Same<LONG>("GPS status", 2, report.gpsStatus);
  return std::move(comparison).Lines();
}

}  // namespace bench
