// The built-in drive: what a run on it is sure to meet.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "workbench/modem/DriveTrack.h"

namespace bench {
namespace {

constexpr Millis kLap = 4 * 56'000;
constexpr double kMetresPerDegree = 111'320;

double Metres(const GnssFix& from, const GnssFix& to) {
  const double north = (to.latitude - from.latitude) * kMetresPerDegree;
  const double east = (to.longitude - from.longitude) * kMetresPerDegree *
                      std::cos(from.latitude * 3.14159265358979 / 180);
  return std::hypot(north, east);
}

DriveTrack OpenDrive() {
  return DriveTrack({.tunnel = false});
}

TEST(DriveTrack, FirstMinuteStopsTurnsAndLosesItsFixInTheTunnel) {
  const DriveTrack drive;
  int withoutFix = 0;
  bool stopped = false;
  double fastest = 0;
  std::set<int> quarters;
  for (Millis t = 0; t < 60'000; t += 1000) {
    const auto fix = drive.At(t);
    if (!fix) {
      ++withoutFix;
      continue;
    }
    stopped = stopped || (*fix->speedKnots < 0.01 && !fix->trueHeading);
    fastest = std::max(fastest, *fix->speedKnots);
    if (fix->trueHeading) quarters.insert(static_cast<int>(*fix->trueHeading) / 90);
  }
  EXPECT_EQ(withoutFix, 6);
  EXPECT_TRUE(stopped);
  EXPECT_GT(fastest, 25);
  EXPECT_GT(quarters.size(), 1u);
}

TEST(DriveTrack, WithoutTheTunnelThereIsAlwaysAFix) {
  const DriveTrack drive = OpenDrive();
  for (Millis t = 0; t < 2 * kLap; t += 1000) EXPECT_TRUE(drive.At(t)) << t;
}

TEST(DriveTrack, SpeedAndPositionAgreeAcrossEverySideAndLap) {
  const DriveTrack drive = OpenDrive();
  for (Millis t = 0; t < 2 * kLap; t += 100) {
    const GnssFix from = *drive.At(t);
    const GnssFix to = *drive.At(t + 100);
    const double metresPerSecond = *to.speedKnots * 1852 / 3600;
    EXPECT_NEAR(Metres(from, to), metresPerSecond * 0.1, 0.02) << t;
  }
}

TEST(DriveTrack, HeadingPointsWhereThePositionGoes) {
  const DriveTrack drive = OpenDrive();
  for (Millis t = 0; t < kLap; t += 1000) {
    const GnssFix from = *drive.At(t);
    const GnssFix to = *drive.At(t + 100);
    if (!to.trueHeading || *to.speedKnots < 2) continue;
    const double north = to.latitude - from.latitude;
    const double east =
        (to.longitude - from.longitude) * std::cos(from.latitude * 3.14159265358979 / 180);
    const double course = std::atan2(east, north) * 180 / 3.14159265358979;
    EXPECT_NEAR(std::remainder(course - *to.trueHeading, 360), 0, 0.5) << t;
  }
}

TEST(DriveTrack, LapClosesSoThatADayLaterItIsStillThere) {
  const DriveTrack drive = OpenDrive();
  const GnssFix first = *drive.At(0);
  EXPECT_LT(Metres(first, *drive.At(kLap)), 0.01);
  EXPECT_LT(Metres(first, *drive.At(400 * kLap)), 0.01);
  EXPECT_GT(Metres(first, *drive.At(kLap / 2)), 100);
}

TEST(DriveTrack, TimeIsThatOfTheStartPlusTheTenthsDriven) {
  const DriveTrack drive = OpenDrive();
  EXPECT_EQ(drive.At(12'345)->time, drive.Start() + std::chrono::milliseconds{12'300});
}

TEST(DriveTrack, SatellitesRiseAndSetWithinAMinute) {
  const DriveTrack drive = OpenDrive();
  const auto inView = [&](Millis t) {
    std::set<std::pair<Constellation, int>> ids;
    const GnssFix fix = *drive.At(t);
    for (const Satellite& satellite : fix.satellites) {
      ids.emplace(satellite.constellation, satellite.number);
    }
    return ids;
  };
  int rises = 0;
  int sets = 0;
  for (Millis t = 1000; t <= 60'000; t += 1000) {
    const auto before = inView(t - 1000);
    const auto now = inView(t);
    for (const auto& id : now) rises += before.contains(id) ? 0 : 1;
    for (const auto& id : before) sets += now.contains(id) ? 0 : 1;
  }
  EXPECT_GT(rises, 0);
  EXPECT_GT(sets, 0);
}

TEST(DriveTrack, SkyIsPlausibleAtEveryMomentOfAnHour) {
  const DriveTrack drive = OpenDrive();
  for (Millis t = 0; t < 3'600'000; t += 10'000) {
    const GnssFix fix = *drive.At(t);
    std::set<Constellation> systems;
    std::size_t used = 0;
    for (const Satellite& satellite : fix.satellites) {
      systems.insert(satellite.constellation);
      used += satellite.used ? 1 : 0;
      EXPECT_GE(*satellite.elevation, 5);
      EXPECT_LE(*satellite.elevation, 90);
      EXPECT_GE(*satellite.azimuth, 0);
      EXPECT_LT(*satellite.azimuth, 360);
      EXPECT_TRUE(satellite.snr || !satellite.used);
    }
    EXPECT_GE(systems.size(), 3u) << t;
    EXPECT_GE(used, 6u) << t;
    EXPECT_LE(fix.satellites.size(), 32u) << t;
  }
}

}  // namespace
}  // namespace bench
