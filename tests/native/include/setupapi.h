// Properties of installed devices: one device, see native::SetDeviceDescription.
#pragma once

#include <devpropdef.h>
#include <windows.h>

using HDEVINFO = void*;

struct SP_DEVINFO_DATA {
  DWORD cbSize;
  GUID ClassGuid;
  DWORD DevInst;
  ULONG_PTR Reserved;
};
static_assert(sizeof(SP_DEVINFO_DATA) == 32);

HDEVINFO SetupDiCreateDeviceInfoList(const GUID* classId, HWND parent);
BOOL SetupDiDestroyDeviceInfoList(HDEVINFO list);
BOOL SetupDiOpenDeviceInfoW(HDEVINFO list, PCWSTR instanceId, HWND parent, DWORD flags,
                            SP_DEVINFO_DATA* data);
/// Only the device's description is known.
BOOL SetupDiGetDevicePropertyW(HDEVINFO list, SP_DEVINFO_DATA* data, const DEVPROPKEY* key,
                               DEVPROPTYPE* type, BYTE* buffer, DWORD size, DWORD* required,
                               DWORD flags);
