#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <regex>

#include "tests/package/InfRules.h"

namespace package_test::contents {

namespace {

constexpr std::size_t kLongestServiceName = 31;

struct Pair {
  std::string key;
  std::string value;
};

// Each key stands in the section once, with its value.
void CheckPairs(const InfFile& inf, const std::string& section, const std::vector<Pair>& pairs,
                Findings& findings) {
  for (const Pair& pair : pairs) {
    const std::vector<InfLine> lines = inf.Lines(section, pair.key);
    if (lines.size() != 1 || !SameName(lines[0].Field(0), pair.value)) {
      findings.push_back("[" + section + "] does not say once that " + pair.key + " is " +
                         pair.value);
    }
  }
}

// A file below drivers, as Windows resolves %12%.
std::string DriverFile(const std::string& name) {
  std::array<char, MAX_PATH> system = {};
  GetSystemDirectoryA(system.data(), MAX_PATH);
  return std::string(system.data()) + "\\drivers\\" + name;
}

bool IsPastDate(const std::string& text) {
  SYSTEMTIME date = {};
  FILETIME then = {};
  FILETIME now = {};
  std::smatch parts;
  if (!std::regex_match(text, parts, std::regex("(\\d\\d)/(\\d\\d)/(\\d{4})"))) return false;
  date.wMonth = static_cast<WORD>(std::stoi(parts[1]));
  date.wDay = static_cast<WORD>(std::stoi(parts[2]));
  date.wYear = static_cast<WORD>(std::stoi(parts[3]));
  GetSystemTimeAsFileTime(&now);
  return SystemTimeToFileTime(&date, &then) && CompareFileTime(&then, &now) <= 0;
}

struct Service {
  const char* name;
  const char* flags;
  const char* binary;
};

// Flag 2 makes the reflector the function driver; WinUSB, without it, is a filter.
constexpr Service kServices[] = {
    {"WUDFRd", "0x000001fa", "WUDFRd.sys"},
    {"WinUsb", "0x000001f8", "WinUSB.sys"},
};

struct RegistryLine {
  const char* section;  // part of the install section
  const char* root;
  const char* subkey;
  const char* name;
  ULONG flags;
  const char* value;
};

constexpr ULONG kText = 0;
constexpr ULONG kNumber = FLG_ADDREG_TYPE_DWORD;
constexpr ULONG kNewNumber = FLG_ADDREG_TYPE_DWORD | FLG_ADDREG_NOCLOBBER;
constexpr ULONG kTexts = FLG_ADDREG_TYPE_MULTI_SZ;
constexpr ULONG kOneMoreText = FLG_ADDREG_TYPE_MULTI_SZ | FLG_ADDREG_APPEND;

constexpr RegistryLine kRegistry[] = {
    {".NT.HW", "HKR", "", "LowerFilters", kOneMoreText, "WinUsb"},
    {".NT.HW", "HKR", "", "WinUsbPowerPolicyOwnershipDisabled", kNumber, "1"},
    {".NT.HW", "HKR", "", "DeviceCharacteristics", kNumber, "0x0100"},
    {".NT.HW", "HKR", "", "Security", kText,
     "D:P(A;;GA;;;BA)(A;;GA;;;SY)(A;;GA;;;UD)(A;;GA;;;LS)(A;;GR;;;BU)"},
    {".NT.CoInstallers", "HKR", "", "CoInstallers32", kTexts, "WudfCoInstaller.dll"},
    {".NT", "HKLM", "SOFTWARE\\Tavrel\\Stelvane", "DisableInternalGNSS", kNewNumber, "0"},
};

// Fields of an AddReg line: root, subkey, name, flags, value.
bool Matches(const InfLine& line, const RegistryLine& row) {
  const std::string flags = line.Field(3);
  return line.fields.size() == 5 && SameName(line.Field(0), row.root) &&
         SameName(line.Field(1), row.subkey) && SameName(line.Field(2), row.name) &&
         (flags.empty() ? 0 : std::stoul(flags, nullptr, 0)) == row.flags &&
         line.Field(4) == row.value;
}

std::optional<std::string> FrameworkService(const InfFile& inf, const std::string& install) {
  const std::vector<InfLine> lines = inf.Lines(install + ".NT.Wdf", "UmdfService");
  if (lines.size() != 1 || lines[0].fields.size() != 2) return std::nullopt;
  return lines[0].Field(0);
}

}  // namespace

Findings Version(const InfFile& inf, const InfExpectation& expected) {
  Findings findings;
  CheckPairs(inf, "Version",
             {{"Signature", "$Windows NT$"},
              {"Class", "Sensor"},
              {"ClassGuid", "{5175d334-c371-4806-b3ba-71fd53c9258d}"},
              {"Provider", "Tavrel"},
              {"CatalogFile", "Stelvane.cat"},
              {"PnpLockdown", "0"}},
             findings);
  const std::vector<InfLine> stamps = inf.Lines("Version", "DriverVer");
  if (stamps.size() != 1 || stamps[0].fields.size() != 2) return {"there is not one DriverVer"};
  if (!IsPastDate(stamps[0].Field(0))) {
    findings.push_back("DriverVer has no past date: " + stamps[0].Field(0));
  }
  if (stamps[0].Field(1) != expected.version) {
    findings.push_back("DriverVer is not " + expected.version + ": " + stamps[0].Field(1));
  }
  return findings;
}

Findings HardwareId(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  const std::regex form("USB\\\\VID_[0-9A-F]{4}&PID_[0-9A-F]{4}&MI_[0-9A-F]{2}");
  for (const std::string& section : ModelSections(inf)) {
    for (const InfLine& model : inf.Lines(section)) {
      if (model.fields.size() != 2 || !std::regex_match(model.fields[1], form)) {
        findings.push_back("[" + section + "]: not the id of a USB function: " + model.Field(1));
      }
    }
  }
  return findings;
}

Findings Framework(const InfFile& inf, const InfExpectation& expected) {
  Findings findings;
  for (const std::string& install : InstallSections(inf)) {
    const std::string section = install + ".NT.Wdf";
    const std::optional<std::string> service = FrameworkService(inf, install);
    if (!service) {
      findings.push_back("[" + section + "] does not name one service");
      continue;
    }
    if (service->empty() || service->size() > kLongestServiceName) {
      findings.push_back("the service's name is empty or too long: " + *service);
    }
    const std::vector<Pair> directives = {{"UmdfService", *service},
                                          {"UmdfServiceOrder", *service},
                                          {"UmdfDispatcher", "WinUsb"},
                                          {"UmdfHostProcessSharing", "ProcessSharingDisabled"}};
    CheckPairs(inf, section, directives, findings);
    if (inf.Lines(section).size() != directives.size()) {
      findings.push_back("[" + section + "] holds other directives too");
    }
    CheckPairs(inf, inf.Lines(section, "UmdfService")[0].Field(1),
               {{"UmdfLibraryVersion", expected.frameworkVersion},
                {"DriverCLSID", expected.driverClass},
                {"ServiceBinary", DriverFile("UMDF\\Stelvane.dll")}},
               findings);
  }
  return findings;
}

Findings Services(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  for (const std::string& install : InstallSections(inf)) {
    const std::string section = install + ".NT.Services";
    const std::vector<InfLine> lines = inf.Lines(section);
    if (lines.size() != std::size(kServices)) {
      findings.push_back("[" + section + "] has " + std::to_string(lines.size()) + " lines");
    }
    for (const Service& service : kServices) {
      const auto line = std::ranges::find_if(
          lines, [&](const InfLine& one) { return SameName(one.Field(0), service.name); });
      if (line == lines.end() || !SameName(line->key, "AddService") ||
          line->Field(1) != service.flags) {
        findings.push_back("[" + section + "] does not add " + service.name + " with " +
                           service.flags);
        continue;
      }
      CheckPairs(inf, line->Field(2),
                 {{"ServiceType", "1"},
                  {"StartType", "3"},
                  {"ErrorControl", "1"},
                  {"ServiceBinary", DriverFile(service.binary)}},
                 findings);
    }
  }
  return findings;
}

Findings Registry(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  for (const std::string& install : InstallSections(inf)) {
    for (const RegistryLine& row : kRegistry) {
      const std::vector<InfLine> lines = LinesNamedBy(inf, install + row.section, "AddReg");
      const auto matches = [&](const InfLine& line) { return Matches(line, row); };
      if (std::ranges::count_if(lines, matches) != 1) {
        findings.push_back(std::string(row.name) + " is not written once as it must be");
      }
    }
  }
  return findings;
}

// The framework may open the key named after the service, or the one above it.
Findings DeviceValues(const InfFile& inf, const InfExpectation& expected) {
  Findings findings;
  for (const std::string& install : InstallSections(inf)) {
    const std::vector<InfLine> lines = LinesNamedBy(inf, install + ".NT.HW", "AddReg");
    for (const std::string& subkey :
         {FrameworkService(inf, install).value_or("?"), std::string()}) {
      for (const std::string& name : expected.deviceValues) {
        const auto isText = [&](const InfLine& line) {
          return line.fields.size() == 5 && line.Field(0) == "HKR" && line.Field(1) == subkey &&
                 line.Field(2) == name && line.Field(3).empty() && !line.Field(4).empty();
        };
        if (std::ranges::count_if(lines, isText) != 1) {
          findings.push_back(name + " is not written once as a text to key '" + subkey + "'");
        }
      }
    }
  }
  return findings;
}

}  // namespace package_test::contents
