#include "driver/Module.h"

#include "at/LineDispatcher.h"
#include "base/Sync.h"
#include "driver/ClassFactory.h"
#include "driver/Driver.h"
#include "driver/Module.trace.h"

namespace stelvane {

namespace {

constexpr CLSID kDriverClass = {
    0xceeb6d87, 0x3f96, 0x4cc8, {0x9f, 0x46, 0x36, 0x99, 0x39, 0x17, 0x1d, 0xc7}};

constinit IClassFactory* driverFactory = nullptr;

HRESULT WINAPI UpdateNoRegistry(BOOL) {
  return S_OK;
}

constexpr ObjectMapEntry kObjectMap[] = {
    {&kDriverClass, UpdateNoRegistry, ClassFactory::Create, Driver::CreateInstance, &driverFactory},
};

// A plain section: it is made at load and deleted at unload, not when static objects end.
constinit CRITICAL_SECTION moduleSection = {};
constinit bool moduleInitialized = false;

constinit SlimLock deviceLock;
constinit IWDFDevice* moduleDevice GUARDED_BY(deviceLock) = nullptr;  // holds a reference

HRESULT CachedFactory(const ObjectMapEntry& entry) {
  if (*entry.cachedFactory != nullptr) return S_OK;
  ComPtr<IClassFactory> factory;
  RETURN_IF_FAILED(entry.createFactory(entry, factory), FactoryNotMade);
  *entry.cachedFactory = factory.Detach();
  return S_OK;
}

}  // namespace

bool InitializeModule() noexcept {
  moduleInitialized = InitializeCriticalSectionAndSpinCount(&moduleSection, 0) != FALSE;
  if (!moduleInitialized) TRACE(SectionNotMade, GetLastError());
  return moduleInitialized;
}

void TerminateModule() noexcept {
  if (!moduleInitialized) return;
  for (const ObjectMapEntry& entry : kObjectMap) {
    if (*entry.cachedFactory == nullptr) continue;
    (*entry.cachedFactory)->Release();
    *entry.cachedFactory = nullptr;
  }
  LineDispatcher::ForgetLines();
  DeleteCriticalSection(&moduleSection);
  moduleInitialized = false;
}

HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) noexcept {
  if (object == nullptr) {
    TRACE(FactoryNotGiven, E_POINTER);
    return E_POINTER;
  }
  *object = nullptr;
  for (const ObjectMapEntry& entry : kObjectMap) {
    if (!IsEqualGUID(classId, *entry.classId)) continue;
    EnterCriticalSection(&moduleSection);
    HRESULT result = CachedFactory(entry);
    if (SUCCEEDED(result)) {
      result = (*entry.cachedFactory)->QueryInterface(iid, object);
      if (FAILED(result)) TRACE(FactoryNotGiven, result);
    }
    LeaveCriticalSection(&moduleSection);
    return result;
  }
  TRACE(ClassUnknown);
  return CLASS_E_CLASSNOTAVAILABLE;
}

ComPtr<IWDFDevice> ModuleDevice() {
  const ScopedLock lock(deviceLock);
  return ComPtr<IWDFDevice>(moduleDevice);
}

void SetModuleDevice(IWDFDevice* device) {
  if (device != nullptr) device->AddRef();
  IWDFDevice* old = nullptr;
  {
    const ScopedLock lock(deviceLock);
    old = moduleDevice;
    moduleDevice = device;
  }
  if (old != nullptr) old->Release();
}

}  // namespace stelvane
