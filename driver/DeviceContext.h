// What a started device owns: the framework device, the class extension and the sensor core.
#pragma once

#include <atomic>

#include "base/ComObject.h"
#include "driver/DeviceCallbacks.h"
#include "platform/SensorClassExtension.h"
#include "platform/WdfDevice.h"
#include "platform/WdfRequest.h"
#include "sensor/SensorCore.h"

namespace stelvane {

/// Made when hardware is prepared, released when it is released. The device callbacks' guard keeps
/// start, stop and the forwarding calls apart; stopping the core is serialised by a lock.
class DeviceContext final : public PlainObject {
 public:
  HRESULT InitializeObject() override;

  /// Takes the device and the owner; E_UNEXPECTED once the class extension is ready.
  HRESULT Attach(IWDFDevice* device, DeviceCallbacks* owner) EXCLUDES(lock_);
  /// Starts the sensor core, worker and AT channel included, and then the class extension. On a
  /// failure what was built stays, for the two calls below.
  HRESULT StartSensor() EXCLUDES(lock_);
  /// Stops the core once; further calls do nothing, with success.
  HRESULT StopSensorCore() EXCLUDES(lock_);
  void ReleaseClassExtension();

  /// E_FAIL without a sensor core.
  HRESULT PowerUp();
  HRESULT PowerDown();

  void PostSensorEvent(std::uint32_t event);
  void SetIoActive(bool active) { ioActive_ = active; }

  /// Hands a Sensor API request to the class extension, which completes it.
  void ProcessIoControl(IWDFIoRequest* request);
  void CleanupFile(IWDFFile* file);
  /// Handles one of the driver's own control codes; completing the request is the caller's.
  HRESULT HandlePrivateIoControl(IWDFIoRequest* request, ULONG controlCode);

 private:
  HRESULT StartSensorCore();
  HRESULT CreateClassExtension();
  HRESULT EnableDeviceInterface();

  ComPtr<SensorCore> Core() EXCLUDES(partnersLock_);
  ComPtr<ISensorClassExtension> ClassExtension() EXCLUDES(partnersLock_);

  ComPtr<IWDFDevice> device_;
  // Requests take their own references: the guard's bits are shared by parallel requests, so the
  // last of them may still be inside when a shutdown goes on.
  SlimLock partnersLock_;
  ComPtr<ISensorClassExtension> classExtension_ GUARDED_BY(partnersLock_);
  ComPtr<SensorCore> sensorCore_ GUARDED_BY(partnersLock_);
  ComPtr<DeviceCallbacks> owner_ GUARDED_BY(partnersLock_);
  CriticalSection lock_;
  bool sensorStopped_ GUARDED_BY(lock_) = false;
  bool classExtensionReady_ = false;
  std::atomic<bool> ioActive_{false};
};

}  // namespace stelvane
