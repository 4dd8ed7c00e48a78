// The module: what exists before the host has a driver object, and the device that runs.
#pragma once

#include <unknwn.h>

#include "base/ComPtr.h"
#include "platform/WdfDevice.h"

namespace stelvane {

/// One class that the module serves.
struct ObjectMapEntry {
  const CLSID* classId;
  HRESULT(WINAPI* updateRegistry)(BOOL registering);  // the INF registers: does nothing
  HRESULT (*createFactory)(const ObjectMapEntry& entry, ComPtr<IClassFactory>& factory);
  HRESULT (*createInstance)(REFIID iid, void** object);
  IClassFactory** cachedFactory;
};

/// The module's own set-up at load: its lock. False fails the load.
bool InitializeModule() noexcept;
/// At unload: releases the cached class factories, and what the dispatcher remembers.
void TerminateModule() noexcept;

/// The class factory of `classId`, made at the first request and kept; any thread.
/// CLASS_E_CLASSNOTAVAILABLE for a class that is not in the map.
HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) noexcept;

/// The framework device that runs, null when none does.
ComPtr<IWDFDevice> ModuleDevice();
/// Written only while hardware is prepared and released.
void SetModuleDevice(IWDFDevice* device);

}  // namespace stelvane
