#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <new>
#include <vector>

#include "suplcheck/Entries.h"
#include "suplcheck/FieldFindings.h"
#include "suplcheck/IdFindings.h"
#include "suplcheck/Listing.h"
#include "suplcheck/LoadedFile.h"
#include "suplcheck/Options.h"
#include "suplcheck/Report.h"
#include "suplcheck/Text.h"

namespace suplcheck {
namespace {

constexpr int kUnusable = 2;

/// The console shows UTF-8 as long as this lives.
class Utf8Console {
 public:
  Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;
  ~Utf8Console() {
    std::fflush(stdout);
    SetConsoleOutputCP(before_);
  }

 private:
  UINT before_;
};

/// The thread's membership in COM, without which the parser cannot be made.
class ComUse {
 public:
  ComUse() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
  ComUse(const ComUse&) = delete;
  ComUse& operator=(const ComUse&) = delete;
  ~ComUse() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }

 private:
  HRESULT result_;
};

void CheckEntries(const std::vector<Entry>& entries, Report& report) {
  CheckIds(entries, report);
  for (const Entry& entry : entries) {
    if (entry.findable) CheckFields(entry, report);
  }
}

int Check(const Options& options) {
  const std::string name = Utf8(options.file);
  Report report(name);
  const ComUse com;
  const auto document = LoadFile(options.file, report);
  if (!document) {
    std::printf("%s: the driver cannot use it\n", name.c_str());
    return report.ExitCode();
  }
  std::vector<Entry> entries;
  if (FAILED(ReadEntries(document.Get(), entries))) {
    report.Error("the XML parser fails while the records are read");
    return report.ExitCode();
  }
  PrintEntries(entries);
  CheckEntries(entries, report);
  for (const std::string& imsi : options.imsis) {
    PrintLookup(document.Get(), entries, imsi, report);
  }
  std::printf("%s: the driver loads it; %zu records, %d warnings\n", name.c_str(), entries.size(),
              report.Warnings());
  return report.ExitCode();
}

int Run(const std::vector<std::wstring>& arguments) {
  const Utf8Console console;
  const Options options = ReadOptions(arguments);
  if (options.help) {
    std::fputs(HelpText(), stdout);
    return 0;
  }
  if (!options.error.empty()) {
    std::fprintf(stderr, "suplcheck: %s\n", options.error.c_str());
    return kUnusable;
  }
  return Check(options);
}

}  // namespace
}  // namespace suplcheck

// The runtime's name for a main whose arguments keep every character.
// NOLINTNEXTLINE(readability-identifier-naming)
int wmain(int count, wchar_t** arguments) {
  try {
    return suplcheck::Run({arguments + 1, arguments + count});
  } catch (const std::bad_alloc&) {
    std::fputs("suplcheck: out of memory\n", stderr);
    return suplcheck::kUnusable;
  }
}
