#include "workbench/modem/DriveSky.h"

#include <array>
#include <cmath>
#include <numbers>

namespace bench {

namespace {

constexpr Millis kOrbit = 24 * 60 * 1000;
constexpr double kMask = 5;     // degrees; lower is not in view
constexpr double kTracked = 8;  // lower has no signal
constexpr double kUsable = 12;  // lower is not used
constexpr double kGolden = 0.6180339887498949;

struct Orbiter {
  Constellation constellation;
  int number;
};
constexpr std::array<Orbiter, 34> kOrbiters = {{
    {Constellation::kGps, 2},      {Constellation::kGlonass, 65}, {Constellation::kGalileo, 1},
    {Constellation::kGps, 5},      {Constellation::kBeidou, 9},   {Constellation::kGps, 7},
    {Constellation::kGlonass, 68}, {Constellation::kGps, 10},     {Constellation::kGalileo, 3},
    {Constellation::kGps, 12},     {Constellation::kGlonass, 70}, {Constellation::kGps, 13},
    {Constellation::kBeidou, 19},  {Constellation::kGps, 15},     {Constellation::kGalileo, 8},
    {Constellation::kGps, 16},     {Constellation::kGlonass, 73}, {Constellation::kGps, 18},
    {Constellation::kGalileo, 11}, {Constellation::kGps, 20},     {Constellation::kBeidou, 22},
    {Constellation::kGps, 21},     {Constellation::kGlonass, 76}, {Constellation::kGps, 23},
    {Constellation::kGalileo, 14}, {Constellation::kGps, 25},     {Constellation::kGlonass, 81},
    {Constellation::kGps, 26},     {Constellation::kBeidou, 28},  {Constellation::kGps, 29},
    {Constellation::kGalileo, 24}, {Constellation::kGps, 31},     {Constellation::kGlonass, 84},
    {Constellation::kGps, 32},
}};

double Fraction(double value) {
  return value - std::floor(value);
}

// The orbits follow from the place in the table, spread by the golden ratio: no two culminate at
// the same time or height.
Satellite Place(std::size_t index, double turns) {
  const double spread = static_cast<double>(index) * kGolden;
  const double phase = 2 * std::numbers::pi * (turns - spread);
  const double peak = 25 + 60 * Fraction(spread * 7);
  const double elevation = peak * std::cos(phase);
  const double azimuth = 360 * Fraction(spread * 3 + 0.4 * turns);
  Satellite satellite;
  satellite.constellation = kOrbiters[index].constellation;
  satellite.number = kOrbiters[index].number;
  satellite.elevation = std::round(elevation);
  satellite.azimuth = std::fmod(std::round(azimuth), 360);
  if (elevation >= kTracked)
    satellite.snr = std::round(28 + elevation / 5 + 3 * std::sin(9 * phase));
  satellite.used = elevation >= kUsable;
  return satellite;
}

}  // namespace

std::vector<Satellite> SkyAt(Millis t) {
  const double turns = static_cast<double>(t) / static_cast<double>(kOrbit);
  std::vector<Satellite> inView;
  for (std::size_t i = 0; i < kOrbiters.size(); ++i) {
    const Satellite satellite = Place(i, turns);
    if (*satellite.elevation >= kMask) inView.push_back(satellite);
  }
  return inView;
}

}  // namespace bench
