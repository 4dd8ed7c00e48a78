// The certification list of a location sensor, run on the shipping DLL: acceptance.exe

#include <cstdio>
#include <exception>

#include "tests/acceptance/Run.h"

int main() {
  try {
    return bench::acceptance::RunAll().failed == 0 ? 0 : 1;
  } catch (const std::exception& error) {  // the driver cannot be loaded or started
    std::fprintf(stderr, "acceptance: %s\n", error.what());
    return 1;
  }
}
