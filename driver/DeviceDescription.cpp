#include "driver/DeviceDescription.h"

#include <initguid.h>  // DEVPROPKEY comes with the property definitions

#include <devpropdef.h>
#include <setupapi.h>

#include <memory>
#include <new>

#include "driver/DeviceDescription.trace.h"

namespace stelvane {

namespace {

constexpr DWORD kBufferLength = 260;  // characters

constexpr DEVPROPKEY kDeviceDescription = {
    {0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 2};

HRESULT InstanceId(IWDFDevice* device, WCHAR* buffer) {
  DWORD length = 0;
  HRESULT result = device->RetrieveDeviceInstanceId(nullptr, &length);
  if (SUCCEEDED(result) && length > kBufferLength) {
    result = HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
  }
  if (SUCCEEDED(result)) result = device->RetrieveDeviceInstanceId(buffer, &length);
  if (FAILED(result)) TRACE(NoInstanceId, result);
  return result;
}

HRESULT ReadDescription(const WCHAR* instanceId, WCHAR* buffer) {
  const HDEVINFO list = SetupDiCreateDeviceInfoList(nullptr, nullptr);
  if (list == INVALID_HANDLE_VALUE) {
    TRACE(ListNotMade, GetLastError());
    return S_OK;
  }
  SP_DEVINFO_DATA data = {};
  data.cbSize = sizeof(data);
  if (!SetupDiOpenDeviceInfoW(list, instanceId, nullptr, 0, &data)) {
    // The list is left open; this is kept as it stands.
    TRACE(DeviceNotOpened, GetLastError());
    return S_OK;
  }
  DEVPROPTYPE type = 0;
  DWORD required = 0;
  HRESULT result = S_OK;
  if (!SetupDiGetDevicePropertyW(list, &data, &kDeviceDescription, &type,
                                 reinterpret_cast<BYTE*>(buffer), kBufferLength * sizeof(WCHAR),
                                 &required, 0)) {
    result = HRESULT_FROM_WIN32(GetLastError());
    TRACE(DescriptionMissing, result);
  } else {
    TRACE(DescriptionRead);
  }
  SetupDiDestroyDeviceInfoList(list);
  return result;
}

}  // namespace

HRESULT CheckDeviceDescription(IWDFDevice* device) noexcept {
  try {
    const auto instanceId = std::make_unique<WCHAR[]>(kBufferLength);
    const auto description = std::make_unique<WCHAR[]>(kBufferLength);
    if (FAILED(InstanceId(device, instanceId.get()))) return S_OK;
    return ReadDescription(instanceId.get(), description.get());
  } catch (const std::bad_alloc&) {
    TRACE(NoMemory);
    return E_UNEXPECTED;
  }
}

}  // namespace stelvane
