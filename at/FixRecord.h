#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace stelvane {

/// Marks an absent value in those fields of a FixRecord that start with it.
inline constexpr double kAbsent = -1.0;

/// One position of the GNSS engine. A plain value: it copies whole, has no lock of its own, and
/// its owner guards it.
struct FixRecord {
  double latitude = 0.0;                    ///< degrees, north positive
  double longitude = 0.0;                   ///< degrees, east positive
  double errorRadius = 0.0;                 ///< horizontal, metres
  SYSTEMTIME fixTime = {};                  ///< UTC; the day of the week is not filled
  double altitudeEllipsoidError = kAbsent;  ///< metres
  double altitudeEllipsoid = kAbsent;       ///< metres above the ellipsoid
  std::uint32_t fixQuality = 0;             ///< 1 once a report has been parsed
  std::uint32_t fixType = 0;                ///< 1 once a report has been parsed
  std::uint32_t gpsOperationMode = 1;
  std::uint32_t gpsSelectionMode = 0;
  std::uint32_t gpsStatus = 2;
  double hdop = 0.0;  ///< horizontal dilution of precision
  double pdop = 0.0;  ///< position dilution of precision
  std::string nmeaSentence;

  // One element a satellite in each array. The sizes beside them are in bytes, because the data
  // report hands the arrays on as byte vectors.
  std::int32_t satellitesInView = 0;
  std::uint32_t azimuthBytes = 0;
  std::vector<double> azimuth;  ///< degrees
  std::uint32_t elevationBytes = 0;
  std::vector<double> elevation;  ///< degrees
  std::uint32_t satelliteIdBytes = 0;
  std::vector<std::uint32_t> satelliteIds;
  std::uint32_t prnBytes = 0;
  std::vector<std::uint32_t> prns;  ///< the same numbers as satelliteIds
  std::uint32_t snRatioBytes = 0;
  std::vector<double> snRatios;  ///< signal-to-noise ratio

  double speedKnots = kAbsent;
  double trueHeading = kAbsent;  ///< degrees
  double vdop = kAbsent;         ///< vertical dilution of precision
};

}  // namespace stelvane
