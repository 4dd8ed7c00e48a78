// One position fix as the simulated receiver knows it.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// UTC, to the millisecond.
using Utc = std::chrono::sys_time<std::chrono::milliseconds>;

enum class Constellation { kGps, kGlonass, kGalileo, kBeidou, kQzss };
inline constexpr std::size_t kConstellations = 5;

/// A satellite in view. What the receiver does not know is empty.
struct Satellite {
  Constellation constellation = Constellation::kGps;
  int number = 0;                   // as the receiver's sentences number it
  std::optional<double> elevation;  // degrees
  std::optional<double> azimuth;    // degrees
  std::optional<double> snr;        // dB-Hz; empty: in view but not tracked
  bool used = false;                // in the position solution

  bool operator==(const Satellite&) const = default;
};

struct GnssFix {
  Utc time{};
  double latitude = 0;                           // degrees, north positive
  double longitude = 0;                          // degrees, east positive
  std::optional<double> errorRadius;             // metres
  std::optional<double> altitudeEllipsoid;       // metres
  std::optional<double> altitudeEllipsoidError;  // metres
  std::optional<double> speedKnots;
  std::optional<double> trueHeading;  // degrees
  std::optional<double> pdop;
  std::optional<double> hdop;
  std::optional<double> vdop;
  std::vector<Satellite> satellites;
  std::vector<std::string> sentences;  // NMEA, from "$" to the checksum, without line ends

  bool operator==(const GnssFix&) const = default;
};

}  // namespace bench
