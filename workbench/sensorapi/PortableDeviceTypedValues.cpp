// The typed accessors of PortableDeviceValues: each names its variant type and field.
#include <cstring>
#include <span>
#include <utility>

#include "workbench/sensorapi/PortableDeviceValues.h"

template <>
inline constexpr GUID iidOf<IPortableDevicePropVariantCollection> = {
    0x89b2e422, 0x4f1b, 0x4316, {0xbc, 0xef, 0xa4, 0x4a, 0xfe, 0xa8, 0x3e, 0xb3}};

namespace bench {

template <class Read, class Value>
HRESULT PortableDeviceValues::Take(const char* method, REFPROPERTYKEY key, VARTYPE type,
                                   Value* value, const Read& read) {
  return Call(method, [&] {
    if (value == nullptr) return E_POINTER;
    Variant found;
    const HRESULT result = LoadTyped(key, type, &found);
    *value = SUCCEEDED(result) ? read(found) : Value{};
    return result;
  });
}

template <class Make>
HRESULT PortableDeviceValues::Give(const char* method, REFPROPERTYKEY key, const Make& make) {
  return Call(method, [&] {
    Store(key, make());
    return S_OK;
  });
}

template <class Interface>
HRESULT PortableDeviceValues::TakeObject(const char* method, REFPROPERTYKEY key,
                                         Interface** value) {
  return Call(method, [&] {
    if (value == nullptr) return E_POINTER;
    *value = nullptr;
    Variant found;
    const HRESULT result = LoadTyped(key, VT_UNKNOWN, &found);
    IUnknown* const object = found.Get().punkVal;
    if (FAILED(result) || object == nullptr) return result;
    const HRESULT asked = object->QueryInterface(iidOf<Interface>, reinterpret_cast<void**>(value));
    return SUCCEEDED(asked) ? S_OK : DISP_E_TYPEMISMATCH;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetStringValue(REFPROPERTYKEY key, LPCWSTR value) {
  if (value == nullptr) return Call("SetStringValue", [] { return E_POINTER; });
  return Give("SetStringValue", key, [&] { return Variant::String(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetStringValue(REFPROPERTYKEY key, LPWSTR* value) {
  return Take("GetStringValue", key, VT_LPWSTR, value,
              [](Variant& found) { return found.Detach().pwszVal; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetUnsignedIntegerValue(REFPROPERTYKEY key,
                                                                        ULONG value) {
  return Give("SetUnsignedIntegerValue", key, [&] { return Variant::Ui4(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetUnsignedIntegerValue(REFPROPERTYKEY key,
                                                                        ULONG* value) {
  return Take("GetUnsignedIntegerValue", key, VT_UI4, value,
              [](Variant& found) { return found.Get().ulVal; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetSignedIntegerValue(REFPROPERTYKEY key,
                                                                      LONG value) {
  return Give("SetSignedIntegerValue", key, [&] { return Variant::I4(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetSignedIntegerValue(REFPROPERTYKEY key,
                                                                      LONG* value) {
  return Take("GetSignedIntegerValue", key, VT_I4, value,
              [](Variant& found) { return found.Get().lVal; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetUnsignedLargeIntegerValue(REFPROPERTYKEY key,
                                                                             ULONGLONG value) {
  return Give("SetUnsignedLargeIntegerValue", key, [&] { return Variant::Ui8(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetUnsignedLargeIntegerValue(REFPROPERTYKEY key,
                                                                             ULONGLONG* value) {
  return Take("GetUnsignedLargeIntegerValue", key, VT_UI8, value,
              [](Variant& found) { return found.Get().uhVal.QuadPart; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetSignedLargeIntegerValue(REFPROPERTYKEY key,
                                                                           LONGLONG value) {
  return Give("SetSignedLargeIntegerValue", key, [&] { return Variant::I8(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetSignedLargeIntegerValue(REFPROPERTYKEY key,
                                                                           LONGLONG* value) {
  return Take("GetSignedLargeIntegerValue", key, VT_I8, value,
              [](Variant& found) { return found.Get().hVal.QuadPart; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetFloatValue(REFPROPERTYKEY key, FLOAT value) {
  return Give("SetFloatValue", key, [&] { return Variant::R4(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetFloatValue(REFPROPERTYKEY key, FLOAT* value) {
  return Take("GetFloatValue", key, VT_R4, value,
              [](Variant& found) { return found.Get().fltVal; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetErrorValue(REFPROPERTYKEY key, HRESULT value) {
  return Give("SetErrorValue", key, [&] { return Variant::Error(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetErrorValue(REFPROPERTYKEY key, HRESULT* value) {
  return Take("GetErrorValue", key, VT_ERROR, value,
              [](Variant& found) { return found.Get().scode; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetKeyValue(REFPROPERTYKEY key,
                                                            REFPROPERTYKEY value) {
  return Give("SetKeyValue", key, [&] {
    return Variant::Bytes({reinterpret_cast<const BYTE*>(&value), sizeof value});
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetKeyValue(REFPROPERTYKEY key,
                                                            PROPERTYKEY* value) {
  return Call("GetKeyValue", [&] {
    if (value == nullptr) return E_POINTER;
    Variant found;
    const HRESULT result = LoadTyped(key, kBytes, &found);
    if (FAILED(result)) return result;
    const std::span<const BYTE> bytes = BytesOf(found.Get());
    if (bytes.size() != sizeof *value) return DISP_E_TYPEMISMATCH;
    std::memcpy(value, bytes.data(), sizeof *value);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetBoolValue(REFPROPERTYKEY key, BOOL value) {
  return Give("SetBoolValue", key, [&] { return Variant::Bool(value != FALSE); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetBoolValue(REFPROPERTYKEY key, BOOL* value) {
  return Take("GetBoolValue", key, VT_BOOL, value,
              [](Variant& found) { return found.Get().boolVal != VARIANT_FALSE ? TRUE : FALSE; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetGuidValue(REFPROPERTYKEY key, REFGUID value) {
  return Give("SetGuidValue", key, [&] { return Variant::Guid(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetGuidValue(REFPROPERTYKEY key, GUID* value) {
  return Take("GetGuidValue", key, VT_CLSID, value,
              [](Variant& found) { return *found.Get().puuid; });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetBufferValue(REFPROPERTYKEY key, BYTE* bytes,
                                                               DWORD count) {
  if (bytes == nullptr && count != 0) return Call("SetBufferValue", [] { return E_POINTER; });
  return Give("SetBufferValue", key, [&] { return Variant::Bytes({bytes, count}); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetBufferValue(REFPROPERTYKEY key, BYTE** bytes,
                                                               DWORD* count) {
  return Call("GetBufferValue", [&] {
    if (bytes == nullptr || count == nullptr) return E_POINTER;
    Variant found;
    const HRESULT result = LoadTyped(key, kBytes, &found);
    const PROPVARIANT taken = SUCCEEDED(result) ? found.Detach() : PROPVARIANT{};
    *bytes = taken.caub.pElems;
    *count = taken.caub.cElems;
    return result;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetIUnknownValue(REFPROPERTYKEY key,
                                                                 IUnknown* value) {
  return Give("SetIUnknownValue", key, [&] { return Variant::Object(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetIUnknownValue(REFPROPERTYKEY key,
                                                                 IUnknown** value) {
  return TakeObject("GetIUnknownValue", key, value);
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetIPortableDeviceValuesValue(
    REFPROPERTYKEY key, IPortableDeviceValues* value) {
  return Give("SetIPortableDeviceValuesValue", key, [&] { return Variant::Object(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetIPortableDeviceValuesValue(
    REFPROPERTYKEY key, IPortableDeviceValues** value) {
  return TakeObject("GetIPortableDeviceValuesValue", key, value);
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetIPortableDevicePropVariantCollectionValue(
    REFPROPERTYKEY key, IPortableDevicePropVariantCollection* value) {
  return Give("SetIPortableDevicePropVariantCollectionValue", key,
              [&] { return Variant::Object(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetIPortableDevicePropVariantCollectionValue(
    REFPROPERTYKEY key, IPortableDevicePropVariantCollection** value) {
  return TakeObject("GetIPortableDevicePropVariantCollectionValue", key, value);
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetIPortableDeviceKeyCollectionValue(
    REFPROPERTYKEY key, IPortableDeviceKeyCollection* value) {
  return Give("SetIPortableDeviceKeyCollectionValue", key, [&] { return Variant::Object(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetIPortableDeviceKeyCollectionValue(
    REFPROPERTYKEY key, IPortableDeviceKeyCollection** value) {
  return TakeObject("GetIPortableDeviceKeyCollectionValue", key, value);
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetIPortableDeviceValuesCollectionValue(
    REFPROPERTYKEY key, IPortableDeviceValuesCollection* value) {
  return Give("SetIPortableDeviceValuesCollectionValue", key,
              [&] { return Variant::Object(value); });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetIPortableDeviceValuesCollectionValue(
    REFPROPERTYKEY key, IPortableDeviceValuesCollection** value) {
  return TakeObject("GetIPortableDeviceValuesCollectionValue", key, value);
}

}  // namespace bench
