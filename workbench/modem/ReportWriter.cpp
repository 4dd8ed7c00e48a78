#include "workbench/modem/ReportWriter.h"

#include <array>
#include <cmath>
#include <string_view>

#include "workbench/modem/TextNumber.h"

namespace bench {

namespace {

constexpr int kCoordinateDecimals = 7;
constexpr int kValueDecimals = 2;

// The fields of each form after its number, a letter each: N, E coordinates; A, a altitude and its
// error; R error radius; D, T date and time; H, S heading and speed; p, h, v dilutions; a dot is a
// field that nobody reads.
constexpr std::array<std::string_view, kReportForms> kLayouts = {
    "NERDT..HS.......phv",
    "NER...DT..HS.......phv",
    "NEAR..a.DT..HS.......phv",
    "NE.R...DT..HS.......phv",
};
constexpr int kUnreadBeforeCount = 7 + 32;
constexpr std::array<std::string_view, 7> kUnread = {"", "0", "12.5", "", "68", "1", "-0.4"};

std::string Coordinate(double degrees, char positive, char negative, bool blank) {
  std::string text = Fixed(std::abs(degrees), kCoordinateDecimals);
  if (blank) text += ' ';
  return text += std::signbit(degrees) ? negative : positive;
}

std::string Value(const std::optional<double>& value) {
  return value ? Fixed(*value, kValueDecimals) : std::string();
}

std::string Date(Utc time) {
  const std::chrono::year_month_day date(std::chrono::floor<std::chrono::days>(time));
  std::string text = std::to_string(static_cast<int>(date.year()));
  for (const unsigned part :
       {static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day())}) {
    text.append("/").append(std::to_string(part));
  }
  return text;
}

std::string TimeOfDay(Utc time) {
  const std::chrono::hh_mm_ss day(time - std::chrono::floor<std::chrono::days>(time));
  std::string text;
  for (const long long part :
       {static_cast<long long>(day.hours().count()), static_cast<long long>(day.minutes().count()),
        static_cast<long long>(day.seconds().count())}) {
    if (!text.empty()) text += ':';
    if (part < 10) text += '0';
    text += std::to_string(part);
  }
  return text;
}

void Round(std::optional<double>& value) {
  if (value) value = Rounded(*value, kValueDecimals);
}

std::string FieldText(char field, const GnssFix& fix, bool blank, std::size_t index) {
  switch (field) {
    case 'N':
      return Coordinate(fix.latitude, 'N', 'S', blank);
    case 'E':
      return Coordinate(fix.longitude, 'E', 'W', blank);
    case 'A':
      return Value(fix.altitudeEllipsoid);
    case 'a':
      return Value(fix.altitudeEllipsoidError);
    case 'R':
      return Value(fix.errorRadius);
    case 'D':
      return Date(fix.time);
    case 'T':
      return TimeOfDay(fix.time);
    case 'H':
      return Value(fix.trueHeading);
    case 'S':
      return Value(fix.speedKnots);
    case 'p':
      return Value(fix.pdop);
    case 'h':
      return Value(fix.hdop);
    case 'v':
      return Value(fix.vdop);
    default:
      return std::string(kUnread[index % kUnread.size()]);
  }
}

}  // namespace

GnssFix AsReported(const GnssFix& fix, int form) {
  GnssFix reported = fix;
  reported.time = std::chrono::floor<std::chrono::seconds>(fix.time);
  reported.latitude = Rounded(fix.latitude, kCoordinateDecimals);
  reported.longitude = Rounded(fix.longitude, kCoordinateDecimals);
  const std::string_view layout = kLayouts.at(static_cast<std::size_t>(form));
  if (layout.find('A') == std::string_view::npos) reported.altitudeEllipsoid.reset();
  if (layout.find('a') == std::string_view::npos) reported.altitudeEllipsoidError.reset();
  for (auto* value : {&reported.errorRadius, &reported.altitudeEllipsoid,
                      &reported.altitudeEllipsoidError, &reported.speedKnots, &reported.trueHeading,
                      &reported.pdop, &reported.hdop, &reported.vdop}) {
    Round(*value);
  }
  for (Satellite& satellite : reported.satellites) {
    for (auto* value : {&satellite.elevation, &satellite.azimuth, &satellite.snr}) Round(*value);
  }
  return reported;
}

std::string WriteReport(const GnssFix& fix, int form, bool blankBeforeHemisphere) {
  std::string line = "+XLCSLSR: " + std::to_string(form);
  std::size_t unread = 0;
  const auto add = [&line](const std::string& text) { (line += ',') += text; };
  for (const char field : kLayouts.at(static_cast<std::size_t>(form))) {
    if (field == '.') ++unread;
    add(FieldText(field, fix, blankBeforeHemisphere, unread));
  }
  for (int i = 0; i < kUnreadBeforeCount; ++i) add(FieldText('.', fix, false, ++unread));
  add(std::to_string(fix.satellites.size()));
  for (const Satellite& satellite : fix.satellites) {
    add(Value(satellite.elevation));
    add(Value(satellite.azimuth));
    add(Value(satellite.snr));
    for (int i = 0; i < 4; ++i) add(FieldText('.', fix, false, ++unread));
    add(std::to_string(satellite.number));
  }
  return line;
}

}  // namespace bench
