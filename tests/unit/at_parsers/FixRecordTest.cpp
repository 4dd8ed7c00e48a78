#include "at/FixRecord.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <utility>

namespace stelvane {
namespace {

static_assert(std::is_nothrow_move_constructible_v<FixRecord>);
static_assert(std::is_nothrow_move_assignable_v<FixRecord>);

TEST(FixRecord, StartsWithItsDefaults) {
  const FixRecord fix;
  EXPECT_EQ(fix.altitudeEllipsoidError, -1.0);
  EXPECT_EQ(fix.altitudeEllipsoid, -1.0);
  EXPECT_EQ(fix.speedKnots, -1.0);
  EXPECT_EQ(fix.trueHeading, -1.0);
  EXPECT_EQ(fix.vdop, -1.0);
  EXPECT_EQ(fix.fixQuality, 0u);
  EXPECT_EQ(fix.fixType, 0u);
  EXPECT_EQ(fix.gpsOperationMode, 1u);
  EXPECT_EQ(fix.gpsSelectionMode, 0u);
  EXPECT_EQ(fix.gpsStatus, 2u);
  EXPECT_EQ(fix.nmeaSentence, "");
}

TEST(FixRecord, StartsAtZeroWhereThereIsNoDefault) {
  const FixRecord fix;
  EXPECT_EQ(fix.latitude, 0.0);
  EXPECT_EQ(fix.longitude, 0.0);
  EXPECT_EQ(fix.errorRadius, 0.0);
  EXPECT_EQ(fix.hdop, 0.0);
  EXPECT_EQ(fix.pdop, 0.0);
  const SYSTEMTIME zero = {};
  EXPECT_EQ(std::memcmp(&fix.fixTime, &zero, sizeof zero), 0);
}

TEST(FixRecord, StartsWithoutSatellites) {
  const FixRecord fix;
  EXPECT_EQ(fix.satellitesInView, 0);
  EXPECT_EQ(fix.azimuthBytes, 0u);
  EXPECT_EQ(fix.elevationBytes, 0u);
  EXPECT_EQ(fix.satelliteIdBytes, 0u);
  EXPECT_EQ(fix.prnBytes, 0u);
  EXPECT_EQ(fix.snRatioBytes, 0u);
  EXPECT_TRUE(fix.azimuth.empty());
  EXPECT_TRUE(fix.elevation.empty());
  EXPECT_TRUE(fix.satelliteIds.empty());
  EXPECT_TRUE(fix.prns.empty());
  EXPECT_TRUE(fix.snRatios.empty());
}

TEST(FixRecord, CopiesItsArraysAndText) {
  FixRecord fix;
  fix.azimuth = {1.0};
  fix.elevation = {2.0};
  fix.satelliteIds = {3};
  fix.prns = {4};
  fix.snRatios = {5.0};
  fix.nmeaSentence = "$GPGGA";
  const FixRecord copy = fix;
  fix.azimuth[0] = fix.elevation[0] = fix.snRatios[0] = 9.0;
  fix.satelliteIds[0] = fix.prns[0] = 9;
  fix.nmeaSentence.clear();
  EXPECT_EQ(copy.azimuth, std::vector<double>{1.0});
  EXPECT_EQ(copy.elevation, std::vector<double>{2.0});
  EXPECT_EQ(copy.satelliteIds, std::vector<std::uint32_t>{3});
  EXPECT_EQ(copy.prns, std::vector<std::uint32_t>{4});
  EXPECT_EQ(copy.snRatios, std::vector<double>{5.0});
  EXPECT_EQ(copy.nmeaSentence, "$GPGGA");
}

}  // namespace
}  // namespace stelvane
