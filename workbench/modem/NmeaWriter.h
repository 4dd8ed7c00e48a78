// NMEA 0183 sentences of a computed fix.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/modem/GnssFix.h"

namespace bench {

/// "$" + body + "*" + the two hexadecimal digits of its checksum.
std::string WithChecksum(std::string_view body);

/// GGA, RMC, one GSA per constellation in use, and GSV for the satellites in view.
std::vector<std::string> WriteSentences(const GnssFix& fix);

}  // namespace bench
