// The sensor class extension: stands between the driver and the Sensor API's clients.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/SensorClassExtension.h"
#include "workbench/sensorapi/ApiObject.h"
#include "workbench/sensorapi/SensorRequest.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

/// One class extension object. Broken rules go to the ledger; the call then fails. No lock is held
/// while it calls the driver or the service.
class ClassExtension final : public ApiObject<ISensorClassExtension> {
 public:
  ClassExtension(const World& world, SensorService& service);
  ~ClassExtension() override;

  /// Carries a client's request to the driver, on the calling thread. Not a call of the interface.
  SensorAnswer Serve(IWDFFile* file, const SensorRequest& request);
  /// What CleanupFile does, for a client that does not come through the driver.
  HRESULT Disconnect(IWDFFile* file);
  /// The sensor that the driver announced; empty when it announced none.
  std::string SensorId() const;

  HRESULT STDMETHODCALLTYPE Initialize(IUnknown* device, IUnknown* sensorDriver) override;
  HRESULT STDMETHODCALLTYPE Uninitialize() override;
  HRESULT STDMETHODCALLTYPE ProcessIoControl(IWDFIoRequest* request) override;
  /// Nobody subscribed: HRESULT_FROM_WIN32(ERROR_OBJECT_NOT_FOUND).
  HRESULT STDMETHODCALLTYPE PostEvent(LPWSTR sensorId,
                                      IPortableDeviceValuesCollection* events) override;
  HRESULT STDMETHODCALLTYPE PostStateChange(LPWSTR sensorId, SensorState state) override;
  HRESULT STDMETHODCALLTYPE CleanupFile(IWDFFile* file) override;

 private:
  enum class State { kNew, kInitialized, kUninitialized };
  struct Client {
    bool subscribed = false;
  };
  /// What a call to the driver needs, taken under the lock.
  struct Driver {
    ComPtr<ISensorDriver> callbacks;
    std::vector<WCHAR> sensorId;
  };

  void OnDestroyed() override;
  /// Lets go of the driver and the device; says which state it was in.
  State End();
  HRESULT Begin(IUnknown* device, ComPtr<ISensorDriver> callbacks, std::vector<WCHAR> sensorId);
  HRESULT Enumerate(ISensorDriver& callbacks, std::vector<WCHAR>* sensorId);
  /// The driver, when this is initialized.
  bool Running(Driver* driver) const;
  /// The driver, when this is initialized; otherwise a broken rule of `method`.
  HRESULT Ready(std::string_view method);
  HRESULT CheckSensor(std::string_view method, const WCHAR* sensorId);
  HRESULT CheckEvent(const KeyValues& values, bench::Report* report);
  std::vector<IWDFFile*> Subscribers() const;

  HRESULT Connect(Driver& driver, IWDFFile* file);
  HRESULT Subscribe(Driver& driver, IWDFFile* file);
  HRESULT Unsubscribe(Driver& driver, IWDFFile* file);
  SensorAnswer ServeValues(Driver& driver, IWDFFile* file, const SensorRequest& request);
  SensorAnswer ServeKeys(Driver& driver, SensorOperation operation);
  SensorAnswer ServeEvents(Driver& driver);
  bool IsClient(IWDFFile* file) const;
  void SetSubscribed(IWDFFile* file, bool subscribed);

  SensorService& service_;
  mutable std::mutex mutex_;
  State state_ = State::kNew;
  ComPtr<IUnknown> device_;
  Driver driver_;
  std::map<IWDFFile*, Client> clients_;
};

}  // namespace bench
