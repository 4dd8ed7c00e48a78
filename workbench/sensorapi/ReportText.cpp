// Times and reports as people read them.
#include <chrono>
#include <cmath>
#include <cstdio>

#include "workbench/sensorapi/Report.h"

namespace bench {
namespace {

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;  // 100 ns

constexpr std::chrono::sys_days kFileTimeEpoch = std::chrono::year{1601} / std::chrono::January / 1;

template <class... Arguments>
std::string Format(const char* pattern, Arguments... arguments) {
  char text[96];
  std::snprintf(text, sizeof text, pattern, arguments...);
  return text;
}

std::string Coordinate(const std::optional<double>& degrees, char positive, char negative) {
  if (!degrees) return "-";
  return Format("%.6f %c", std::fabs(*degrees), std::signbit(*degrees) ? negative : positive);
}

std::string Measure(const char* pattern, const std::optional<double>& value) {
  return value ? "  " + Format(pattern, *value) : std::string();
}

}  // namespace

UtcTime ToUtc(FILETIME time) {
  const Ticks sinceEpoch(static_cast<std::int64_t>(
      (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime));
  const auto days = std::chrono::floor<std::chrono::days>(sinceEpoch);
  const std::chrono::year_month_day date(kFileTimeEpoch + days);
  const std::chrono::hh_mm_ss clock(
      std::chrono::floor<std::chrono::milliseconds>(sinceEpoch - days));
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<unsigned>(date.month()),
          .day = static_cast<unsigned>(date.day()),
          .hour = static_cast<unsigned>(clock.hours().count()),
          .minute = static_cast<unsigned>(clock.minutes().count()),
          .second = static_cast<unsigned>(clock.seconds().count()),
          .millisecond = static_cast<unsigned>(clock.subseconds().count())};
}

FILETIME ToFileTime(const UtcTime& time) {
  using namespace std::chrono;
  const sys_days date = year{time.year} / month{time.month} / day{time.day};
  const Ticks ticks = (date - kFileTimeEpoch) + hours{time.hour} + minutes{time.minute} +
                      seconds{time.second} + milliseconds{time.millisecond};
  const auto count = static_cast<std::uint64_t>(ticks.count());
  return {.dwLowDateTime = static_cast<DWORD>(count & 0xFFFFFFFF),
          .dwHighDateTime = static_cast<DWORD>(count >> 32)};
}

std::string UtcText(FILETIME time) {
  const UtcTime utc = ToUtc(time);
  return Format("%04d-%02u-%02u %02u:%02u:%02u.%03u", utc.year, utc.month, utc.day, utc.hour,
                utc.minute, utc.second, utc.millisecond);
}

std::string ReportText(const Report& report) {
  std::string line = report.timestamp ? UtcText(*report.timestamp) + "Z" : "no time";
  line += "  " + Coordinate(report.latitude, 'N', 'S');
  line += "  " + Coordinate(report.longitude, 'E', 'W');
  line += Measure("+-%.1f m", report.errorRadius);
  line += Measure("alt %.1f m", report.altitudeEllipsoid);
  line += Measure("%.1f kn", report.speedKnots);
  line += Measure("heading %.1f", report.trueHeading);
  if (report.satellitesInView) {
    line += "  " + std::to_string(*report.satellitesInView) + " satellites";
  }
  return line;
}

}  // namespace bench
