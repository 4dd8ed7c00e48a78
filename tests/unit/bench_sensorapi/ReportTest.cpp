#include "workbench/sensorapi/Report.h"

#include <cstring>

#include "tests/unit/bench_sensorapi/ApiTest.h"
#include "tests/unit/bench_sensorapi/SampleReport.h"

namespace bench {
namespace {

Report Decode(const KeyValues& values) {
  return DecodeReport(1234, values);
}

TEST(Report, DecodesEveryField) {
  const Report report = Decode(SampleReport());
  EXPECT_THAT(report.faults, testing::IsEmpty());
  EXPECT_THAT(report.MissingFields(), testing::IsEmpty());
  EXPECT_EQ(report.time, 1234);
  EXPECT_EQ(report.latitude, 48.2082);
  EXPECT_EQ(report.longitude, -16.3738);
  EXPECT_EQ(report.errorRadius, 5.5);
  EXPECT_EQ(report.altitudeEllipsoidError, 9.5);
  EXPECT_EQ(report.altitudeEllipsoid, 171.25);
  EXPECT_EQ(report.fixQuality, 1);
  EXPECT_EQ(report.fixType, 2);
  EXPECT_EQ(report.operationMode, 3);
  EXPECT_EQ(report.selectionMode, 4);
  EXPECT_EQ(report.gpsStatus, 5);
  EXPECT_EQ(report.hdop, 0.9);
  EXPECT_EQ(report.pdop, 1.7);
  EXPECT_EQ(report.vdop, 1.4);
  EXPECT_EQ(report.nmeaSentence, "$GPGGA");
  EXPECT_EQ(report.satellitesInView, 2);
  EXPECT_THAT(report.azimuth, testing::ElementsAre(10.5, 200.25));
  EXPECT_THAT(report.elevation, testing::ElementsAre(45, 12));
  EXPECT_THAT(report.satelliteIds, testing::ElementsAre(7u, 31u));
  EXPECT_THAT(report.prns, testing::ElementsAre(7u, 31u));
  EXPECT_THAT(report.snRatio, testing::ElementsAre(40.5, 22));
  EXPECT_EQ(report.speedKnots, 3.25);
  EXPECT_EQ(report.trueHeading, 87.5);
  ASSERT_TRUE(report.eventId);
  EXPECT_TRUE(SameGuid(*report.eventId, kSensorEventDataUpdated));
}

TEST(Report, TheFieldsAreTheSupportedOnesInTheirOrder) {
  const std::vector<DWORD> pids = {2,  3,  22, 2,  29, 5,  10, 11, 32, 31, 33, 13,
                                   38, 12, 17, 20, 19, 39, 18, 21, 6,  7,  14};
  const std::vector<PROPERTYKEY> all = ReportKeys();
  ASSERT_EQ(all.size(), pids.size());
  for (std::size_t i = 0; i < pids.size(); ++i) EXPECT_EQ(all[i].pid, pids[i]) << i;
}

TEST(Report, AnEmptyFieldHasNoValueButAType) {
  const Report report = Decode(SampleReportWith(LocationKey(6), Variant()));
  EXPECT_EQ(report.speedKnots, std::nullopt);
  EXPECT_EQ(report.TypeOf(LocationKey(6)), VT_EMPTY);
  EXPECT_THAT(report.faults, testing::IsEmpty());
}

TEST(Report, AMissingFieldHasNeither) {
  const Report report = Decode(SampleReportWithout(LocationKey(6)));
  EXPECT_EQ(report.speedKnots, std::nullopt);
  EXPECT_EQ(report.TypeOf(LocationKey(6)), std::nullopt);
  EXPECT_THAT(report.MissingFields(), testing::ElementsAre("speed"));
}

TEST(Report, AFieldThatMayNotBeAbsentIsAFaultWhenEmpty) {
  const Report report = Decode(SampleReportWith(LocationKey(2), Variant()));
  EXPECT_THAT(report.faults, testing::ElementsAre("latitude: type 0"));
}

TEST(Report, AnotherTypeIsAFaultAndGivesNoValue) {
  const Report report = Decode(SampleReportWith(LocationKey(10), Variant::Ui4(1)));
  EXPECT_EQ(report.fixQuality, std::nullopt);
  EXPECT_EQ(report.TypeOf(LocationKey(10)), VT_UI4);
  EXPECT_THAT(report.faults, testing::ElementsAre("fix quality: type 19"));
}

TEST(Report, AnUnknownKeyIsAFault) {
  const Report report = Decode(SampleReportWith(LocationKey(99), Variant::R8(1)));
  ASSERT_EQ(report.faults.size(), 1u);
  EXPECT_THAT(report.faults[0], testing::HasSubstr(KeyText(LocationKey(99))));
}

TEST(Report, ABlobThatIsNotOneElementASatelliteIsAFault) {
  const BYTE bytes[8] = {};
  const Report shorter = Decode(SampleReportWith(LocationKey(20), Variant::Bytes(bytes)));
  EXPECT_THAT(shorter.faults, testing::ElementsAre("azimuths: 8 bytes"));
  const Report ragged =
      Decode(SampleReportWith(LocationKey(18), Variant::Bytes(std::span(bytes).first(7))));
  EXPECT_THAT(ragged.faults, testing::ElementsAre("satellite PRNs: 7 bytes"));
}

TEST(Report, WithoutSatellitesTheBlobsAreEmpty) {
  KeyValues values = SampleReportWith(LocationKey(17), Variant::I4(0));
  for (const DWORD pid : {18u, 19u, 20u, 21u, 39u}) {
    Replace(&values, LocationKey(pid), Variant::Bytes({}));
  }
  const Report report = Decode(values);
  EXPECT_THAT(report.faults, testing::IsEmpty());
  EXPECT_THAT(report.azimuth, testing::IsEmpty());
}

TEST(UtcTime, ConvertsBothWays) {
  const UtcTime time{2014, 7, 3, 12, 34, 56, 789};
  EXPECT_EQ(ToUtc(ToFileTime(time)), time);
  EXPECT_EQ(UtcText(ToFileTime(time)), "2014-07-03 12:34:56.789");
}

TEST(UtcTime, AgreesWithTheSystemOnLeapDaysAndTheCentury) {
  for (const SYSTEMTIME day :
       {SYSTEMTIME{2000, 2, 0, 29, 23, 59, 59, 999}, SYSTEMTIME{2016, 12, 0, 31, 0, 0, 0, 0},
        SYSTEMTIME{2100, 3, 0, 1, 1, 2, 3, 4}}) {
    FILETIME expected{};
    ASSERT_TRUE(SystemTimeToFileTime(&day, &expected));
    const UtcTime utc{day.wYear,   day.wMonth,  day.wDay,         day.wHour,
                      day.wMinute, day.wSecond, day.wMilliseconds};
    const FILETIME made = ToFileTime(utc);
    EXPECT_EQ(std::memcmp(&made, &expected, sizeof made), 0) << day.wYear;
    EXPECT_EQ(ToUtc(expected), utc);
  }
}

TEST(ReportText, SaysTheMainThingsOnOneLine) {
  EXPECT_EQ(ReportText(Decode(SampleReport())),
            "2014-07-03 12:34:56.000Z  48.208200 N  16.373800 W  +-5.5 m  alt 171.2 m  3.2 kn  "
            "heading 87.5  2 satellites");
}

TEST(ReportText, LeavesOutWhatIsAbsent) {
  KeyValues values = SampleReportWith(LocationKey(6), Variant());
  Replace(&values, LocationKey(7), Variant());
  Replace(&values, LocationKey(5), Variant());
  EXPECT_EQ(ReportText(Decode(values)),
            "2014-07-03 12:34:56.000Z  48.208200 N  16.373800 W  +-5.5 m  2 satellites");
  EXPECT_EQ(ReportText(Report()), "no time  -  -");
}

}  // namespace
}  // namespace bench
