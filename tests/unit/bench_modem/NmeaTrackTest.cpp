// Receivers' logs as they come: begun in the middle, void, jumping, damaged.
#include <gtest/gtest.h>

#include <initializer_list>

#include "workbench/modem/NmeaTrack.h"
#include "workbench/modem/NmeaWriter.h"

namespace bench {
namespace {

constexpr const char* kHere = "4807.0000,N,01130.0000,E";

std::string Lines(std::initializer_list<std::string> bodies) {
  std::string log;
  for (const std::string& body : bodies) log += WithChecksum(body) + "\r\n";
  return log;
}

std::string Rmc(const std::string& time, const std::string& date, const std::string& status = "A",
                const std::string& position = kHere) {
  return "GNRMC," + time + ',' + status + ',' + position + ",10.0,90.0," + date + ",,,A";
}

std::string Gga(const std::string& time, const std::string& quality = "1",
                const std::string& position = kHere) {
  return "GNGGA," + time + ',' + position + ',' + quality + ",08,1.5,500.0,M,47.0,M,,";
}

/// Reads a log that is expected to be a good one.
std::unique_ptr<NmeaTrack> Track(const std::string& log) {
  auto track = NmeaTrack::Parse(log, "log");
  EXPECT_EQ(track.error, "");
  return track ? std::move(*track) : nullptr;
}

Utc Moment(int year, unsigned month, unsigned day, int hour, int minute, int second) {
  return std::chrono::sys_days{std::chrono::year{year} / static_cast<int>(month) /
                               static_cast<int>(day)} +
         std::chrono::hours{hour} + std::chrono::minutes{minute} + std::chrono::seconds{second};
}

/// The times of the track's fixes, one per second of its length.
std::vector<Utc> FixTimes(const NmeaTrack& track) {
  std::vector<Utc> times;
  for (Millis t = 0; t < track.Length(); t += 1000) {
    if (const auto fix = track.At(t)) times.push_back(fix->time);
  }
  return times;
}

TEST(NmeaTrack, EpochGivesPositionQualityAndItsSentences) {
  const auto track = Track(
      Lines({Gga("120000.00"), Rmc("120000.00", "030714"), "GNGSA,A,3,05,,,,,,,,,,,,2.5,1.6,2.0,1",
             "GPGSV,1,1,02,05,40,083,46,07,17,308,"}));
  const GnssFix fix = *track->At(0);
  EXPECT_EQ(fix.time, Moment(2014, 7, 3, 12, 0, 0));
  EXPECT_DOUBLE_EQ(fix.latitude, 48 + 7.0 / 60);
  EXPECT_DOUBLE_EQ(fix.longitude, 11.5);
  EXPECT_EQ(fix.altitudeEllipsoid, 547);
  EXPECT_EQ(fix.speedKnots, 10);
  EXPECT_EQ(fix.trueHeading, 90);
  EXPECT_EQ(fix.pdop, 2.5);
  EXPECT_EQ(fix.hdop, 1.5);
  EXPECT_EQ(fix.vdop, 2.0);
  EXPECT_GT(*fix.errorRadius, 0);
  ASSERT_EQ(fix.satellites.size(), 2u);
  EXPECT_TRUE(fix.satellites[0].used);
  EXPECT_EQ(fix.satellites[0].elevation, 40);
  EXPECT_EQ(fix.satellites[0].azimuth, 83);
  EXPECT_EQ(fix.satellites[0].snr, 46);
  EXPECT_FALSE(fix.satellites[1].used);
  EXPECT_EQ(fix.satellites[1].snr, std::nullopt);
  ASSERT_EQ(fix.sentences.size(), 4u);
  EXPECT_EQ(fix.sentences.front(), WithChecksum(Gga("120000.00")));
}

TEST(NmeaTrack, LogBegunInMidEpochKeepsWhatItHasOfIt) {
  const auto track =
      Track(Lines({"GPGSV,2,2,05,30,57,127,31", "GNVTG,90.0,T,,M,10.0,N,18.5,K,A",
                   Rmc("120000.00", "030714"), Gga("120001.00"), Rmc("120001.00", "030714")}));
  EXPECT_EQ(track->Summary().epochs, 2u);
  EXPECT_EQ(track->At(0)->time, Moment(2014, 7, 3, 12, 0, 0));
  EXPECT_EQ(track->At(0)->hdop, std::nullopt);
  EXPECT_EQ(track->At(0)->sentences.size(), 3u);
  EXPECT_EQ(track->At(0)->satellites.size(), 1u);
}

TEST(NmeaTrack, VoidEpochsAreTimeWithoutAFix) {
  const auto track =
      Track(Lines({Gga("120000", "0"), Rmc("120000", "030714", "V"), Gga("120001", "0"),
                   Rmc("120001", "030714", "V"), Gga("120002"), Rmc("120002", "030714"),
                   Gga("120003"), Rmc("120003", "030714", "V"), Gga("120004", "0"),
                   Rmc("120004", "030714"), Gga("120005"), Rmc("120005", "030714")}));
  EXPECT_EQ(track->Summary().fixes, 2u);
  EXPECT_EQ(FixTimes(*track),
            (std::vector<Utc>{Moment(2014, 7, 3, 12, 0, 2), Moment(2014, 7, 3, 12, 0, 5)}));
  EXPECT_EQ(track->At(1999), std::nullopt);
  EXPECT_TRUE(track->At(2000));
  EXPECT_EQ(track->Start(), Moment(2014, 7, 3, 12, 0, 0));
}

TEST(NmeaTrack, ReceiverWithoutATimeYetTakesAnEpochPerRound) {
  const std::string cold = Lines({"GNRMC,,V,,,,,,,,,,N", "GNGGA,,,,,,0,00,99.99,,,,,,",
                                  "GNGSA,A,1,,,,,,,,,,,,,99.99,99.99,99.99,1"});
  const auto track = Track(cold + cold + cold + Lines({Rmc("120000", "030714"), Gga("120000")}));
  EXPECT_EQ(track->Summary().epochs, 4u);
  EXPECT_EQ(track->Summary().fixes, 1u);
  EXPECT_EQ(track->At(2999), std::nullopt);
  EXPECT_TRUE(track->At(3000));
  EXPECT_EQ(track->Start(), Moment(2014, 7, 3, 11, 59, 57));
}

TEST(NmeaTrack, EmptyFieldsAreAbsentValues) {
  const auto track = Track(Lines({"GNGGA,120000,4807.0,N,01130.0,E,1,,,,M,,M,,",
                                  "GNRMC,120000,A,4807.0,N,01130.0,E,,,030714,,,A",
                                  "GNGSA,A,3,,,,,,,,,,,,,,,", "GPGSV,1,1,02,,,,,08,,,15"}));
  const GnssFix fix = *track->At(0);
  EXPECT_EQ(fix.altitudeEllipsoid, std::nullopt);
  EXPECT_EQ(fix.hdop, std::nullopt);
  EXPECT_EQ(fix.errorRadius, std::nullopt);
  EXPECT_EQ(fix.speedKnots, std::nullopt);
  EXPECT_EQ(fix.trueHeading, std::nullopt);
  EXPECT_EQ(fix.pdop, std::nullopt);
  ASSERT_EQ(fix.satellites.size(), 1u);
  EXPECT_EQ(fix.satellites[0].number, 8);
  EXPECT_EQ(fix.satellites[0].elevation, std::nullopt);
  EXPECT_EQ(fix.satellites[0].snr, 15);
}

TEST(NmeaTrack, ValidEpochWithoutCoordinatesIsNoFix) {
  const auto track = Track(Lines(
      {Rmc("120000", "030714", "A", ",,,"), Gga("120000", "1", ",,,"), Rmc("120001", "030714")}));
  EXPECT_EQ(track->Summary().fixes, 1u);
  EXPECT_EQ(track->At(0), std::nullopt);
}

TEST(NmeaTrack, FourConstellationsAreToldApart) {
  const auto track = Track(Lines(
      {Gga("120000"), "GNGSA,A,3,05,,,,,,,,,,,,2,1,2,1", "GNGSA,A,3,70,,,,,,,,,,,,2,1,2,2",
       "GNGSA,A,3,05,,,,,,,,,,,,2,1,2,3", "GNGSA,A,3,19,,,,,,,,,,,,2,1,2,4",
       "GPGSV,1,1,01,05,10,020,30,1", "GLGSV,1,1,01,70,11,021,31,1", "GAGSV,1,1,01,05,12,022,32,7",
       "BDGSV,1,1,01,19,13,023,33,1", "GBGSV,1,1,01,20,14,024,34,1", "GQGSV,1,1,01,01,15,025,35,1",
       Rmc("120000", "030714")}));
  struct Expected {
    Constellation constellation;
    int number;
    bool used;
  };
  const std::vector<Expected> expected = {
      {Constellation::kGps, 5, true},      {Constellation::kGlonass, 70, true},
      {Constellation::kGalileo, 5, true},  {Constellation::kBeidou, 19, true},
      {Constellation::kBeidou, 20, false}, {Constellation::kQzss, 1, false}};
  const auto satellites = track->At(0)->satellites;
  ASSERT_EQ(satellites.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(satellites[i].constellation, expected[i].constellation) << i;
    EXPECT_EQ(satellites[i].number, expected[i].number) << i;
    EXPECT_EQ(satellites[i].used, expected[i].used) << i;
  }
}

TEST(NmeaTrack, CommonTalkerWithoutASystemGoesByTheNumbers) {
  const auto track =
      Track(Lines({Gga("120000"), "GNGSV,2,1,05,05,1,1,1,70,1,1,1,193,1,1,1,210,1,1,1",
                   "GNGSV,2,2,05,301,1,1,1", "GNGSA,A,3,70,301,,,,,,,,,,,2,1,2"}));
  std::vector<Constellation> systems;
  std::vector<int> used;
  const GnssFix fix = *track->At(0);
  for (const Satellite& satellite : fix.satellites) {
    systems.push_back(satellite.constellation);
    if (satellite.used) used.push_back(satellite.number);
  }
  EXPECT_EQ(systems, (std::vector<Constellation>{Constellation::kGps, Constellation::kGlonass,
                                                 Constellation::kGalileo, Constellation::kBeidou,
                                                 Constellation::kQzss}));
  EXPECT_EQ(used, (std::vector<int>{70, 301}));
}

TEST(NmeaTrack, SatelliteOnTwoFrequenciesIsOne) {
  const auto track =
      Track(Lines({Gga("120000"), "GPGSV,1,1,01,05,10,020,30,1", "GPGSV,1,1,01,05,10,020,36,8"}));
  ASSERT_EQ(track->At(0)->satellites.size(), 1u);
  EXPECT_EQ(track->At(0)->satellites[0].snr, 36);
}

TEST(NmeaTrack, SatellitesAndDilutionsHoldForTenSeconds) {
  std::string log =
      Lines({Gga("120000"), "GNGSA,A,3,05,,,,,,,,,,,,2.5,1.6,2.0,1", "GPGSV,1,1,01,05,10,020,30"});
  for (int second = 1; second < 13; ++second) {
    log += Lines({Gga("1200" + std::string(second < 10 ? "0" : "") + std::to_string(second))});
  }
  const auto track = Track(log);
  EXPECT_EQ(track->At(10'000)->satellites.size(), 1u);
  EXPECT_EQ(track->At(10'000)->pdop, 2.5);
  EXPECT_EQ(track->At(11'000)->satellites.size(), 0u);
  EXPECT_EQ(track->At(11'000)->pdop, std::nullopt);
}

TEST(NmeaTrack, NewRoundOfSatellitesTakesThePlaceOfTheOldOne) {
  const auto track =
      Track(Lines({Gga("120000"), "GPGSV,1,1,01,05,10,020,30", "GLGSV,1,1,01,70,11,021,31",
                   Gga("120001"), "GPGSV,1,1,01,07,10,020,30"}));
  const auto satellites = track->At(1000)->satellites;
  ASSERT_EQ(satellites.size(), 2u);
  EXPECT_EQ(satellites[0].number, 7);
  EXPECT_EQ(satellites[1].number, 70);
}

TEST(NmeaTrack, BadChecksumsAndGarbageAreCountedAndPassedOver) {
  const auto track = Track("# a note\n" + Lines({Gga("120000")}) +
                           "$GNRMC,120000,A,0000.0,N,00000.0,E,10,90,030714,,,A*00\n"
                           "$GNGGA,120000,4807.0\n\n\r\n\x80\x81 binary\n" +
                           Lines({Gga("120001")}));
  const NmeaLogSummary& summary = track->Summary();
  EXPECT_EQ(summary.lines, 6u);
  EXPECT_EQ(summary.sentences, 2u);
  EXPECT_EQ(summary.badChecksums, 2u);
  EXPECT_EQ(summary.garbage, 2u);
  EXPECT_EQ(summary.fixes, 2u);
  EXPECT_EQ(track->At(0)->speedKnots, std::nullopt);
  EXPECT_EQ(track->Describe(),
            "2 fixes in 2 epochs, 2 sentences in 6 lines; bad checksums: 2; lines of garbage: 2");
}

TEST(NmeaTrack, LineFeedsAloneAndAMissingLastOneAreFine) {
  const auto track = Track(WithChecksum(Gga("120000")) + '\n' + WithChecksum(Gga("120001")));
  EXPECT_EQ(track->Summary().fixes, 2u);
}

TEST(NmeaTrack, OtherSentencesAreHandedOnButNotRead) {
  const auto track = Track(Lines({Gga("120000"), "GPTXT,01,01,01,ANTENNA OK", "PMAKE,1,2",
                                  "GNVTG,90.0,T,,M,10.0,N,18.5,K,A"}));
  EXPECT_EQ(track->At(0)->sentences.size(), 4u);
  EXPECT_EQ(track->Summary().epochs, 1u);
}

TEST(NmeaTrack, PlaysAtItsOwnPaceOfFiveHertz) {
  const auto track = Track(Lines({Gga("120000.0"), Gga("120000.2"), Gga("120000.4"),
                                  Gga("120000.6"), Gga("120000.8"), Gga("120001.0")}));
  EXPECT_EQ(track->At(199)->time, Moment(2000, 1, 1, 12, 0, 0));
  EXPECT_EQ(track->At(200)->time, Moment(2000, 1, 1, 12, 0, 0) + std::chrono::milliseconds{200});
  EXPECT_EQ(track->Length(), 1200);
  EXPECT_EQ(track->At(1400), std::nullopt);
}

TEST(NmeaTrack, GapUpToAMinuteLastsAsLongAsItDid) {
  const auto track =
      Track(Lines({Gga("120000"), Gga("120001"), Gga("120002"), Gga("120032"), Gga("120033")}));
  EXPECT_TRUE(track->At(3999));
  EXPECT_EQ(track->At(4000), std::nullopt);
  EXPECT_EQ(track->At(31'999), std::nullopt);
  EXPECT_EQ(track->At(32'000)->time, Moment(2000, 1, 1, 12, 0, 32));
  EXPECT_EQ(track->Summary().jumps, 0u);
}

TEST(NmeaTrack, JumpsForwardAndBackFollowAtTheUsualPace) {
  const auto track =
      Track(Lines({Rmc("120000", "030714"), Rmc("120001", "030714"), Rmc("130000", "030714"),
                   Rmc("130001", "030714"), Rmc("110000", "030714"), Rmc("110001", "030714")}));
  EXPECT_EQ(track->Summary().jumps, 2u);
  EXPECT_EQ(FixTimes(*track),
            (std::vector<Utc>{Moment(2014, 7, 3, 12, 0, 0), Moment(2014, 7, 3, 12, 0, 1),
                              Moment(2014, 7, 3, 13, 0, 0), Moment(2014, 7, 3, 13, 0, 1),
                              Moment(2014, 7, 3, 11, 0, 0), Moment(2014, 7, 3, 11, 0, 1)}));
}

TEST(NmeaTrack, WildFirstPositionAndDateOfAColdBootAreKept) {
  const auto track = Track(Lines({Rmc("000010", "060180", "A", "0000.0000,N,00000.0000,E"),
                                  Rmc("000011", "060180", "A", "0000.0000,N,00000.0000,E"),
                                  Rmc("152233", "030714"), Rmc("152234", "030714")}));
  EXPECT_EQ(track->At(0)->latitude, 0);
  EXPECT_EQ(track->At(0)->time, Moment(1980, 1, 6, 0, 0, 10));
  EXPECT_DOUBLE_EQ(track->At(2000)->longitude, 11.5);
  EXPECT_EQ(track->At(2000)->time, Moment(2014, 7, 3, 15, 22, 33));
}

TEST(NmeaTrack, MidnightIsOneSecondLongWithAndWithoutADate) {
  const auto track = Track(Lines({Gga("235959"), Rmc("235959", "311214"), Gga("000000"),
                                  Gga("000001"), Rmc("000001", "010115")}));
  EXPECT_EQ(FixTimes(*track),
            (std::vector<Utc>{Moment(2014, 12, 31, 23, 59, 59), Moment(2015, 1, 1, 0, 0, 0),
                              Moment(2015, 1, 1, 0, 0, 1)}));
  EXPECT_EQ(track->Summary().jumps, 0u);
}

TEST(NmeaTrack, EpochsBeforeTheFirstDateAreDatedFromIt) {
  const auto track =
      Track(Lines({Gga("235958"), Gga("235959"), Gga("000000"), Rmc("000000", "010115")}));
  EXPECT_EQ(FixTimes(*track),
            (std::vector<Utc>{Moment(2014, 12, 31, 23, 59, 58), Moment(2014, 12, 31, 23, 59, 59),
                              Moment(2015, 1, 1, 0, 0, 0)}));
}

TEST(NmeaTrack, LogWithoutAFixSaysSo) {
  const auto track =
      NmeaTrack::Parse(Lines({Rmc("120000", "030714", "V"), Gga("120001", "0")}) + "x\n", "a.log");
  EXPECT_FALSE(track);
  EXPECT_EQ(
      track.error,
      "a.log: no valid fix: 0 fixes in 2 epochs, 2 sentences in 3 lines; lines of garbage: 1");
}

TEST(NmeaTrack, EmptyLogAndMissingFileSaySo) {
  EXPECT_EQ(NmeaTrack::Parse("", "a.log").error,
            "a.log: no valid fix: 0 fixes in 0 epochs, 0 sentences in 0 lines");
  const auto missing = NmeaTrack::Load("no-such.log");
  EXPECT_FALSE(missing);
  EXPECT_TRUE(missing.error.starts_with("no-such.log: cannot be read")) << missing.error;
}

}  // namespace
}  // namespace bench
