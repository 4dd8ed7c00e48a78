// The rules that the driver package's INF must keep.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "tests/package/InfFile.h"

namespace package_test {

/// What the build and the code say, and the INF must repeat.
struct InfExpectation {
  std::filesystem::path folder;  // of the package
  std::string version;           // four numbers
  std::string frameworkVersion;  // three numbers
  std::string driverClass;       // in braces
  std::vector<std::string> deviceValues;
};

struct InfFinding {
  std::string rule;
  std::string text;
};
void PrintTo(const InfFinding& finding, std::ostream* out);

/// Everything that is wrong; empty when all is well.
std::vector<InfFinding> CheckInf(const InfFile& inf, const InfExpectation& expected);

using Findings = std::vector<std::string>;

/// How the sections hang together.
namespace structure {
Findings References(const InfFile& inf, const InfExpectation& expected);
Findings Orphans(const InfFile& inf, const InfExpectation& expected);
Findings Decorations(const InfFile& inf, const InfExpectation& expected);
Findings Strings(const InfFile& inf, const InfExpectation& expected);
Findings Files(const InfFile& inf, const InfExpectation& expected);
}  // namespace structure

/// What stands in them.
namespace contents {
Findings Version(const InfFile& inf, const InfExpectation& expected);
Findings HardwareId(const InfFile& inf, const InfExpectation& expected);
Findings Framework(const InfFile& inf, const InfExpectation& expected);
Findings Services(const InfFile& inf, const InfExpectation& expected);
Findings Registry(const InfFile& inf, const InfExpectation& expected);
Findings DeviceValues(const InfFile& inf, const InfExpectation& expected);
}  // namespace contents

/// Sections of models: one a decoration, as [Manufacturer] announces them.
std::vector<std::string> ModelSections(const InfFile& inf);
/// Names of the install sections, as the models name them, without decoration; each once.
std::vector<std::string> InstallSections(const InfFile& inf);
/// The lines of all sections that a directive (AddReg, CopyFiles) of a section names.
std::vector<InfLine> LinesNamedBy(const InfFile& inf, const std::string& section,
                                  const std::string& directive);

}  // namespace package_test
