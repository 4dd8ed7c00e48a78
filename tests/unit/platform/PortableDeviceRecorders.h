// Recording implementations of the portable-device containers.
#pragma once

#include "platform/PortableDevices.h"
#include "tests/unit/platform/Recorder.h"

namespace platform_test {

template <class Interface = IPortableDeviceValues>
struct PortableDeviceValuesRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetCount, DWORD*);
  RECORD(HRESULT, GetAt, DWORD, PROPERTYKEY*, PROPVARIANT*);
  RECORD(HRESULT, SetValue, REFPROPERTYKEY, const PROPVARIANT*);
  RECORD(HRESULT, GetValue, REFPROPERTYKEY, PROPVARIANT*);
  RECORD(HRESULT, SetStringValue, REFPROPERTYKEY, LPCWSTR);
  RECORD(HRESULT, GetStringValue, REFPROPERTYKEY, LPWSTR*);
  RECORD(HRESULT, SetUnsignedIntegerValue, REFPROPERTYKEY, ULONG);
  RECORD(HRESULT, GetUnsignedIntegerValue, REFPROPERTYKEY, ULONG*);
  RECORD(HRESULT, SetSignedIntegerValue, REFPROPERTYKEY, LONG);
  RECORD(HRESULT, GetSignedIntegerValue, REFPROPERTYKEY, LONG*);
  RECORD(HRESULT, SetUnsignedLargeIntegerValue, REFPROPERTYKEY, ULONGLONG);
  RECORD(HRESULT, GetUnsignedLargeIntegerValue, REFPROPERTYKEY, ULONGLONG*);
  RECORD(HRESULT, SetSignedLargeIntegerValue, REFPROPERTYKEY, LONGLONG);
  RECORD(HRESULT, GetSignedLargeIntegerValue, REFPROPERTYKEY, LONGLONG*);
  RECORD(HRESULT, SetFloatValue, REFPROPERTYKEY, FLOAT);
  RECORD(HRESULT, GetFloatValue, REFPROPERTYKEY, FLOAT*);
  RECORD(HRESULT, SetErrorValue, REFPROPERTYKEY, HRESULT);
  RECORD(HRESULT, GetErrorValue, REFPROPERTYKEY, HRESULT*);
  RECORD(HRESULT, SetKeyValue, REFPROPERTYKEY, REFPROPERTYKEY);
  RECORD(HRESULT, GetKeyValue, REFPROPERTYKEY, PROPERTYKEY*);
  RECORD(HRESULT, SetBoolValue, REFPROPERTYKEY, BOOL);
  RECORD(HRESULT, GetBoolValue, REFPROPERTYKEY, BOOL*);
  RECORD(HRESULT, SetIUnknownValue, REFPROPERTYKEY, IUnknown*);
  RECORD(HRESULT, GetIUnknownValue, REFPROPERTYKEY, IUnknown**);
  RECORD(HRESULT, SetGuidValue, REFPROPERTYKEY, REFGUID);
  RECORD(HRESULT, GetGuidValue, REFPROPERTYKEY, GUID*);
  RECORD(HRESULT, SetBufferValue, REFPROPERTYKEY, BYTE*, DWORD);
  RECORD(HRESULT, GetBufferValue, REFPROPERTYKEY, BYTE**, DWORD*);
  RECORD(HRESULT, SetIPortableDeviceValuesValue, REFPROPERTYKEY, IPortableDeviceValues*);
  RECORD(HRESULT, GetIPortableDeviceValuesValue, REFPROPERTYKEY, IPortableDeviceValues**);
  RECORD(HRESULT, SetIPortableDevicePropVariantCollectionValue, REFPROPERTYKEY,
         IPortableDevicePropVariantCollection*);
  RECORD(HRESULT, GetIPortableDevicePropVariantCollectionValue, REFPROPERTYKEY,
         IPortableDevicePropVariantCollection**);
  RECORD(HRESULT, SetIPortableDeviceKeyCollectionValue, REFPROPERTYKEY,
         IPortableDeviceKeyCollection*);
  RECORD(HRESULT, GetIPortableDeviceKeyCollectionValue, REFPROPERTYKEY,
         IPortableDeviceKeyCollection**);
  RECORD(HRESULT, SetIPortableDeviceValuesCollectionValue, REFPROPERTYKEY,
         IPortableDeviceValuesCollection*);
  RECORD(HRESULT, GetIPortableDeviceValuesCollectionValue, REFPROPERTYKEY,
         IPortableDeviceValuesCollection**);
  RECORD(HRESULT, RemoveValue, REFPROPERTYKEY);
  RECORD(HRESULT, CopyValuesFromPropertyStore, IPropertyStore*);
  RECORD(HRESULT, CopyValuesToPropertyStore, IPropertyStore*);
  RECORD(HRESULT, Clear);
};

template <class Interface = IPortableDeviceKeyCollection>
struct PortableDeviceKeyCollectionRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetCount, DWORD*);
  RECORD(HRESULT, GetAt, DWORD, PROPERTYKEY*);
  RECORD(HRESULT, Add, REFPROPERTYKEY);
  RECORD(HRESULT, Clear);
  RECORD(HRESULT, RemoveAt, DWORD);
};

template <class Interface = IPortableDevicePropVariantCollection>
struct PortableDevicePropVariantCollectionRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetCount, DWORD*);
  RECORD(HRESULT, GetAt, DWORD, PROPVARIANT*);
  RECORD(HRESULT, Add, const PROPVARIANT*);
  RECORD(HRESULT, GetType, VARTYPE*);
  RECORD(HRESULT, ChangeType, VARTYPE);
  RECORD(HRESULT, Clear);
  RECORD(HRESULT, RemoveAt, DWORD);
};

template <class Interface = IPortableDeviceValuesCollection>
struct PortableDeviceValuesCollectionRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetCount, DWORD*);
  RECORD(HRESULT, GetAt, DWORD, IPortableDeviceValues**);
  RECORD(HRESULT, Add, IPortableDeviceValues*);
  RECORD(HRESULT, Clear);
  RECORD(HRESULT, RemoveAt, DWORD);
};

}  // namespace platform_test
