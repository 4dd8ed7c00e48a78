#include "tests/package/InfRules.h"

#include <algorithm>

namespace package_test {

namespace {

struct Rule {
  const char* name;
  Findings (*check)(const InfFile& inf, const InfExpectation& expected);
};

constexpr Rule kRules[] = {
    {"references", structure::References},
    {"orphans", structure::Orphans},
    {"decorations", structure::Decorations},
    {"strings", structure::Strings},
    {"files", structure::Files},
    {"version", contents::Version},
    {"hardware-id", contents::HardwareId},
    {"framework", contents::Framework},
    {"services", contents::Services},
    {"registry", contents::Registry},
    {"device-values", contents::DeviceValues},
};

}  // namespace

void PrintTo(const InfFinding& finding, std::ostream* out) {
  *out << finding.rule << ": " << finding.text;
}

std::vector<InfFinding> CheckInf(const InfFile& inf, const InfExpectation& expected) {
  std::vector<InfFinding> findings;
  for (const Rule& rule : kRules) {
    for (const std::string& text : rule.check(inf, expected)) findings.push_back({rule.name, text});
  }
  return findings;
}

std::vector<std::string> ModelSections(const InfFile& inf) {
  std::vector<std::string> sections;
  for (const InfLine& manufacturer : inf.Lines("Manufacturer")) {
    for (std::size_t i = 1; i < manufacturer.fields.size(); ++i) {
      sections.push_back(manufacturer.fields[0] + "." + manufacturer.fields[i]);
    }
  }
  return sections;
}

std::vector<std::string> InstallSections(const InfFile& inf) {
  std::vector<std::string> installs;
  for (const std::string& section : ModelSections(inf)) {
    for (const InfLine& model : inf.Lines(section)) {
      if (std::ranges::find(installs, model.Field(0)) == installs.end()) {
        installs.push_back(model.Field(0));
      }
    }
  }
  return installs;
}

std::vector<InfLine> LinesNamedBy(const InfFile& inf, const std::string& section,
                                  const std::string& directive) {
  std::vector<InfLine> found;
  for (const InfLine& line : inf.Lines(section, directive)) {
    for (const std::string& name : line.fields) {
      for (InfLine& named : inf.Lines(name)) found.push_back(std::move(named));
    }
  }
  return found;
}

}  // namespace package_test
