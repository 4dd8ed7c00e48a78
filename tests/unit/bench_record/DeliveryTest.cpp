// Whether the check of a delivery sees what a driver could do wrong.

#include "workbench/record/Delivery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::chrono::sys_days kDay = std::chrono::year{2014} / 7 / 3;
constexpr DeliveryTerms kTerms = {.interval = 2000, .from = 0, .until = 60'000};

/// The fix of that second of the run, arrived then.
FixOnItsWay FixAt(int second) {
  GnssFix fix;
  fix.time = kDay + std::chrono::seconds(second);
  fix.latitude = 48.5;
  fix.longitude = -11.25;
  fix.altitudeEllipsoid = -1.0;  // reads as absent
  fix.satellites = {{.number = 7, .elevation = 45.0, .azimuth = {}, .snr = 31.5}};
  fix.sentences = {"$GPGGA,1", "$GPRMC,2"};
  return {.sent = {.at = second * 1000, .fix = fix}, .arrived = second * 1000};
}

/// What a driver has to make of FixAt.
Report ReportAt(int second) {
  Report report;
  report.time = second * 1000;
  report.latitude = 48.5;
  report.longitude = -11.25;
  report.errorRadius = 0;
  report.timestamp =
      ToFileTime({.year = 2014, .month = 7, .day = 3, .second = static_cast<unsigned>(second)});
  report.fixQuality = 1;
  report.fixType = 1;
  report.operationMode = 1;
  report.selectionMode = 0;
  report.gpsStatus = 2;
  report.hdop = 0;
  report.pdop = 0;
  report.nmeaSentence = "$GPGGA,1\n$GPRMC,2\n";
  report.satellitesInView = 1;
  report.azimuth = {0};
  report.elevation = {45};
  report.snRatio = {31.5};
  report.satelliteIds = {7};
  report.prns = {7};
  return report;
}

std::vector<StateChange> ReadyAt(int second) {
  return {{.time = 0, .state = SENSOR_STATE_INITIALIZING},
          {.time = second * 1000, .state = SENSOR_STATE_READY}};
}

TEST(Differences, AreNoneWhenAllFieldsAgreeAndAbsentOnesAreLeftOpen) {
  EXPECT_THAT(Differences(FixAt(3).sent.fix, ReportAt(3)), IsEmpty());
}

TEST(Differences, NameEachFieldThatDeparts) {
  Report report = ReportAt(3);
  report.latitude = 48.50000000000001;
  report.altitudeEllipsoid = -1.0;
  report.elevation = {44};
  report.prns = {};
  report.nmeaSentence = "$GPGGA,1\n$GPRMC,3\n";
  report.timestamp = ReportAt(4).timestamp;
  report.gpsStatus.reset();
  EXPECT_THAT(Differences(FixAt(3).sent.fix, report),
              ElementsAre(HasSubstr("latitude"), HasSubstr("timestamp"), HasSubstr("altitude"),
                          HasSubstr("elevation"), HasSubstr("PRNs"), HasSubstr("NMEA"),
                          HasSubstr("GPS status")));
}

TEST(Delivery, IsWholeWhenEveryFixOnTheIntervalCame) {
  const auto result = CheckDelivery({FixAt(1), FixAt(2), FixAt(3), FixAt(5)}, ReadyAt(1),
                                    {ReportAt(1), ReportAt(3), ReportAt(5)}, kTerms);
  EXPECT_THAT(result.faults, IsEmpty());
  EXPECT_EQ(result.sent, 4U);
  EXPECT_EQ(result.due, 3U);
  EXPECT_EQ(result.delivered, 3U);
}

TEST(Delivery, MissesAFixThatWasDue) {
  const auto result =
      CheckDelivery({FixAt(1), FixAt(3), FixAt(5)}, ReadyAt(1), {ReportAt(1), ReportAt(5)}, kTerms);
  EXPECT_THAT(result.faults, ElementsAre(HasSubstr("00:00:03.000 was due and not delivered")));
  EXPECT_EQ(result.delivered, 2U);
}

TEST(Delivery, MissesTheFixThatMakesTheSensorReadyWhateverItsAge) {
  const auto result = CheckDelivery({FixAt(1), FixAt(2)},
                                    {{.time = 1000, .state = SENSOR_STATE_READY},
                                     {.time = 1500, .state = SENSOR_STATE_INITIALIZING},
                                     {.time = 2000, .state = SENSOR_STATE_READY}},
                                    {ReportAt(1)}, kTerms);
  EXPECT_THAT(result.faults, SizeIs(1));
}

TEST(Delivery, SeesAReportBeforeItsTime) {
  const auto result =
      CheckDelivery({FixAt(1), FixAt(2)}, ReadyAt(1), {ReportAt(1), ReportAt(2)}, kTerms);
  EXPECT_THAT(result.faults, ElementsAre(HasSubstr("before its time")));
}

TEST(Delivery, SeesAReportThatComesTwice) {
  const auto result = CheckDelivery({FixAt(1)}, ReadyAt(1), {ReportAt(1), ReportAt(1)}, kTerms);
  EXPECT_THAT(result.faults, ElementsAre(HasSubstr("came twice")));
}

TEST(Delivery, SeesAReportOfValuesThatTheModemDidNotSend) {
  Report report = ReportAt(1);
  report.longitude = 11.25;
  const auto result = CheckDelivery({FixAt(1)}, ReadyAt(1), {report}, kTerms);
  EXPECT_THAT(result.faults, ElementsAre(HasSubstr("longitude: sent -11.25, reported 11.25"),
                                         HasSubstr("not delivered")));
}

TEST(Delivery, SeesAReportThatCameBeforeItsFix) {
  Report report = ReportAt(3);
  report.time = 2999;
  const auto result = CheckDelivery({FixAt(3)}, ReadyAt(3), {report}, kTerms);
  EXPECT_THAT(result.faults, ElementsAre(HasSubstr("before any fix"), HasSubstr("not delivered")));
}

TEST(Delivery, CountsTimeThatWentBackAsALongTime) {
  FixOnItsWay earlier = FixAt(1);
  earlier.sent.at = 6000;
  earlier.arrived = 6000;
  const auto result = CheckDelivery({FixAt(5), earlier}, ReadyAt(5), {ReportAt(5)}, kTerms);
  EXPECT_THAT(result.faults, ElementsAre(HasSubstr("00:00:01.000 was due")));
}

TEST(Delivery, AsksForNothingOutsideItsTimeNorForStragglers) {
  FixOnItsWay straggler = FixAt(9);
  straggler.sent.straggler = true;
  FixOnItsWay lost = FixAt(10);
  lost.arrived.reset();
  const auto result = CheckDelivery({FixAt(1), straggler, lost, FixAt(20)}, ReadyAt(1), {},
                                    {.interval = 2000, .from = 2000, .until = 19'000});
  EXPECT_THAT(result.faults, IsEmpty());
  EXPECT_EQ(result.sent, 0U);
}

TEST(LongestSilence, CountsOnlyTimeWithReception) {
  const auto fixes = {FixAt(1), FixAt(4), FixAt(20)};
  const auto outside = [](Millis at) { return at < 5000 || at >= 15'000; };
  EXPECT_EQ(LongestSilence(fixes, 1000, 21'000, outside), 5000);
}

TEST(IntervalInForce, IsTheSmallestOfWholeSecondsThatIsNotZero) {
  EXPECT_EQ(IntervalInForce({0}), 1000);
  EXPECT_EQ(IntervalInForce({0, 8001}), 8000);
  EXPECT_EQ(IntervalInForce({60'000, 5999, 9000}), 5000);
}

}  // namespace
}  // namespace bench
