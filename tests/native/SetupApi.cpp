// Properties of the one device that is installed here.
#include <setupapi.h>

#include <cstring>
#include <mutex>
#include <string>

#include "tests/native/Native.h"

namespace {

constexpr DEVPROPKEY kDescription = {
    {0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 2};

std::mutex deviceLock;
std::u16string description = u"GNSS modem";  // guarded by deviceLock

BOOL Fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

}  // namespace

void native::SetDeviceDescription(LPCWSTR text) {
  const std::lock_guard lock(deviceLock);
  description.clear();
  for (; text != nullptr && *text != 0; ++text) description.push_back(static_cast<char16_t>(*text));
}

HDEVINFO SetupDiCreateDeviceInfoList(const GUID* /*classId*/, HWND /*parent*/) {
  return new char;
}

BOOL SetupDiDestroyDeviceInfoList(HDEVINFO list) {
  delete static_cast<char*>(list);
  return TRUE;
}

BOOL SetupDiOpenDeviceInfoW(HDEVINFO /*list*/, PCWSTR /*instanceId*/, HWND /*parent*/,
                            DWORD /*flags*/, SP_DEVINFO_DATA* data) {
  return data->cbSize == sizeof *data ? TRUE : Fail(ERROR_INVALID_PARAMETER);
}

BOOL SetupDiGetDevicePropertyW(HDEVINFO /*list*/, SP_DEVINFO_DATA* /*data*/, const DEVPROPKEY* key,
                               DEVPROPTYPE* type, BYTE* buffer, DWORD size, DWORD* required,
                               DWORD /*flags*/) {
  const std::lock_guard lock(deviceLock);
  if (key->pid != kDescription.pid || !IsEqualGUID(key->fmtid, kDescription.fmtid) ||
      description.empty()) {
    return Fail(ERROR_NOT_FOUND);
  }
  const auto bytes = static_cast<DWORD>((description.size() + 1) * sizeof(char16_t));
  *type = DEVPROP_TYPE_STRING;
  if (required != nullptr) *required = bytes;
  if (size < bytes) return Fail(ERROR_INSUFFICIENT_BUFFER);
  std::memcpy(buffer, description.c_str(), bytes);
  return TRUE;
}
