// What a seed means: the world's setting, and the decisions of a run.
#pragma once

#include "tests/soak/Decision.h"
#include "workbench/modem/ModemOptions.h"

namespace soak {

/// A run of that length; it ends with a calm time and an orderly stop, or at any moment before with
/// a stop or the device pulled out.
Plan MakePlan(std::uint64_t seed, Millis length);

/// How the modem is at power-on.
bench::ModemOptions ModemOf(std::uint64_t seed);
/// Milliseconds since the system's start; some runs see the count pass 32 bits.
std::uint64_t StartTicksOf(std::uint64_t seed);

}  // namespace soak
