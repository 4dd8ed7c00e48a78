#include "tests/fuzz/FixComparison.h"

#include "tests/fuzz/Fuzz.h"

namespace fuzz {

namespace {

using stelvane::FixRecord;

struct NamedTimeField {
  const char* name;
  WORD SYSTEMTIME::*field;
};
constexpr NamedTimeField kTimeFields[] = {
    {"fixTime.wYear", &SYSTEMTIME::wYear},
    {"fixTime.wMonth", &SYSTEMTIME::wMonth},
    {"fixTime.wDayOfWeek", &SYSTEMTIME::wDayOfWeek},
    {"fixTime.wDay", &SYSTEMTIME::wDay},
    {"fixTime.wHour", &SYSTEMTIME::wHour},
    {"fixTime.wMinute", &SYSTEMTIME::wMinute},
    {"fixTime.wSecond", &SYSTEMTIME::wSecond},
    {"fixTime.wMilliseconds", &SYSTEMTIME::wMilliseconds},
};

}  // namespace

#define REQUIRE_SAME_FIELD(field) RequireSame(#field, driver.field, reference.field)
#define REQUIRE_SAME_ARRAY(field) RequireSameValues(#field, driver.field, reference.field)

void RequireSameFix(const FixRecord& driver, const FixRecord& reference) {
  REQUIRE_SAME_FIELD(latitude);
  REQUIRE_SAME_FIELD(longitude);
  REQUIRE_SAME_FIELD(errorRadius);
  for (const NamedTimeField& it : kTimeFields) {
    RequireSame(it.name, driver.fixTime.*it.field, reference.fixTime.*it.field);
  }
  REQUIRE_SAME_FIELD(altitudeEllipsoidError);
  REQUIRE_SAME_FIELD(altitudeEllipsoid);
  REQUIRE_SAME_FIELD(fixQuality);
  REQUIRE_SAME_FIELD(fixType);
  REQUIRE_SAME_FIELD(gpsOperationMode);
  REQUIRE_SAME_FIELD(gpsSelectionMode);
  REQUIRE_SAME_FIELD(gpsStatus);
  REQUIRE_SAME_FIELD(hdop);
  REQUIRE_SAME_FIELD(pdop);
  REQUIRE_SAME_FIELD(nmeaSentence);
  REQUIRE_SAME_FIELD(satellitesInView);
  REQUIRE_SAME_FIELD(azimuthBytes);
  REQUIRE_SAME_ARRAY(azimuth);
  REQUIRE_SAME_FIELD(elevationBytes);
  REQUIRE_SAME_ARRAY(elevation);
  REQUIRE_SAME_FIELD(satelliteIdBytes);
  REQUIRE_SAME_ARRAY(satelliteIds);
  REQUIRE_SAME_FIELD(prnBytes);
  REQUIRE_SAME_ARRAY(prns);
  REQUIRE_SAME_FIELD(snRatioBytes);
  REQUIRE_SAME_ARRAY(snRatios);
  REQUIRE_SAME_FIELD(speedKnots);
  REQUIRE_SAME_FIELD(trueHeading);
  REQUIRE_SAME_FIELD(vdop);
}

}  // namespace fuzz
