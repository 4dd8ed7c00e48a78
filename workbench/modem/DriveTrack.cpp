#include "workbench/modem/DriveTrack.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "workbench/modem/DriveSky.h"
#include "workbench/modem/NmeaWriter.h"

namespace bench {

namespace {

struct Leg {
  int seconds;
  double endSpeed;  // metres per second, reached evenly
  double turn;      // degrees, right positive, evenly
  bool covered = false;
};
// One side of the lap. It ends as fast as it begins.
constexpr double kRollingSpeed = 7;
constexpr std::array<Leg, 12> kSide = {{
    {6, 10, 0},        // speed up
    {5, 10, 0},        //
    {4, 10, 30},       // a bend
    {4, 9, -30},       // and back
    {5, 16, 0},        //
    {6, 16, 0, true},  // the tunnel
    {4, 16, 0},        //
    {5, 0, 0},         // brake for the light
    {6, 0, 0},         // wait
    {4, 7, 0},         // pull away
    {5, 7, 90},        // turn right
    {2, kRollingSpeed, 0},
}};
constexpr Millis kStep = 100;
constexpr double kStepSeconds = 0.1;
constexpr double kMetresPerDegree = 111'320;
constexpr double kKnot = 1852.0 / 3600;  // metres per second
constexpr double kHeadingNeeds = 0.5;    // metres per second; a slower receiver knows no heading

double Radians(double degrees) {
  return degrees * std::numbers::pi / 180;
}

// A quarter turn to the right, `quarters` times.
void Turn(int quarters, double& east, double& north) {
  for (int i = 0; i < quarters; ++i) {
    const double oldEast = east;
    east = north;
    north = -oldEast;
  }
}

void FillQuality(GnssFix& fix) {
  const auto used = std::count_if(fix.satellites.begin(), fix.satellites.end(),
                                  [](const Satellite& satellite) { return satellite.used; });
  const double hdop = 0.5 + 4.0 / static_cast<double>(std::max<std::ptrdiff_t>(used, 4));
  const double vdop = 1.5 * hdop;
  fix.hdop = hdop;
  fix.vdop = vdop;
  fix.pdop = std::hypot(hdop, vdop);
  fix.errorRadius = 4 * hdop;
  fix.altitudeEllipsoidError = 5 * vdop;
}

}  // namespace

DriveTrack::DriveTrack(DriveOptions options) : options_(options) {
  Step step{.speed = kRollingSpeed};
  side_.push_back(step);
  for (const Leg& leg : kSide) {
    const int steps = leg.seconds * 10;
    const double faster = (leg.endSpeed - step.speed) / steps;
    const double turn = Radians(leg.turn) / steps;
    side_.back().covered = leg.covered;
    for (int i = 0; i < steps; ++i) {
      step.speed += faster;
      step.heading += turn;
      step.east += step.speed * kStepSeconds * std::sin(step.heading);
      step.north += step.speed * kStepSeconds * std::cos(step.heading);
      step.covered = leg.covered;
      side_.push_back(step);
    }
  }
}

std::optional<GnssFix> DriveTrack::At(Millis t) const {
  const auto stepsPerSide = static_cast<Millis>(side_.size()) - 1;
  const Millis steps = t / kStep;
  const int sidesDone = static_cast<int>(steps / stepsPerSide % 4);
  const Step& step = side_[static_cast<std::size_t>(steps % stepsPerSide)];
  if (step.covered && options_.tunnel) return std::nullopt;

  double east = step.east;
  double north = step.north;
  Turn(sidesDone, east, north);
  for (int i = 0; i < sidesDone; ++i) {
    double sideEast = side_.back().east;
    double sideNorth = side_.back().north;
    Turn(i, sideEast, sideNorth);
    east += sideEast;
    north += sideNorth;
  }

  GnssFix fix;
  fix.time = options_.start + std::chrono::milliseconds(steps * kStep);
  fix.latitude = options_.latitude + north / kMetresPerDegree;
  fix.longitude =
      options_.longitude + east / (kMetresPerDegree * std::cos(Radians(options_.latitude)));
  fix.altitudeEllipsoid = 520 + 8 * std::sin(north / 200);
  fix.speedKnots = std::max(0.0, step.speed) / kKnot;
  if (step.speed >= kHeadingNeeds) {
    const double heading = step.heading * 180 / std::numbers::pi + 90 * sidesDone;
    fix.trueHeading = std::fmod(heading + 360, 360);
  }
  fix.satellites = SkyAt(steps * kStep);
  FillQuality(fix);
  fix.sentences = WriteSentences(fix);
  return fix;
}

}  // namespace bench
