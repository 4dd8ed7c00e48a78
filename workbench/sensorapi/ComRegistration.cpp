#include "workbench/sensorapi/ComRegistration.h"

#include <objbase.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "platform/PortableDevices.h"
#include "platform/SensorClassExtension.h"
#include "workbench/framework/CountedObject.h"
#include "workbench/sensorapi/ClassExtension.h"
#include "workbench/sensorapi/PortableDeviceCollections.h"

namespace bench {
namespace {

struct ClassEntry {
  ApiClass which;
  const char* name;
  GUID id;
};

constexpr std::array<ClassEntry, 4> kClasses = {{
    {ApiClass::kValues, "PortableDeviceValues", clsid::kPortableDeviceValues},
    {ApiClass::kKeyCollection, "PortableDeviceKeyCollection", clsid::kPortableDeviceKeyCollection},
    {ApiClass::kValuesCollection, "PortableDeviceValuesCollection",
     clsid::kPortableDeviceValuesCollection},
    {ApiClass::kClassExtension, "SensorClassExtension", clsid::kSensorClassExtension},
}};

const ClassEntry& EntryOf(ApiClass which) {
  return kClasses[static_cast<std::size_t>(which)];
}

ComPtr<IUnknown> NewObject(ApiClass which, SensorService& service) {
  const World& world = service.world();
  switch (which) {
    case ApiClass::kValues:
      return ComPtr<IUnknown>(MakeApiObject<PortableDeviceValues>(world).Get());
    case ApiClass::kKeyCollection:
      return ComPtr<IUnknown>(MakeApiObject<PortableDeviceKeyCollection>(world).Get());
    case ApiClass::kValuesCollection:
      return ComPtr<IUnknown>(MakeApiObject<PortableDeviceValuesCollection>(world).Get());
    case ApiClass::kClassExtension:
      return ComPtr<IUnknown>(MakeApiObject<ClassExtension>(world, service).Get());
  }
  throw std::invalid_argument("class");
}

/// Held by COM while the class is registered; not audited, since COM counts as it likes.
class ApiClassFactory final : public CountedObject<IClassFactory> {
 public:
  ApiClassFactory(ApiClass which, SensorService& service) : which_(which), service_(service) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    const std::string call = "CoCreateInstance(" + std::string(ApiClassName(which_)) + ")";
    return service_.world().calls.Run("com", call, [&] {
      return NoThrow([&] { return NewObject(which_, service_)->QueryInterface(iid, object); });
    });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  const ApiClass which_;
  SensorService& service_;
};

}  // namespace

std::string_view ApiClassName(ApiClass which) {
  return EntryOf(which).name;
}

ComRegistration::ComRegistration(SensorService& service, const std::vector<ApiClass>& withheld)
    : service_(service) {
  if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
    throw std::runtime_error("CoInitializeEx");
  }
  for (const ClassEntry& entry : kClasses) {
    if (std::ranges::find(withheld, entry.which) == withheld.end()) Restore(entry.which);
  }
}

ComRegistration::~ComRegistration() {
  for (const ClassEntry& entry : kClasses) Withhold(entry.which);
  CoUninitialize();
}

void ComRegistration::Withhold(ApiClass which) {
  std::optional<DWORD>& cookie = cookies_[static_cast<std::size_t>(which)];
  if (cookie) CoRevokeClassObject(*cookie);
  cookie.reset();
}

void ComRegistration::Restore(ApiClass which) {
  std::optional<DWORD>& cookie = cookies_[static_cast<std::size_t>(which)];
  if (cookie) return;
  const ComPtr<IClassFactory> factory(new ApiClassFactory(which, service_));
  DWORD registered = 0;
  if (FAILED(CoRegisterClassObject(EntryOf(which).id, factory.Get(), CLSCTX_INPROC_SERVER,
                                   REGCLS_MULTIPLEUSE, &registered))) {
    throw std::runtime_error(EntryOf(which).name);
  }
  cookie = registered;
}

}  // namespace bench
