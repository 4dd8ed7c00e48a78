// The device description that must be readable before a device starts.
#pragma once

#include "platform/WdfDevice.h"

namespace stelvane {

/// Reads the device's description and drops it: only that it can be read matters. Fails with the
/// Win32 error of that read, or with E_UNEXPECTED when there is no memory; a device that cannot be
/// identified or opened counts as success.
HRESULT CheckDeviceDescription(IWDFDevice* device) noexcept;

}  // namespace stelvane
