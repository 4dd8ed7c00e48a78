// The package of this build, and what its INF must say.
#pragma once

#include <filesystem>
#include <string>

#include "tests/package/InfRules.h"
#include "workbench/framework/DevicePlan.h"
#include "workbench/imports/DriverModule.h"

namespace package_test {

inline const std::filesystem::path kPackage = DRIVER_PACKAGE;
inline const std::filesystem::path kPackageInf = kPackage / "Stelvane.inf";
inline constexpr const char* kDriverClass = "{ceeb6d87-3f96-4cc8-9f46-369939171dc7}";

/// The framework's version is the DLL's own; its values are those that the workbench's device has,
/// of which the driver needs each.
inline InfExpectation Expected() {
  const bench::DriverModule driver(kPackage / "Stelvane.dll");
  const UMDF_VERSION_DATA& framework = driver.Version();
  InfExpectation expected = {.folder = kPackage,
                             .version = PROJECT_VERSION ".0",
                             .frameworkVersion = std::to_string(framework.MajorNumber) + "." +
                                                 std::to_string(framework.MinorNumber) + "." +
                                                 std::to_string(framework.ServiceNumber),
                             .driverClass = kDriverClass,
                             .deviceValues = {}};
  for (const auto& [name, value] : bench::DevicePlan::DefaultValues()) {
    expected.deviceValues.emplace_back(name.begin(), name.end());
  }
  return expected;
}

}  // namespace package_test
