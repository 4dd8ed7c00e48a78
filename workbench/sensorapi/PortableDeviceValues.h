// The property bag that the Sensor API and a driver exchange.
#pragma once

#include <mutex>
#include <vector>

#include "platform/PortableDevices.h"
#include "workbench/sensorapi/ApiObject.h"
#include "workbench/sensorapi/Variant.h"

namespace bench {

struct KeyValue {
  PROPERTYKEY key;
  Variant value;
};

/// In insertion order; a key that is set again keeps its place.
using KeyValues = std::vector<KeyValue>;

/// Deep copies in and out; may be called from any thread. A missing key gives
/// HRESULT_FROM_WIN32(ERROR_NOT_FOUND), a typed read of another type DISP_E_TYPEMISMATCH, an index
/// beyond the end E_INVALIDARG.
class PortableDeviceValues final : public ApiObject<IPortableDeviceValues> {
 public:
  explicit PortableDeviceValues(const World& world, KeyValues values = {});
  ~PortableDeviceValues() override;

  /// A copy of the content. Not a call of the interface: neither recorded nor made to fail.
  KeyValues Content() const;

  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override;
  HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key, PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, const PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE SetStringValue(REFPROPERTYKEY key, LPCWSTR value) override;
  HRESULT STDMETHODCALLTYPE GetStringValue(REFPROPERTYKEY key, LPWSTR* value) override;
  HRESULT STDMETHODCALLTYPE SetUnsignedIntegerValue(REFPROPERTYKEY key, ULONG value) override;
  HRESULT STDMETHODCALLTYPE GetUnsignedIntegerValue(REFPROPERTYKEY key, ULONG* value) override;
  HRESULT STDMETHODCALLTYPE SetSignedIntegerValue(REFPROPERTYKEY key, LONG value) override;
  HRESULT STDMETHODCALLTYPE GetSignedIntegerValue(REFPROPERTYKEY key, LONG* value) override;
  HRESULT STDMETHODCALLTYPE SetUnsignedLargeIntegerValue(REFPROPERTYKEY key,
                                                         ULONGLONG value) override;
  HRESULT STDMETHODCALLTYPE GetUnsignedLargeIntegerValue(REFPROPERTYKEY key,
                                                         ULONGLONG* value) override;
  HRESULT STDMETHODCALLTYPE SetSignedLargeIntegerValue(REFPROPERTYKEY key, LONGLONG value) override;
  HRESULT STDMETHODCALLTYPE GetSignedLargeIntegerValue(REFPROPERTYKEY key,
                                                       LONGLONG* value) override;
  HRESULT STDMETHODCALLTYPE SetFloatValue(REFPROPERTYKEY key, FLOAT value) override;
  HRESULT STDMETHODCALLTYPE GetFloatValue(REFPROPERTYKEY key, FLOAT* value) override;
  HRESULT STDMETHODCALLTYPE SetErrorValue(REFPROPERTYKEY key, HRESULT value) override;
  HRESULT STDMETHODCALLTYPE GetErrorValue(REFPROPERTYKEY key, HRESULT* value) override;
  /// A key as a value is kept as its bytes.
  HRESULT STDMETHODCALLTYPE SetKeyValue(REFPROPERTYKEY key, REFPROPERTYKEY value) override;
  HRESULT STDMETHODCALLTYPE GetKeyValue(REFPROPERTYKEY key, PROPERTYKEY* value) override;
  HRESULT STDMETHODCALLTYPE SetBoolValue(REFPROPERTYKEY key, BOOL value) override;
  HRESULT STDMETHODCALLTYPE GetBoolValue(REFPROPERTYKEY key, BOOL* value) override;
  HRESULT STDMETHODCALLTYPE SetIUnknownValue(REFPROPERTYKEY key, IUnknown* value) override;
  HRESULT STDMETHODCALLTYPE GetIUnknownValue(REFPROPERTYKEY key, IUnknown** value) override;
  HRESULT STDMETHODCALLTYPE SetGuidValue(REFPROPERTYKEY key, REFGUID value) override;
  HRESULT STDMETHODCALLTYPE GetGuidValue(REFPROPERTYKEY key, GUID* value) override;
  HRESULT STDMETHODCALLTYPE SetBufferValue(REFPROPERTYKEY key, BYTE* bytes, DWORD count) override;
  HRESULT STDMETHODCALLTYPE GetBufferValue(REFPROPERTYKEY key, BYTE** bytes, DWORD* count) override;
  HRESULT STDMETHODCALLTYPE SetIPortableDeviceValuesValue(REFPROPERTYKEY key,
                                                          IPortableDeviceValues* value) override;
  HRESULT STDMETHODCALLTYPE GetIPortableDeviceValuesValue(REFPROPERTYKEY key,
                                                          IPortableDeviceValues** value) override;
  HRESULT STDMETHODCALLTYPE SetIPortableDevicePropVariantCollectionValue(
      REFPROPERTYKEY key, IPortableDevicePropVariantCollection* value) override;
  HRESULT STDMETHODCALLTYPE GetIPortableDevicePropVariantCollectionValue(
      REFPROPERTYKEY key, IPortableDevicePropVariantCollection** value) override;
  HRESULT STDMETHODCALLTYPE SetIPortableDeviceKeyCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceKeyCollection* value) override;
  HRESULT STDMETHODCALLTYPE GetIPortableDeviceKeyCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceKeyCollection** value) override;
  HRESULT STDMETHODCALLTYPE SetIPortableDeviceValuesCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceValuesCollection* value) override;
  HRESULT STDMETHODCALLTYPE GetIPortableDeviceValuesCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceValuesCollection** value) override;
  HRESULT STDMETHODCALLTYPE RemoveValue(REFPROPERTYKEY key) override;
  HRESULT STDMETHODCALLTYPE CopyValuesFromPropertyStore(IPropertyStore* store) override;
  HRESULT STDMETHODCALLTYPE CopyValuesToPropertyStore(IPropertyStore* store) override;
  HRESULT STDMETHODCALLTYPE Clear() override;

 private:
  void OnDestroyed() override;
  /// Empties the set. What it held is released by the caller, outside the lock.
  KeyValues TakeAll();
  void Store(REFPROPERTYKEY key, Variant value);
  HRESULT Load(REFPROPERTYKEY key, Variant* value) const;
  HRESULT LoadTyped(REFPROPERTYKEY key, VARTYPE type, Variant* value) const;
  template <class Make>
  HRESULT Give(const char* method, REFPROPERTYKEY key, const Make& make);
  template <class Read, class Value>
  HRESULT Take(const char* method, REFPROPERTYKEY key, VARTYPE type, Value* value,
               const Read& read);
  template <class Interface>
  HRESULT TakeObject(const char* method, REFPROPERTYKEY key, Interface** value);

  mutable std::mutex mutex_;
  KeyValues values_;
};

/// The content of any implementation: of one of ours without a call of its interface, so that
/// only the driver's calls are recorded; of another through the interface.
HRESULT ReadValues(const World& world, IPortableDeviceValues& values, KeyValues* content);

/// The value of `key`, or null.
const Variant* FindValue(const KeyValues& values, const PROPERTYKEY& key);

}  // namespace bench
