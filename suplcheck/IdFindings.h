// Ids with which the driver would find no record, or another one.
#pragma once

#include <vector>

#include "suplcheck/Entries.h"
#include "suplcheck/Report.h"

namespace suplcheck {

void CheckIds(const std::vector<Entry>& entries, Report& report);

}  // namespace suplcheck
