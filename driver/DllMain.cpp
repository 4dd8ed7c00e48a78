// The exports of the DLL.

#include <windows.h>

#include "base/ModuleLock.h"
#include "driver/Module.h"
#include "driver/Trace.h"
#include "platform/WdfTypes.h"

/// The framework version that the driver was built against; the host reads it before it asks for
/// the driver's class.
extern "C" UMDF_VERSION_DATA Microsoft_WDF_UMDF_Version;
UMDF_VERSION_DATA Microsoft_WDF_UMDF_Version = {1, 11, 0};

namespace {
constinit bool comModuleReady = false;
}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      stelvane::trace::RegisterTracing();
      DisableThreadLibraryCalls(instance);
      comModuleReady = stelvane::InitializeModule();
      return comModuleReady;
    case DLL_PROCESS_DETACH:
      stelvane::trace::UnregisterTracing();
      stelvane::TerminateModule();
      return TRUE;
    default:
      return comModuleReady;
  }
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* object) {
  return stelvane::GetClassObject(classId, iid, object);
}

STDAPI DllCanUnloadNow() {
  return stelvane::moduleLockCount == 0 ? S_OK : S_FALSE;
}
