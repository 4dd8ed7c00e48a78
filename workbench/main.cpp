#include <cstdio>

#include "workbench/Demo.h"
#include "workbench/Options.h"
#include "workbench/console/Program.h"

int main() {
  const auto line = bench::ReadCommandLine(bench::ProgramArguments());
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
