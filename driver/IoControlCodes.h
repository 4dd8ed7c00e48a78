// I/O control codes of the default queue; all are buffered.
#pragma once

#include <windows.h>

namespace stelvane {

// Device type 0x8905: the sensor core's own. Reads give and writes take 4 bytes.
inline constexpr ULONG kIoctlReadRadioState = 0x89056000;
inline constexpr ULONG kIoctlReadPreviousRadioState = 0x89056004;
inline constexpr ULONG kIoctlSwitchRadio = 0x8905A008;
inline constexpr ULONG kIoctlStorePreviousRadioState = 0x8905A00C;

constexpr bool IsPrivateCode(ULONG code) {
  return code == kIoctlReadRadioState || code == kIoctlReadPreviousRadioState ||
         code == kIoctlSwitchRadio || code == kIoctlStorePreviousRadioState;
}

/// The two portable-device message codes, 0x00404108 (read) and 0x0040C108 (read and write), which
/// the class extension understands.
constexpr bool IsClassExtensionCode(ULONG code) {
  return ((code - 0x404108) & 0xFFFF7FFF) == 0;
}

}  // namespace stelvane
