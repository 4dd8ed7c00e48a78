// The device's registry values, as a driver reads them.
#pragma once

#include "platform/WdfDevice.h"
#include "workbench/framework/DevicePlan.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxPropertyStore final : public FxUnknown<IWDFNamedPropertyStore> {
 public:
  FxPropertyStore(const World& world, RegistryKey values)
      : FxUnknown(world, "property store"), values_(std::move(values)) {}

  /// Strings come as VT_LPWSTR, numbers as VT_UI4, bytes as VT_BLOB, for PropVariantClear to free.
  HRESULT STDMETHODCALLTYPE GetNamedValue(LPCWSTR name, PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE SetNamedValue(LPCWSTR name, const PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE GetNameCount(DWORD* count) override;
  HRESULT STDMETHODCALLTYPE GetNameAt(DWORD index, PWSTR* name) override;

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFNamedPropertyStore>(this, iid); }

 private:
  const RegistryKey values_;
};

}  // namespace bench
