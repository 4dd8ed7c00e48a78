// Ages in whole calendar seconds.

#include "sensor/Calendar.h"

#include <gtest/gtest.h>

namespace stelvane {
namespace {

SYSTEMTIME At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
              int milliseconds = 0) {
  SYSTEMTIME time = {};
  time.wYear = static_cast<WORD>(year);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  time.wMilliseconds = static_cast<WORD>(milliseconds);
  return time;
}

TEST(CalendarSeconds, KnownMoments) {
  EXPECT_EQ(CalendarSeconds(At(1970, 1, 1)), 0);
  EXPECT_EQ(CalendarSeconds(At(1970, 1, 2)), 86400);
  EXPECT_EQ(CalendarSeconds(At(2000, 1, 1)), 946'684'800);
  EXPECT_EQ(CalendarSeconds(At(2000, 2, 29, 23, 59, 59)), 951'868'799);
  EXPECT_EQ(CalendarSeconds(At(2014, 7, 3, 12, 34, 56)), 1'404'390'896);
  EXPECT_EQ(CalendarSeconds(At(2038, 1, 19, 3, 14, 8)), 2'147'483'648);
}

TEST(CalendarSeconds, EveryFourthYearHasALeapDay) {
  EXPECT_EQ(CalendarSeconds(At(2016, 3, 1)) - CalendarSeconds(At(2016, 2, 28)), 2 * 86400);
  EXPECT_EQ(CalendarSeconds(At(2015, 3, 1)) - CalendarSeconds(At(2015, 2, 28)), 86400);
}

TEST(CalendarSeconds, LeapYearsOfTheCenturies) {
  EXPECT_EQ(CalendarSeconds(At(2000, 3, 1)) - CalendarSeconds(At(2000, 2, 28)), 2 * 86400);
  EXPECT_EQ(CalendarSeconds(At(2100, 3, 1)) - CalendarSeconds(At(2100, 2, 28)), 86400);
}

TEST(CalendarSeconds, MillisecondsAndTheDayOfTheWeekDoNotCount) {
  SYSTEMTIME time = At(2014, 7, 3, 12, 34, 56, 999);
  time.wDayOfWeek = 6;
  EXPECT_EQ(CalendarSeconds(time), CalendarSeconds(At(2014, 7, 3, 12, 34, 56)));
}

TEST(CalendarSeconds, MonthsRunOverIntoYears) {
  EXPECT_EQ(CalendarSeconds(At(2013, 13, 1)), CalendarSeconds(At(2014, 1, 1)));
  EXPECT_EQ(CalendarSeconds(At(2013, 26, 5)), CalendarSeconds(At(2015, 2, 5)));
  EXPECT_EQ(CalendarSeconds(At(2014, 0, 1)), CalendarSeconds(At(2013, 12, 1)));
}

TEST(CalendarSeconds, DaysAndTimesRunOver) {
  EXPECT_EQ(CalendarSeconds(At(2014, 6, 31)), CalendarSeconds(At(2014, 7, 1)));
  EXPECT_EQ(CalendarSeconds(At(2014, 7, 0)), CalendarSeconds(At(2014, 6, 30)));
  EXPECT_EQ(CalendarSeconds(At(2014, 7, 3, 24)), CalendarSeconds(At(2014, 7, 4)));
  EXPECT_EQ(CalendarSeconds(At(2014, 7, 3, 0, 0, 75)), CalendarSeconds(At(2014, 7, 3, 0, 1, 15)));
}

TEST(CalendarSeconds, BeforeNineteenSeventyThereIsMinusOne) {
  EXPECT_EQ(CalendarSeconds(At(1969, 12, 31, 23, 59, 59)), -1);
  EXPECT_EQ(CalendarSeconds(SYSTEMTIME{}), -1);
}

TEST(CalendarSeconds, AfterTheYearThreeThousandThereIsMinusOne) {
  EXPECT_GT(CalendarSeconds(At(3000, 12, 31)), 0);
  EXPECT_EQ(CalendarSeconds(At(3001, 1, 1)), -1);
}

TEST(AgeInSeconds, CountsWholeSeconds) {
  EXPECT_EQ(AgeInSeconds(At(2014, 7, 3, 12, 0, 0), At(2014, 7, 3, 12, 0, 5)), 5U);
  EXPECT_EQ(AgeInSeconds(At(2014, 7, 3, 12, 0, 0, 999), At(2014, 7, 3, 12, 0, 1, 0)), 1U);
  EXPECT_EQ(AgeInSeconds(At(2013, 12, 31, 23, 59, 59), At(2014, 1, 1)), 1U);
}

TEST(AgeInSeconds, AStepBackIsAVeryLargeAge) {
  EXPECT_EQ(AgeInSeconds(At(2014, 7, 3, 12, 0, 1), At(2014, 7, 3, 12, 0, 0)), 0xFFFFFFFFU);
  EXPECT_EQ(AgeInSeconds(At(2014, 7, 3, 13, 0, 0), At(2014, 7, 3, 12, 0, 0)), 0xFFFFF1F0U);
}

TEST(AgeInSeconds, TheAgeSinceNeverIsLarge) {
  EXPECT_EQ(AgeInSeconds(SYSTEMTIME{}, At(2014, 7, 3, 12, 34, 56)), 1'404'390'897U);
}

}  // namespace
}  // namespace stelvane
