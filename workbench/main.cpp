#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "workbench/Demo.h"
#include "workbench/Options.h"

namespace {

std::string Utf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
  result.pop_back();  // the terminator
  return result;
}

// Without the program's name.
std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

}  // namespace

int main() {
  const auto line = bench::ReadCommandLine(Arguments());
  if (!line) {
    std::fprintf(stderr, "workbench: %s\n", line.error.c_str());
    return 2;
  }
  switch (line.value->task) {
    case bench::Task::kHelp:
      std::fputs(bench::HelpText().c_str(), stdout);
      return 0;
    case bench::Task::kDemoHelp:
      std::fputs(bench::DemoHelpText().c_str(), stdout);
      return 0;
    case bench::Task::kVersion:
      std::puts("workbench " WORKBENCH_VERSION);
      return 0;
    case bench::Task::kDemo:
      break;
  }
  return bench::RunDemo(line.value->demo);
}
