// Runs the list and shows it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

struct Total {
  std::size_t passed = 0;
  std::size_t failed = 0;
  std::size_t remarks = 0;  // among those that passed
};

/// Runs a check; an exception is a fault like any other.
Faults RunCheck(const Check& check, Stand& stand);

/// Runs everything: the list on one load of the driver; then the stress mix and the list once more
/// on another. What the driver has broken or left behind by the end of each load is told under the
/// name of the framework's rule.
Total RunAll();

}  // namespace bench::acceptance
