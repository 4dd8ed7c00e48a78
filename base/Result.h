// HRESULT helpers shared by every room.
#pragma once

#include <windows.h>

namespace stelvane {

/// HRESULT_FROM_WIN32 of the calling thread's last error; a failed call that left no error code
/// still counts as a failure.
inline HRESULT LastErrorResult() {
  const HRESULT result = HRESULT_FROM_WIN32(GetLastError());
  return FAILED(result) ? result : E_FAIL;
}

/// What every guarded callback answers once a shutdown has begun: 0x8007045B.
inline constexpr HRESULT kShutdownInProgress = static_cast<HRESULT>(0x8007045BL);
/// HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND): no AT port among the interfaces, or no pipes.
inline constexpr HRESULT kNoAtPort = static_cast<HRESULT>(0x80070002L);
/// HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED): unknown I/O control codes.
inline constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x80070032L);
/// The modem gave no final result in time.
inline constexpr HRESULT kNoFinalResult = static_cast<HRESULT>(0xA0000001L);
/// The modem answered "ERROR", or the core is stopping and nothing was sent.
inline constexpr HRESULT kModemError = static_cast<HRESULT>(0xA0000002L);

}  // namespace stelvane
