// Two Fix records compared field by field.
#pragma once

#include "at/FixRecord.h"

namespace fuzz {

/// Ends the program at the first field that differs.
void RequireSameFix(const stelvane::FixRecord& driver, const stelvane::FixRecord& reference);

}  // namespace fuzz
