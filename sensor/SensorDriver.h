// The sensor as the class extension calls it.
#pragma once

#include <unknwn.h>

#include "base/ComPtr.h"
#include "base/Sync.h"
#include "platform/PortableDevices.h"
#include "platform/SensorClassExtension.h"
#include "sensor/FixStore.h"

namespace stelvane {

class SensorCore;

/// The ISensorDriver face of the sensor core, part of it and counted with it. Calls come on the
/// class extension's threads; they touch the state machine only by posting events.
class SensorDriver final : public ISensorDriver {
 public:
  explicit SensorDriver(SensorCore& core) : core_(core) {}
  SensorDriver(const SensorDriver&) = delete;
  SensorDriver& operator=(const SensorDriver&) = delete;
  HRESULT Initialize() { return clientLock_.Initialize(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override;
  ULONG STDMETHODCALLTYPE Release() noexcept override;

  HRESULT STDMETHODCALLTYPE
  OnGetSupportedSensorObjects(IPortableDeviceValuesCollection** objects) noexcept override;
  HRESULT STDMETHODCALLTYPE OnGetSupportedProperties(
      LPWSTR sensorId, IPortableDeviceKeyCollection** keyCollection) noexcept override;
  HRESULT STDMETHODCALLTYPE OnGetSupportedDataFields(
      LPWSTR sensorId, IPortableDeviceKeyCollection** keyCollection) noexcept override;
  HRESULT STDMETHODCALLTYPE OnGetSupportedEvents(LPWSTR sensorId, GUID** events,
                                                 ULONG* count) noexcept override;
  HRESULT STDMETHODCALLTYPE OnGetProperties(IWDFFile* client, LPWSTR sensorId,
                                            IPortableDeviceKeyCollection* properties,
                                            IPortableDeviceValues** values) noexcept override;
  HRESULT STDMETHODCALLTYPE OnGetDataFields(IWDFFile* client, LPWSTR sensorId,
                                            IPortableDeviceKeyCollection* fields,
                                            IPortableDeviceValues** values) noexcept override;
  HRESULT STDMETHODCALLTYPE OnSetProperties(IWDFFile* client, LPWSTR sensorId,
                                            IPortableDeviceValues* values,
                                            IPortableDeviceValues** results) noexcept override;
  HRESULT STDMETHODCALLTYPE OnClientConnect(IWDFFile* client, LPWSTR sensorId) noexcept override;
  HRESULT STDMETHODCALLTYPE OnClientDisconnect(IWDFFile* client, LPWSTR sensorId) noexcept override;
  HRESULT STDMETHODCALLTYPE OnClientSubscribeToEvents(IWDFFile* client,
                                                      LPWSTR sensorId) noexcept override;
  HRESULT STDMETHODCALLTYPE OnClientUnsubscribeFromEvents(IWDFFile* client,
                                                          LPWSTR sensorId) noexcept override;
  HRESULT STDMETHODCALLTYPE OnProcessWmi(IUnknown* params, IUnknown* results) noexcept override;

 private:
  enum class Freshness { kFresh, kTimedOut, kNotReady };
  Freshness AwaitFreshData();
  HRESULT GiveSensorObjects(IPortableDeviceValuesCollection** objects);
  HRESULT GiveFields(IPortableDeviceKeyCollection* fields, IPortableDeviceValues** values);
  HRESULT ReadFields(IPortableDeviceKeyCollection* fields,
                     const ComPtr<IPortableDeviceValues>& values);
  HRESULT SetSubscribed(IWDFFile* client, bool subscribed);

  SensorCore& core_;
  CriticalSection clientLock_;  // serialises connect and disconnect
};

}  // namespace stelvane
