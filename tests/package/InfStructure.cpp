#include <algorithm>
#include <regex>

#include "tests/package/InfRules.h"

namespace package_test::structure {

namespace {

struct Processor {
  const char* decoration;  // of the models
  const char* sourceFiles;
};

constexpr Processor kProcessors[] = {
    {"NTx86", "SourceDisksFiles.x86"},
    {"NTamd64", "SourceDisksFiles.amd64"},
};

// Sections that Windows looks for by itself, and those that it makes of an install section's name.
constexpr const char* kRoots[] = {"Version",
                                  "Manufacturer",
                                  "SourceDisksNames",
                                  "DestinationDirs",
                                  "Strings",
                                  kProcessors[0].sourceFiles,
                                  kProcessors[1].sourceFiles};
constexpr const char* kInstallParts[] = {".NT", ".NT.HW", ".NT.Services", ".NT.Wdf",
                                         ".NT.CoInstallers"};

// What the driver needs at its place.
constexpr const char* kNeededFiles[] = {"Stelvane.dll", "StelvaneSUPLInfo-DTD.xml"};

// Where a directive names further sections: from this field on, and in one field or in all.
struct Naming {
  const char* directive;
  std::size_t field;
  bool all;
};
constexpr Naming kNamings[] = {
    {"AddReg", 0, true},
    {"CopyFiles", 0, true},
    {"AddService", 2, false},
    {"UmdfService", 1, false},
};

void AddSectionsNamedIn(const InfFile& inf, const std::string& section,
                        std::vector<std::string>& named) {
  for (const Naming& naming : kNamings) {
    for (const InfLine& line : inf.Lines(section, naming.directive)) {
      const std::size_t end = naming.all ? line.fields.size() : naming.field + 1;
      for (std::size_t i = naming.field; i < end; ++i) named.push_back(line.Field(i));
    }
  }
}

std::vector<std::string> ReferredSections(const InfFile& inf) {
  std::vector<std::string> referred(std::begin(kRoots), std::end(kRoots));
  for (const std::string& section : ModelSections(inf)) referred.push_back(section);
  for (const InfLine& line : inf.Lines("DestinationDirs")) referred.push_back(line.key);
  for (const std::string& install : InstallSections(inf)) {
    for (const char* part : kInstallParts) {
      referred.push_back(install + part);
      AddSectionsNamedIn(inf, install + part, referred);
    }
  }
  return referred;
}

bool Contains(const std::vector<std::string>& names, const std::string& name) {
  return std::ranges::any_of(names, [&](const std::string& one) { return SameName(one, name); });
}

std::vector<std::string> CopiedFiles(const InfFile& inf) {
  std::vector<std::string> files;
  for (const std::string& install : InstallSections(inf)) {
    for (const InfLine& line : LinesNamedBy(inf, install + ".NT", "CopyFiles")) {
      files.push_back(line.Field(0));
    }
  }
  return files;
}

// One file of one processor: where the package has it.
void CheckSource(const InfFile& inf, const InfExpectation& expected, const std::string& section,
                 const std::string& file, Findings& findings) {
  const std::vector<InfLine> sources = inf.Lines(section, file);
  if (sources.size() != 1) {
    findings.push_back(file + " is " + std::to_string(sources.size()) + " times in " + section);
    return;
  }
  if (inf.Lines("SourceDisksNames", sources[0].Field(0)).empty()) {
    findings.push_back(file + " of " + section + " is on disk " + sources[0].Field(0) +
                       ", which has no name");
  }
  const std::filesystem::path place = expected.folder / sources[0].Field(1) / file;
  if (!std::filesystem::exists(place)) findings.push_back(place.string() + " does not exist");
}

}  // namespace

Findings References(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  for (const std::string& section : ReferredSections(inf)) {
    if (!inf.Has(section)) findings.push_back("there is no section [" + section + "]");
  }
  return findings;
}

Findings Orphans(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  const std::vector<std::string> referred = ReferredSections(inf);
  for (const std::string& section : inf.Sections()) {
    if (!Contains(referred, section)) findings.push_back("nothing refers to [" + section + "]");
  }
  return findings;
}

Findings Decorations(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  const std::vector<InfLine> manufacturers = inf.Lines("Manufacturer");
  if (manufacturers.size() != 1) return {"there is more or less than one manufacturer"};
  const std::string models = manufacturers[0].Field(0);
  for (const Processor& processor : kProcessors) {
    if (!Contains(manufacturers[0].fields, processor.decoration)) {
      findings.push_back(std::string(processor.decoration) + " is not among the manufacturer's");
    }
    const std::vector<InfLine> lines = inf.Lines(models + "." + processor.decoration);
    const std::vector<InfLine> others = inf.Lines(models + "." + kProcessors[0].decoration);
    const bool same = std::ranges::equal(lines, others, [](const InfLine& a, const InfLine& b) {
      return a.key == b.key && a.fields == b.fields;
    });
    if (lines.size() != 1 || !same) {
      findings.push_back(std::string(processor.decoration) + " has models of its own");
    }
  }
  if (InstallSections(inf).size() != 1) findings.emplace_back("there is not one install section");
  return findings;
}

Findings Strings(const InfFile& inf, const InfExpectation&) {
  Findings findings;
  std::vector<std::string> used;
  const std::regex token("%([^%\\s]+)%");
  for (std::sregex_iterator match(inf.Text().begin(), inf.Text().end(), token), end; match != end;
       ++match) {
    const std::string name = (*match)[1];
    used.push_back(name);
    const bool folder = name.find_first_not_of("0123456789") == std::string::npos;
    if (!folder && inf.Lines("Strings", name).size() != 1) {
      findings.push_back("%" + name + "% is not defined once");
    }
  }
  for (const InfLine& line : inf.Lines("Strings")) {
    if (!Contains(used, line.key)) findings.push_back("%" + line.key + "% is not used");
    if (line.Field(0).empty()) findings.push_back("%" + line.key + "% is empty");
  }
  return findings;
}

Findings Files(const InfFile& inf, const InfExpectation& expected) {
  Findings findings;
  for (const std::string& install : InstallSections(inf)) {
    for (const InfLine& copy : inf.Lines(install + ".NT", "CopyFiles")) {
      for (const std::string& list : copy.fields) {
        const std::vector<InfLine> places = inf.Lines("DestinationDirs", list);
        if (places.size() != 1 || places[0].fields != std::vector<std::string>{"12", "UMDF"}) {
          findings.push_back("the files of [" + list + "] do not go to drivers\\UMDF");
        }
      }
    }
  }
  const std::vector<std::string> copied = CopiedFiles(inf);
  for (const char* needed : kNeededFiles) {
    if (!Contains(copied, needed)) findings.push_back(std::string(needed) + " is not copied");
  }
  for (const Processor& processor : kProcessors) {
    const std::string section = processor.sourceFiles;
    for (const std::string& file : copied) CheckSource(inf, expected, section, file, findings);
    for (const InfLine& source : inf.Lines(section)) {
      if (!Contains(copied, source.key)) {
        findings.push_back(source.key + " of " + section + " is never copied");
      }
    }
  }
  return findings;
}

}  // namespace package_test::structure
