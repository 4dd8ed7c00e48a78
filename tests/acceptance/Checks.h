// The checks, as data.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/acceptance/Judgement.h"
#include "tests/acceptance/Stand.h"

namespace bench::acceptance {

/// One row of the list. Where what the driver is meant to do differs from what is asked, the check
/// holds it to what it is meant to do, and the remark says how that differs.
struct Check {
  std::string name;
  std::string asked;
  std::function<Faults(Stand&)> run;
  std::string remark = {};
};
using Checks = std::vector<Check>;

Checks PropertyChecks();
Checks SettingChecks();
Checks FieldChecks();
Checks IntervalChecks();
Checks StateChecks();
Checks RequestChecks();
/// All of these, in the order in which they run.
Checks CertificationList();
/// What a system does to a device in a day; each leaves the device running.
Checks StressMix();

inline constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070490);

inline constexpr PROPERTYKEY ObjectKey(DWORD id) {
  return {keys::kObjectSet, id};
}
inline constexpr PROPERTYKEY CommonKey(DWORD id) {
  return {keys::kSensorCommonSet, id};
}
inline constexpr PROPERTYKEY LocationKey(DWORD id) {
  return {keys::kLocationSet, id};
}
/// The driver's own settings.
inline constexpr PROPERTYKEY DriverKey(DWORD id) {
  return {{0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}}, id};
}
inline constexpr PROPERTYKEY kClearAssistanceData = {
    {0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}}, 2};
inline constexpr PROPERTYKEY kUnknownKey = {
    {0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x66, 0x66, 0x77, 0x77}}, 2};

/// A fault of that text unless `holds`.
inline Faults Unless(bool holds, const std::string& fault) {
  return holds ? Faults() : Faults{fault};
}

}  // namespace bench::acceptance
