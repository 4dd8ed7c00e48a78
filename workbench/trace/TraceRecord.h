// One trace message as the driver DLL emitted it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "workbench/clock/Clock.h"

namespace bench {

struct TraceRecord {
  Millis time = 0;  // since the run's start
  DWORD thread = 0;
  GUID message = {};
  USHORT number = 0;
  ULONG flags = 0;
  std::vector<BYTE> arguments{};  // the arguments' bytes, one after another
};

}  // namespace bench
