#include "workbench/Demo.h"

#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

#include "workbench/DemoFiles.h"
#include "workbench/DemoRun.h"

namespace bench {

int RunDemo(const DemoOptions& options) {
  const auto complain = [](const std::string& why) {
    std::fprintf(stderr, "workbench: %s\n", why.c_str());
    return 2;
  };
  auto files = ReadDemoFiles(options);
  if (!files) return complain(files.error);
  try {
    DemoRun run(options, std::move(*files));
    return run.Run();
  } catch (const std::runtime_error& error) {  // the driver cannot be loaded
    return complain(error.what());
  }
}

}  // namespace bench
