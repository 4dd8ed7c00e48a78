// Settings that make a command wrong, or that are not what they look like.
#pragma once

#include "suplcheck/Entries.h"
#include "suplcheck/Report.h"

namespace suplcheck {

void CheckFields(const Entry& entry, Report& report);

}  // namespace suplcheck
