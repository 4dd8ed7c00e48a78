// What the modem says of the built-in drive, as the input of the benchmarks.
#pragma once

#include <string>

#include "workbench/modem/GnssFix.h"

namespace bench {

/// The fix that many seconds after the start of the drive, with its satellites and sentences.
GnssFix DriveFix(int second);

/// The lines of one fix: the report in that form, its OK, the sentences, the last OK. Without the
/// line end before the first and behind the last.
std::string FixText(const GnssFix& fix, int form = 2);

/// The fixes of that many seconds, each line ended.
std::string DriveText(int seconds);

}  // namespace bench
