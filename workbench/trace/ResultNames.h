// Names of result codes, for people.
#pragma once

#include <cstdint>
#include <string>

namespace bench {

/// "0x80070490(ERROR_NOT_FOUND)"; without the brackets when the code has no name here.
std::string ResultText(std::uint32_t result);
/// "1168(ERROR_NOT_FOUND)", likewise.
std::string WindowsErrorText(std::uint32_t error);

}  // namespace bench
