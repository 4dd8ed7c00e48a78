// A driver's sensor callbacks as a test wants them.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/SensorClassExtension.h"
#include "workbench/framework/World.h"
#include "workbench/sensorapi/ApiObject.h"
#include "workbench/sensorapi/PortableDeviceCollections.h"

namespace bench {

inline constexpr const char* kFakeSensorId = "{33F98580-15DF-4AB0-8F2D-5842D5A209C3}";

/// Notes each callback as "Name" with its client's number in order of connection, answers
/// properties from `properties`, takes only those keys, and reads data from `data` after
/// `readDelay`.
class FakeSensorDriver final : public ApiObject<ISensorDriver> {
 public:
  explicit FakeSensorDriver(const World& world)
      : ApiObject(world, "fake driver", "ISensorDriver") {}

  std::vector<std::string> Log() const;

  // Set before use, then only read.
  std::string sensorId = kFakeSensorId;
  bool givesObjects = true;
  KeyValues data;
  Millis readDelay = 0;
  std::map<std::string, HRESULT> results;  // by callback; S_OK for others

  /// Guarded by the fake's lock once clients use it.
  KeyValues properties;

  HRESULT STDMETHODCALLTYPE
  OnGetSupportedSensorObjects(IPortableDeviceValuesCollection** objects) override;
  HRESULT STDMETHODCALLTYPE OnGetSupportedProperties(LPWSTR sensor,
                                                     IPortableDeviceKeyCollection** keys) override;
  HRESULT STDMETHODCALLTYPE OnGetSupportedDataFields(LPWSTR sensor,
                                                     IPortableDeviceKeyCollection** keys) override;
  HRESULT STDMETHODCALLTYPE OnGetSupportedEvents(LPWSTR sensor, GUID** events,
                                                 ULONG* count) override;
  HRESULT STDMETHODCALLTYPE OnGetProperties(IWDFFile* client, LPWSTR sensor,
                                            IPortableDeviceKeyCollection* keys,
                                            IPortableDeviceValues** values) override;
  HRESULT STDMETHODCALLTYPE OnGetDataFields(IWDFFile* client, LPWSTR sensor,
                                            IPortableDeviceKeyCollection* keys,
                                            IPortableDeviceValues** values) override;
  HRESULT STDMETHODCALLTYPE OnSetProperties(IWDFFile* client, LPWSTR sensor,
                                            IPortableDeviceValues* values,
                                            IPortableDeviceValues** answers) override;
  HRESULT STDMETHODCALLTYPE OnClientConnect(IWDFFile* client, LPWSTR sensor) override;
  HRESULT STDMETHODCALLTYPE OnClientDisconnect(IWDFFile* client, LPWSTR sensor) override;
  HRESULT STDMETHODCALLTYPE OnClientSubscribeToEvents(IWDFFile* client, LPWSTR sensor) override;
  HRESULT STDMETHODCALLTYPE OnClientUnsubscribeFromEvents(IWDFFile* client, LPWSTR sensor) override;
  HRESULT STDMETHODCALLTYPE OnProcessWmi(IUnknown*, IUnknown*) override { return S_OK; }

 private:
  HRESULT Note(const std::string& callback, IWDFFile* client, LPWSTR sensor);
  HRESULT Pick(const KeyValues& from, IPortableDeviceKeyCollection* keys,
               IPortableDeviceValues** values);

  mutable std::mutex mutex_;
  std::vector<IWDFFile*> clients_;
  std::vector<std::string> log_;
};

}  // namespace bench
