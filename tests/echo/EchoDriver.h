// What the echo driver and its clients agree on.
#pragma once

#include <windows.h>

namespace echo {

inline constexpr CLSID kDriverClass = {
    0x5d3a1f52, 0x7c1e, 0x4b0a, {0x9a, 0x41, 0x2f, 0x60, 0xd8, 0x17, 0xb3, 0xe5}};

/// The input goes to the device; what comes back is the output. One request at a time.
inline constexpr ULONG kEcho = 0x0022e000;

inline constexpr HRESULT kBusy = HRESULT_FROM_WIN32(ERROR_BUSY);
inline constexpr HRESULT kUnknownCode = HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED);
inline constexpr HRESULT kAborted = HRESULT_FROM_WIN32(ERROR_OPERATION_ABORTED);

}  // namespace echo
