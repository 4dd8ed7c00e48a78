// The satellites over the built-in drive.
#pragma once

#include "workbench/clock/Clock.h"
#include "workbench/modem/GnssFix.h"

namespace bench {

/// The satellites in view `t` after the start of the drive. They rise and set some thirty times
/// faster than real ones, so that a run of a minute sees it happen.
std::vector<Satellite> SkyAt(Millis t);

}  // namespace bench
