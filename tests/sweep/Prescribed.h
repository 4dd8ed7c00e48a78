// What a failing call has to lead to, although the rules would not have it so.
#pragma once

#include <string_view>

#include "tests/sweep/Trial.h"

namespace bench {

/// Whether the finding is what the mishap is meant to end in. Each entry says why.
bool IsPrescribed(const Mishap& mishap, std::string_view finding);

}  // namespace bench
