// Makes a failing plan short.
#pragma once

#include <functional>

#include "tests/soak/Decision.h"

namespace soak {

/// Whether a plan still fails as the first one did.
using Fails = std::function<bool(const Plan& plan)>;

/// Leaves out what is not needed for the failure: halves, quarters and so on of the decisions, down
/// to single ones, until nothing more can go or `runs` plans were tried.
Plan Reduce(Plan plan, const Fails& fails, int runs);

}  // namespace soak
