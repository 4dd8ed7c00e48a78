// The demo: the driver's main job, shown and checked.
#pragma once

#include "workbench/Options.h"

namespace bench {

/// Runs it and returns the exit code: 0 all went well, 1 the road broke, 2 a bad file (one line on
/// the standard error).
int RunDemo(const DemoOptions& options);

}  // namespace bench
