#include "at/LocationReportParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ReportText.h"

namespace {

// The program's allocations, counted so that a test can see them and make one fail.
std::size_t allocations = 0;
std::size_t live = 0;
std::size_t failAt = 0;  // the allocation, counted from 1, that fails; 0 for none

}  // namespace

void* operator new(std::size_t size) {
  if (++allocations == failAt) throw std::bad_alloc();
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++live;
  return block;
}

void operator delete(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}

namespace stelvane {
namespace {

const FormFields& kForm = kFormFields[0];

std::string LineWithCount(const std::string& count, unsigned groups = 1) {
  ReportFields fields = EmptyReport(kForm, groups);
  fields[kForm.count] = count;
  fields.back() = "1";
  return Line(fields);
}

FixRecord Parsed(const ReportFields& fields) {
  FixRecord fix;
  EXPECT_EQ(ParseLocationReport(Line(fields), fix), kReportParsed) << Line(fields);
  return fix;
}

TEST(LocationReportParser, LineWithoutBlankLeavesTheRecordUntouched) {
  FixRecord fix;
  EXPECT_EQ(ParseLocationReport("+XLCSLSR:0,1,2,3,4", fix), kReportWithoutBlank);
  EXPECT_EQ(ParseLocationReport("", fix), kReportWithoutBlank);
  EXPECT_EQ(fix.latitude, 0.0);
  EXPECT_EQ(fix.fixQuality, 0u);
}

TEST(LocationReportParser, SplittingStartsAtTheFirstBlankOfTheLine) {
  std::string line = Line(NumberedReport(kForm));
  line.insert(0, "7,8,9");
  FixRecord fix;
  EXPECT_EQ(ParseLocationReport(line, fix), kReportParsed);
  EXPECT_EQ(fix.latitude, 1.0);
  line.insert(0, "7, 8,9");
  EXPECT_EQ(ParseLocationReport(line, fix), kReportOfUnknownForm);
}

TEST(LocationReportParser, BlanksBeforeTheFormNumberDoNoHarm) {
  ReportFields fields = NumberedReport(kForm);
  fields[0] = "   0";
  EXPECT_EQ(Parsed(fields).errorRadius, 3.0);
}

TEST(LocationReportParser, UnknownFormEndsTheReadingAtOnce) {
  for (const std::string form : {"4", "5", "-1", "256", "4294967296"}) {
    ReportFields fields = NumberedReport(kForm);
    fields[0] = form;
    FixRecord fix;
    EXPECT_EQ(ParseLocationReport(Line(fields), fix), kReportOfUnknownForm) << form;
    EXPECT_EQ(ParseLocationReport(Line(fields, 1), fix), kReportOfUnknownForm) << form;
    EXPECT_EQ(fix.latitude, 0.0);
  }
}

TEST(LocationReportParser, NumbersStopAtTheFirstMisfit) {
  ReportFields fields = EmptyReport(kForm, 0);
  fields[kForm.errorRadius] = "-12.5e1m";
  fields[kForm.trueHeading] = "x";
  fields[kForm.speedKnots] = " 3.5 ";
  const FixRecord fix = Parsed(fields);
  EXPECT_EQ(fix.errorRadius, -125.0);
  EXPECT_EQ(fix.trueHeading, 0.0);
  EXPECT_EQ(fix.speedKnots, 3.5);
}

TEST(LocationReportParser, CoordinatesTakeTheirSignFromTheHemisphere) {
  ReportFields fields = EmptyReport(kForm, 0);
  fields[1] = "33.25 S";
  fields[2] = "70.5 W";
  FixRecord fix = Parsed(fields);
  EXPECT_EQ(fix.latitude, -33.25);
  EXPECT_EQ(fix.longitude, -70.5);
  fields[1] = "33.25";
  fields[2] = "70.5 X";
  fix = Parsed(fields);
  EXPECT_EQ(fix.latitude, 33.25);
  EXPECT_EQ(fix.longitude, 70.5);
}

TEST(LocationReportParser, DateAndTimeFillTheFixTime) {
  ReportFields fields = EmptyReport(kForm, 0);
  fields[kForm.date] = "2014/7/3";
  fields[kForm.time] = "12:34:56";
  FixRecord fix;
  fix.fixTime.wMilliseconds = 500;
  fix.fixTime.wDayOfWeek = 4;
  ASSERT_EQ(ParseLocationReport(Line(fields), fix), kReportParsed);
  EXPECT_EQ(fix.fixTime.wYear, 2014);
  EXPECT_EQ(fix.fixTime.wMonth, 7);
  EXPECT_EQ(fix.fixTime.wDay, 3);
  EXPECT_EQ(fix.fixTime.wHour, 12);
  EXPECT_EQ(fix.fixTime.wMinute, 34);
  EXPECT_EQ(fix.fixTime.wSecond, 56);
  EXPECT_EQ(fix.fixTime.wMilliseconds, 0);
  EXPECT_EQ(fix.fixTime.wDayOfWeek, 4);
}

TEST(LocationReportParser, MalformedDateFillsWhatMatchedAndStillParses) {
  ReportFields fields = EmptyReport(kForm, 0);
  fields[kForm.date] = "2014/7-3";
  fields[kForm.time] = "noon";
  const FixRecord fix = Parsed(fields);
  EXPECT_EQ(fix.fixTime.wYear, 2014);
  EXPECT_EQ(fix.fixTime.wMonth, 7);
  EXPECT_EQ(fix.fixTime.wDay, 0);
  EXPECT_EQ(fix.fixTime.wHour, 0);
}

TEST(LocationReportParser, DateAndTimeWaitForTheLastSatelliteGroup) {
  ReportFields fields = EmptyReport(kForm, 1);
  fields[kForm.date] = "2014/7/3";
  fields[kForm.time] = "12:34:56";
  FixRecord fix;
  EXPECT_EQ(ParseLocationReport(Line(fields), fix), kReportTruncated);
  EXPECT_EQ(fix.satellitesInView, 1);
  EXPECT_EQ(fix.elevationBytes, 0u);
  EXPECT_EQ(fix.fixTime.wYear, 0);
  EXPECT_EQ(fix.fixQuality, 0u);
  EXPECT_EQ(fix.fixType, 0u);
}

TEST(LocationReportParser, ModeSelectionStatusAndSentenceAreNotTouched) {
  const FixRecord fix = Parsed(NumberedReport(kForm));
  EXPECT_EQ(fix.gpsOperationMode, 1u);
  EXPECT_EQ(fix.gpsSelectionMode, 0u);
  EXPECT_EQ(fix.gpsStatus, 2u);
  EXPECT_EQ(fix.nmeaSentence, "");
}

TEST(LocationReportParser, CountWhoseArraysCannotBeSizedThrows) {
  for (const std::string count : {"-1", "-2147483648", "-99999999999", "536870912", "2147483647",
                                  "4294967297", "99999999999999999999"}) {
    const std::string line = LineWithCount(count);
    FixRecord fix;
    const std::size_t before = allocations;
    bool thrown = false;
    try {
      ParseLocationReport(line, fix);
    } catch (const std::bad_array_new_length&) {
      thrown = true;
    }
    EXPECT_TRUE(thrown) << count;
    EXPECT_EQ(allocations, before) << count;
  }
}

TEST(LocationReportParser, CountThatTheLineCannotHoldIsTruncatedWithoutAllocating) {
  for (const std::string count : {"2", "1000000", "536870911"}) {
    const std::string line = LineWithCount(count);
    FixRecord fix;
    const std::size_t before = allocations;
    EXPECT_EQ(ParseLocationReport(line, fix), kReportTruncated) << count;
    EXPECT_EQ(allocations, before) << count;
    EXPECT_EQ(fix.satellitesInView, std::stoi(count));
  }
}

TEST(LocationReportParser, ShortestGroupsAreAccepted) {
  const std::string groups = ",,,,,,,5,,,,,,,,6";
  FixRecord fix;
  ASSERT_EQ(ParseLocationReport(Line(EmptyReport(kForm, 0)) + "," + groups, fix), kReportParsed);
  std::string line = Line(EmptyReport(kForm, 0));
  line.back() = '2';
  ASSERT_EQ(ParseLocationReport(line + "," + groups, fix), kReportParsed);
  EXPECT_EQ(fix.satelliteIds, (std::vector<std::uint32_t>{5, 6}));
}

TEST(LocationReportParser, AllocatesNothingButTheFiveArrays) {
  const std::string line = Line(NumberedReport(kForm));
  FixRecord fix;
  const std::size_t before = allocations;
  ParseLocationReport(line, fix);
  EXPECT_EQ(allocations - before, 5u);
}

TEST(LocationReportParser, ShortOfMemoryAtAnyArrayThrowsAndLosesNothing) {
  const std::string line = Line(NumberedReport(kForm));
  for (std::size_t array = 1; array <= 5; ++array) {
    const std::size_t liveBefore = live;
    bool thrown = false;
    {
      FixRecord fix;
      failAt = allocations + array;
      try {
        ParseLocationReport(line, fix);
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failAt = 0;
    }
    EXPECT_TRUE(thrown) << array;
    EXPECT_EQ(live, liveBefore) << array;
  }
}

struct CoordinateCase {
  std::string_view text;
  double value;
  bool hemisphere;
};

constexpr CoordinateCase kCoordinates[] = {
    {"12.5 S", -12.5, true},   {"12.5 N", 12.5, true},    {"12.5 E", 12.5, true},
    {"12.5 W", -12.5, true},   {"12.5S", -12.5, true},    {"12.5E", 12.5, true},
    {"12.5   W", -12.5, true}, {"  12.5 S", -12.5, true}, {"12.5 Sx", -12.5, true},
    {"-12.5 S", 12.5, true},   {"12.5", 12.5, false},     {"12.5 ", 12.5, false},
    {"12.5X", 12.5, false},    {"12.5 X", 12.5, false},   {"12.5 s", 12.5, false},
    {"-12.5", -12.5, false},   {"12.5e1E", 125.0, true},  {"", 0.0, false},
    {" ", 0.0, false},         {"X", 0.0, false},         {"N", 0.0, true},
};

TEST(ParseCoordinate, ReadsWhatTheTableSays) {
  for (const CoordinateCase& c : kCoordinates) {
    double value = 99.0;
    EXPECT_EQ(ParseCoordinate(c.text, value), c.hemisphere) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

}  // namespace
}  // namespace stelvane
