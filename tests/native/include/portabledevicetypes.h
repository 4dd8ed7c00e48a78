// The containers of property values, with all slots in the platform's order.
#pragma once

#include <propsys.h>

struct IPortableDeviceKeyCollection;
struct IPortableDevicePropVariantCollection;
struct IPortableDeviceValuesCollection;

struct IPortableDeviceValues : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key, PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, const PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetStringValue(REFPROPERTYKEY key, LPCWSTR value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetStringValue(REFPROPERTYKEY key, LPWSTR* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetUnsignedIntegerValue(REFPROPERTYKEY key, ULONG value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetUnsignedIntegerValue(REFPROPERTYKEY key, ULONG* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetSignedIntegerValue(REFPROPERTYKEY key, LONG value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSignedIntegerValue(REFPROPERTYKEY key, LONG* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetUnsignedLargeIntegerValue(REFPROPERTYKEY key,
                                                                 ULONGLONG value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetUnsignedLargeIntegerValue(REFPROPERTYKEY key,
                                                                 ULONGLONG* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetSignedLargeIntegerValue(REFPROPERTYKEY key,
                                                               LONGLONG value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSignedLargeIntegerValue(REFPROPERTYKEY key,
                                                               LONGLONG* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetFloatValue(REFPROPERTYKEY key, FLOAT value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetFloatValue(REFPROPERTYKEY key, FLOAT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetErrorValue(REFPROPERTYKEY key, HRESULT value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetErrorValue(REFPROPERTYKEY key, HRESULT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetKeyValue(REFPROPERTYKEY key, REFPROPERTYKEY value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetKeyValue(REFPROPERTYKEY key, PROPERTYKEY* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetBoolValue(REFPROPERTYKEY key, BOOL value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBoolValue(REFPROPERTYKEY key, BOOL* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetIUnknownValue(REFPROPERTYKEY key, IUnknown* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIUnknownValue(REFPROPERTYKEY key, IUnknown** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetGuidValue(REFPROPERTYKEY key, REFGUID value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetGuidValue(REFPROPERTYKEY key, GUID* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetBufferValue(REFPROPERTYKEY key, BYTE* value, DWORD size) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBufferValue(REFPROPERTYKEY key, BYTE** value,
                                                   DWORD* size) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetIPortableDeviceValuesValue(REFPROPERTYKEY key,
                                                                  IPortableDeviceValues* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  GetIPortableDeviceValuesValue(REFPROPERTYKEY key, IPortableDeviceValues** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetIPortableDevicePropVariantCollectionValue(
      REFPROPERTYKEY key, IPortableDevicePropVariantCollection* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIPortableDevicePropVariantCollectionValue(
      REFPROPERTYKEY key, IPortableDevicePropVariantCollection** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  SetIPortableDeviceKeyCollectionValue(REFPROPERTYKEY key, IPortableDeviceKeyCollection* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIPortableDeviceKeyCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceKeyCollection** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetIPortableDeviceValuesCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceValuesCollection* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIPortableDeviceValuesCollectionValue(
      REFPROPERTYKEY key, IPortableDeviceValuesCollection** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveValue(REFPROPERTYKEY key) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyValuesFromPropertyStore(IPropertyStore* store) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyValuesToPropertyStore(IPropertyStore* store) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
};

struct IPortableDevicePropVariantCollection : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE Add(const PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetType(VARTYPE* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE ChangeType(VARTYPE type) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveAt(DWORD index) = 0;
};

struct IPortableDeviceKeyCollection : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) = 0;
  virtual HRESULT STDMETHODCALLTYPE Add(REFPROPERTYKEY key) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveAt(DWORD index) = 0;
};

struct IPortableDeviceValuesCollection : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAt(DWORD index, IPortableDeviceValues** values) = 0;
  virtual HRESULT STDMETHODCALLTYPE Add(IPortableDeviceValues* values) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveAt(DWORD index) = 0;
};
