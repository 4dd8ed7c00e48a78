// The sentences of a computed fix, read back by the log reader and held against known text.
#include <gtest/gtest.h>

#include "workbench/modem/DriveTrack.h"
#include "workbench/modem/NmeaSentence.h"
#include "workbench/modem/NmeaTrack.h"
#include "workbench/modem/NmeaWriter.h"

namespace bench {
namespace {

Satellite InView(Constellation constellation, int number, bool used) {
  Satellite satellite;
  satellite.constellation = constellation;
  satellite.number = number;
  satellite.elevation = 7;
  satellite.azimuth = 45;
  if (used) satellite.snr = 33;
  satellite.used = used;
  return satellite;
}

GnssFix PlainFix() {
  GnssFix fix;
  fix.time = std::chrono::sys_days{std::chrono::year{2009} / 3 / 4} + std::chrono::hours{5} +
             std::chrono::milliseconds{6'070};
  fix.latitude = -48.1173;
  fix.longitude = -11.5;
  return fix;
}

TEST(NmeaWriter, ChecksumIsTheExclusiveOrOfTheBody) {
  EXPECT_EQ(WithChecksum("GPGLL,5057.970,N,00146.110,E,142451,A"),
            "$GPGLL,5057.970,N,00146.110,E,142451,A*27");
  EXPECT_EQ(WithChecksum(""), "$*00");
}

TEST(NmeaWriter, AbsentValuesAreEmptyAndThereIsNoGsvWithoutSatellites) {
  EXPECT_EQ(WriteSentences(PlainFix()),
            (std::vector<std::string>{
                WithChecksum("GNGGA,050006.07,4807.03800,S,01130.00000,W,1,00,,,M,46.9,M,,"),
                WithChecksum("GNRMC,050006.07,A,4807.03800,S,01130.00000,W,,,040309,,,A")}));
}

TEST(NmeaWriter, MinutesThatRoundUpToSixtyCarryIntoTheDegrees) {
  GnssFix fix = PlainFix();
  fix.latitude = 47.99999999999;
  EXPECT_NE(WriteSentences(fix).front().find(",4800.00000,N,"), std::string::npos);
}

TEST(NmeaWriter, OneGsaPerConstellationInUseAndGsvInFours) {
  GnssFix fix = PlainFix();
  for (int number = 1; number <= 5; ++number) {
    fix.satellites.push_back(InView(Constellation::kGps, number, number < 3));
  }
  fix.satellites.push_back(InView(Constellation::kGalileo, 11, true));
  fix.satellites.push_back(InView(Constellation::kBeidou, 19, false));
  const auto sentences = WriteSentences(fix);
  const std::vector<std::string> expected = {
      WithChecksum("GNGSA,A,3,01,02,,,,,,,,,,,,,,1"),
      WithChecksum("GNGSA,A,3,11,,,,,,,,,,,,,,,3"),
      WithChecksum("GPGSV,2,1,05,01,07,045,33,02,07,045,33,03,07,045,,04,07,045,"),
      WithChecksum("GPGSV,2,2,05,05,07,045,"),
      WithChecksum("GAGSV,1,1,01,11,07,045,33"),
      WithChecksum("GBGSV,1,1,01,19,07,045,")};
  ASSERT_EQ(sentences.size(), 2 + expected.size());
  EXPECT_EQ(std::vector<std::string>(sentences.begin() + 2, sentences.end()), expected);
}

TEST(NmeaWriter, WhatTheDriveWritesTheLogReaderReads) {
  const DriveTrack drive;
  std::string log;
  for (Millis t = 0; t < 20'000; t += 1000) {
    const GnssFix fix = *drive.At(t);
    for (const std::string& sentence : fix.sentences) log += sentence + "\r\n";
  }
  auto track = NmeaTrack::Parse(log, "drive");
  ASSERT_TRUE(track) << track.error;
  const NmeaTrack& read = **track.value;
  EXPECT_EQ(read.Summary().badChecksums + read.Summary().garbage, 0u);
  EXPECT_EQ(read.Summary().fixes, 20u);
  EXPECT_EQ(read.Start(), drive.Start());
  for (Millis t = 0; t < 20'000; t += 1000) {
    const GnssFix there = *drive.At(t);
    const GnssFix here = *read.At(t);
    EXPECT_EQ(here.time, there.time);
    EXPECT_NEAR(here.latitude, there.latitude, 1e-7);
    EXPECT_NEAR(here.longitude, there.longitude, 1e-7);
    EXPECT_NEAR(*here.speedKnots, *there.speedKnots, 0.006);
    EXPECT_NEAR(*here.altitudeEllipsoid, *there.altitudeEllipsoid, 0.06);
    EXPECT_EQ(here.sentences, there.sentences);
    ASSERT_EQ(here.satellites.size(), there.satellites.size());
    for (const Satellite& satellite : there.satellites) {
      EXPECT_NE(std::find(here.satellites.begin(), here.satellites.end(), satellite),
                here.satellites.end());
    }
  }
}

}  // namespace
}  // namespace bench
