// Result codes of the framework.
#pragma once

#include <windows.h>

namespace bench {

inline constexpr HRESULT ResultOf(unsigned long value) {
  return static_cast<HRESULT>(value);
}

// Forms of NTSTATUS values.
inline constexpr HRESULT kNoSuchDevice = ResultOf(0xD000000E);
inline constexpr HRESULT kInvalidDeviceRequest = ResultOf(0xD0000010);
inline constexpr HRESULT kInvalidDeviceState = ResultOf(0xD0000184);
// Forms of Win32 errors.
inline constexpr HRESULT kFileNotFound = ResultOf(0x80070002);
inline constexpr HRESULT kNotSupported = ResultOf(0x80070032);
inline constexpr HRESULT kInsufficientBuffer = ResultOf(0x8007007A);
inline constexpr HRESULT kOperationAborted = ResultOf(0x800703E3);
inline constexpr HRESULT kNotFound = ResultOf(0x80070490);
inline constexpr HRESULT kBadConfiguration = ResultOf(0x8007064A);
inline constexpr HRESULT kInvalidState = ResultOf(0x8007139F);

}  // namespace bench
