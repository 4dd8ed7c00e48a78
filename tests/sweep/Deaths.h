// Says which run hung or crashed.
#pragma once

#include <string>

namespace bench {

/// From now on a crash, an abort or a run of more than a minute of real time ends the program with
/// a line on the standard output and exit code 3. Called once.
void WatchForDeaths();

/// The run that begins, as the line names it.
void Announce(std::string run);

}  // namespace bench
