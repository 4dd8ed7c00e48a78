#include "sensor/Calendar.h"

namespace stelvane {

namespace {

constexpr std::int64_t kFirstYear = 1970;
constexpr std::int64_t kLastYear = 3000;
constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t LeapDaysBefore(std::int64_t year) {
  const std::int64_t past = year - 1;
  return past / 4 - past / 100 + past / 400;
}

bool IsLeapYear(std::int64_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Days from the first of January 1970 to the first day of a month (0 to 11).
std::int64_t DaysToMonth(std::int64_t year, std::int64_t month) {
  constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const std::int64_t leapDay = month >= 2 && IsLeapYear(year) ? 1 : 0;
  return (year - kFirstYear) * 365 + LeapDaysBefore(year) - LeapDaysBefore(kFirstYear) +
         kDaysBefore[month] + leapDay;
}

}  // namespace

std::int64_t CalendarSeconds(const SYSTEMTIME& time) {
  const std::int64_t months = std::int64_t{time.wYear} * 12 + time.wMonth - 1;
  if (months < 0) return -1;
  const std::int64_t year = months / 12;
  if (year < kFirstYear || year > kLastYear) return -1;
  const std::int64_t days = DaysToMonth(year, months % 12) + time.wDay - 1;
  const int timeOfDay = time.wHour * 3600 + time.wMinute * 60 + time.wSecond;
  return days * kSecondsPerDay + timeOfDay;
}

std::uint32_t AgeInSeconds(const SYSTEMTIME& from, const SYSTEMTIME& to) {
  return static_cast<std::uint32_t>(CalendarSeconds(to) - CalendarSeconds(from));
}

}  // namespace stelvane
