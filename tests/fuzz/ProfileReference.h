// The modem's USB profile read in the most obvious way.
#pragma once

#include <string_view>

#include "at/UsbProfileParser.h"

namespace reference {

/// The parser's result.
int ReadProfile(std::string_view line, stelvane::UsbProfile& profile);

}  // namespace reference
