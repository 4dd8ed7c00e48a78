// Where each form of the report has its fields, and where it may end.
#include <gtest/gtest.h>

#include "ReportText.h"
#include "at/LocationReportParser.h"

namespace stelvane {
namespace {

class LocationReportForms : public testing::TestWithParam<FormFields> {};

INSTANTIATE_TEST_SUITE_P(All, LocationReportForms, testing::ValuesIn(kFormFields),
                         [](const auto& form) { return std::to_string(form.param.form); });

double NumberOrAbsent(unsigned fieldNumber) {
  return fieldNumber == 0 ? kAbsent : fieldNumber;
}

TEST_P(LocationReportForms, EachFieldGoesWhereItsNumberBelongs) {
  const FormFields& form = GetParam();
  FixRecord fix;
  ASSERT_EQ(ParseLocationReport(Line(NumberedReport(form)), fix), kReportParsed);
  EXPECT_EQ(fix.latitude, 1.0);
  EXPECT_EQ(fix.longitude, 2.0);
  EXPECT_EQ(fix.errorRadius, form.errorRadius);
  EXPECT_EQ(fix.altitudeEllipsoid, NumberOrAbsent(form.altitudeEllipsoid));
  EXPECT_EQ(fix.altitudeEllipsoidError, NumberOrAbsent(form.altitudeEllipsoidError));
  EXPECT_EQ(fix.fixTime.wYear, form.date);
  EXPECT_EQ(fix.fixTime.wHour, form.time);
  EXPECT_EQ(fix.trueHeading, form.trueHeading);
  EXPECT_EQ(fix.speedKnots, form.speedKnots);
  EXPECT_EQ(fix.pdop, form.pdop);
  EXPECT_EQ(fix.hdop, form.hdop);
  EXPECT_EQ(fix.vdop, form.vdop);
  EXPECT_EQ(fix.satellitesInView, static_cast<std::int32_t>(form.count));
}

TEST_P(LocationReportForms, EachSatelliteGroupGoesToItsElements) {
  const FormFields& form = GetParam();
  FixRecord fix;
  ASSERT_EQ(ParseLocationReport(Line(NumberedReport(form)), fix), kReportParsed);
  ASSERT_EQ(fix.elevation.size(), form.count);
  ASSERT_EQ(fix.azimuth.size(), form.count);
  ASSERT_EQ(fix.snRatios.size(), form.count);
  ASSERT_EQ(fix.satelliteIds.size(), form.count);
  for (unsigned i = 0; i < form.count; ++i) {
    const unsigned before = form.count + i * kGroupFields;
    EXPECT_EQ(fix.elevation[i], before + 1);
    EXPECT_EQ(fix.azimuth[i], before + 2);
    EXPECT_EQ(fix.snRatios[i], before + 3);
    EXPECT_EQ(fix.satelliteIds[i], before + 8);
  }
  EXPECT_EQ(fix.prns, fix.satelliteIds);
}

TEST_P(LocationReportForms, SetsTheByteCountsOfTheArrays) {
  FixRecord fix;
  ASSERT_EQ(ParseLocationReport(Line(EmptyReport(GetParam(), 3)) + "7", fix), kReportParsed);
  EXPECT_EQ(fix.elevationBytes, 24u);
  EXPECT_EQ(fix.azimuthBytes, 24u);
  EXPECT_EQ(fix.snRatioBytes, 24u);
  EXPECT_EQ(fix.satelliteIdBytes, 12u);
  EXPECT_EQ(fix.prnBytes, 12u);
}

TEST_P(LocationReportForms, WithoutSatellitesStillSetsTimeAndQuality) {
  const FormFields& form = GetParam();
  ReportFields fields = EmptyReport(form, 0);
  fields[form.date] = "2014/7/3";
  fields[form.time] = "12:34:56";
  FixRecord fix;
  ASSERT_EQ(ParseLocationReport(Line(fields), fix), kReportParsed);
  EXPECT_EQ(fix.satellitesInView, 0);
  EXPECT_TRUE(fix.elevation.empty());
  EXPECT_TRUE(fix.azimuth.empty());
  EXPECT_TRUE(fix.snRatios.empty());
  EXPECT_TRUE(fix.satelliteIds.empty());
  EXPECT_TRUE(fix.prns.empty());
  EXPECT_EQ(fix.elevationBytes, 0u);
  EXPECT_EQ(fix.satelliteIdBytes, 0u);
  EXPECT_EQ(fix.fixTime.wYear, 2014);
  EXPECT_EQ(fix.fixTime.wSecond, 56);
  EXPECT_EQ(fix.fixQuality, 1u);
  EXPECT_EQ(fix.fixType, 1u);
}

TEST_P(LocationReportForms, EmptyFieldsLeaveTheRecordAsItWas) {
  const FormFields& form = GetParam();
  FixRecord fix;
  fix.latitude = fix.longitude = fix.errorRadius = fix.pdop = fix.hdop = 77.0;
  ASSERT_EQ(ParseLocationReport(Line(EmptyReport(form, 1)) + "9", fix), kReportParsed);
  EXPECT_EQ(fix.latitude, 77.0);
  EXPECT_EQ(fix.longitude, 77.0);
  EXPECT_EQ(fix.errorRadius, 77.0);
  EXPECT_EQ(fix.pdop, 77.0);
  EXPECT_EQ(fix.hdop, 77.0);
  EXPECT_EQ(fix.altitudeEllipsoid, kAbsent);
  EXPECT_EQ(fix.altitudeEllipsoidError, kAbsent);
  EXPECT_EQ(fix.trueHeading, kAbsent);
  EXPECT_EQ(fix.speedKnots, kAbsent);
  EXPECT_EQ(fix.vdop, kAbsent);
  EXPECT_EQ(fix.fixTime.wYear, 0);
  EXPECT_EQ(fix.elevation, std::vector<double>{0.0});
  EXPECT_EQ(fix.azimuth, std::vector<double>{0.0});
  EXPECT_EQ(fix.snRatios, std::vector<double>{0.0});
  EXPECT_EQ(fix.satelliteIds, std::vector<std::uint32_t>{9});
}

TEST_P(LocationReportForms, CutOffBehindAnyFieldIsTruncated) {
  const FormFields& form = GetParam();
  ReportFields fields = NumberedReport(form);
  fields[form.count] = "2";
  const std::size_t complete = 1 + form.count + 2 * kGroupFields;
  for (std::size_t count = 1; count < complete; ++count) {
    for (const std::string end : {"", ","}) {
      FixRecord fix;
      EXPECT_EQ(ParseLocationReport(Line(fields, count) + end, fix), kReportTruncated)
          << count << " fields, then '" << end << "'";
      EXPECT_EQ(fix.fixQuality, 0u);
    }
  }
  FixRecord fix;
  EXPECT_EQ(ParseLocationReport(Line(fields, complete), fix), kReportParsed);
  // A separator after the last field, or more behind it, does no harm.
  EXPECT_EQ(ParseLocationReport(Line(fields, complete) + ",", fix), kReportParsed);
  EXPECT_EQ(ParseLocationReport(Line(fields), fix), kReportParsed);
}

TEST_P(LocationReportForms, CutOffAtAnyByteIsTruncatedUntilTheLastFieldHasBegun) {
  const FormFields& form = GetParam();
  ReportFields fields = NumberedReport(form);
  fields[form.count] = "1";
  const std::string line = Line(fields, 1 + form.count + kGroupFields);
  const std::size_t lastField = line.rfind(',') + 1;
  for (std::size_t size = 0; size <= line.size(); ++size) {
    FixRecord fix;
    const std::uint8_t expected = size <= line.find(' ') ? kReportWithoutBlank
                                  : size <= lastField    ? kReportTruncated
                                                         : kReportParsed;
    EXPECT_EQ(ParseLocationReport(line.substr(0, size), fix), expected) << line.substr(0, size);
  }
}

TEST_P(LocationReportForms, EmptyCountReadsAsNoSatellites) {
  const FormFields& form = GetParam();
  ReportFields fields = EmptyReport(form, 0);
  fields[form.count] = "";
  FixRecord fix;
  fix.satellitesInView = 5;
  EXPECT_EQ(ParseLocationReport(Line(fields), fix), kReportTruncated);
  EXPECT_EQ(ParseLocationReport(Line(fields) + ",", fix), kReportParsed);
  EXPECT_EQ(fix.satellitesInView, 0);
}

TEST_P(LocationReportForms, EmptySatelliteNumberReadsAsZero) {
  FixRecord fix;
  ASSERT_EQ(ParseLocationReport(Line(EmptyReport(GetParam(), 1)) + ",", fix), kReportParsed);
  EXPECT_EQ(fix.satelliteIds, std::vector<std::uint32_t>{0});
  EXPECT_EQ(fix.prns, std::vector<std::uint32_t>{0});
}

}  // namespace
}  // namespace stelvane
