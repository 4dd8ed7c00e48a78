// Classes, task memory and the texts of ids.
#include <objbase.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>

namespace {

struct RegisteredClass {
  CLSID id;
  IUnknown* factory;
};

std::mutex classLock;
std::map<DWORD, RegisteredClass> classes;  // by cookie; guarded by classLock
DWORD lastCookie = 0;                      // guarded by classLock
// A thread that did not initialise COM may use it while another one keeps it initialised.
std::atomic<int> processInitializations{0};
thread_local int initializations = 0;

constexpr IID kClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Adds a reference; null for an unknown class.
IUnknown* FindFactory(REFCLSID id) {
  const std::lock_guard lock(classLock);
  for (const auto& [cookie, entry] : classes) {
    if (!IsEqualCLSID(entry.id, id)) continue;
    entry.factory->AddRef();
    return entry.factory;
  }
  return nullptr;
}

}  // namespace

HRESULT CoInitializeEx(void* /*reserved*/, DWORD /*model*/) {
  ++processInitializations;
  return initializations++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
  --processInitializations;
  --initializations;
}

HRESULT CoRegisterClassObject(REFCLSID id, IUnknown* factory, DWORD /*context*/, DWORD /*flags*/,
                              DWORD* cookie) {
  const std::lock_guard lock(classLock);
  factory->AddRef();
  *cookie = ++lastCookie;
  classes[*cookie] = {id, factory};
  return S_OK;
}

HRESULT CoRevokeClassObject(DWORD cookie) {
  IUnknown* factory = nullptr;
  {
    const std::lock_guard lock(classLock);
    const auto found = classes.find(cookie);
    if (found == classes.end()) return E_INVALIDARG;
    factory = found->second.factory;
    classes.erase(found);
  }
  factory->Release();
  return S_OK;
}

HRESULT CoCreateInstance(REFCLSID id, IUnknown* outer, DWORD /*context*/, REFIID iid,
                         void** object) {
  *object = nullptr;
  if (processInitializations == 0) return CO_E_NOTINITIALIZED;
  IUnknown* const registered = FindFactory(id);
  if (registered == nullptr) return REGDB_E_CLASSNOTREG;
  IClassFactory* factory = nullptr;
  HRESULT result = registered->QueryInterface(kClassFactory, reinterpret_cast<void**>(&factory));
  registered->Release();
  if (FAILED(result)) return result;
  result = factory->CreateInstance(outer, iid, object);
  factory->Release();
  return result;
}

void* CoTaskMemAlloc(SIZE_T size) {
  return std::malloc(size);
}
void CoTaskMemFree(void* memory) {
  std::free(memory);
}

HRESULT StringFromCLSID(REFCLSID id, LPOLESTR* text) {
  char narrow[39];
  const int length = std::snprintf(
      narrow, sizeof narrow, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", id.Data1,
      unsigned{id.Data2}, unsigned{id.Data3}, unsigned{id.Data4[0]}, unsigned{id.Data4[1]},
      unsigned{id.Data4[2]}, unsigned{id.Data4[3]}, unsigned{id.Data4[4]}, unsigned{id.Data4[5]},
      unsigned{id.Data4[6]}, unsigned{id.Data4[7]});
  *text = static_cast<LPOLESTR>(CoTaskMemAlloc(sizeof narrow * sizeof(WCHAR)));
  if (*text == nullptr) return E_OUTOFMEMORY;
  for (int i = 0; i <= length; ++i) (*text)[i] = static_cast<WCHAR>(narrow[i]);
  return S_OK;
}
