// The class extension that speaks to Sensor API clients on the driver's behalf.
#pragma once

#include <sensorsapi.h>
#include <unknwn.h>

#include "platform/Iid.h"

struct IPortableDeviceKeyCollection;
struct IPortableDeviceValues;
struct IPortableDeviceValuesCollection;
struct IWDFFile;
struct IWDFIoRequest;

struct ISensorDriver : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE
  OnGetSupportedSensorObjects(IPortableDeviceValuesCollection** sensorObjectCollection) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  OnGetSupportedProperties(LPWSTR sensorId, IPortableDeviceKeyCollection** supportedProperties) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  OnGetSupportedDataFields(LPWSTR sensorId, IPortableDeviceKeyCollection** supportedDataFields) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnGetSupportedEvents(LPWSTR sensorId, GUID** supportedEvents,
                                                         ULONG* eventCount) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnGetProperties(IWDFFile* clientFile, LPWSTR sensorId,
                                                    IPortableDeviceKeyCollection* properties,
                                                    IPortableDeviceValues** propertyValues) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnGetDataFields(IWDFFile* clientFile, LPWSTR sensorId,
                                                    IPortableDeviceKeyCollection* dataFields,
                                                    IPortableDeviceValues** dataValues) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnSetProperties(IWDFFile* clientFile, LPWSTR sensorId,
                                                    IPortableDeviceValues* propertiesToSet,
                                                    IPortableDeviceValues** results) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnClientConnect(IWDFFile* clientFile, LPWSTR sensorId) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnClientDisconnect(IWDFFile* clientFile, LPWSTR sensorId) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnClientSubscribeToEvents(IWDFFile* clientFile,
                                                              LPWSTR sensorId) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnClientUnsubscribeFromEvents(IWDFFile* clientFile,
                                                                  LPWSTR sensorId) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnProcessWmi(IUnknown* params, IUnknown* results) = 0;
};
template <>
inline constexpr GUID iidOf<ISensorDriver> = {
    0xd262b6ba, 0x87cc, 0x495d, {0xb6, 0x39, 0x93, 0x9e, 0xf8, 0x53, 0xbd, 0x3b}};

struct ISensorClassExtension : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Initialize(IUnknown* device, IUnknown* sensorDriver) = 0;
  virtual HRESULT STDMETHODCALLTYPE Uninitialize() = 0;
  virtual HRESULT STDMETHODCALLTYPE ProcessIoControl(IWDFIoRequest* request) = 0;
  virtual HRESULT STDMETHODCALLTYPE PostEvent(LPWSTR sensorId,
                                              IPortableDeviceValuesCollection* eventCollection) = 0;
  virtual HRESULT STDMETHODCALLTYPE PostStateChange(LPWSTR sensorId, SensorState state) = 0;
  virtual HRESULT STDMETHODCALLTYPE CleanupFile(IWDFFile* file) = 0;
};
template <>
inline constexpr GUID iidOf<ISensorClassExtension> = {
    0xa31253ba, 0x6f73, 0x4bc9, {0xab, 0xaa, 0x26, 0xc8, 0x83, 0x3c, 0x58, 0xff}};

namespace clsid {
inline constexpr GUID kSensorClassExtension = {
    0x6101f767, 0x998e, 0x452b, {0xb5, 0x4a, 0xe8, 0x36, 0xdd, 0x48, 0x6b, 0xad}};
}  // namespace clsid
