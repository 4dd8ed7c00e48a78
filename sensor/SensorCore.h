// The sensor of one device: its worker thread, and all that the worker works with.
#pragma once

#include <string>

#include "at/ModemListener.h"
#include "base/ComObject.h"
#include "modem/ModemControl.h"
#include "sensor/DeviceValues.h"
#include "sensor/EventQueue.h"
#include "sensor/FixStore.h"
#include "sensor/LeadTimes.h"
#include "sensor/SensorDriver.h"
#include "sensor/SensorOutput.h"
#include "sensor/SensorStateMachine.h"
#include "sensor/Timers.h"

namespace stelvane {

/// Started once and stopped once by the device context. All decisions are taken on the worker
/// thread; every other thread posts events. Its ISensorDriver face shares its reference count.
class SensorCore final : public PlainObject, private ModemListener {
 public:
  HRESULT InitializeObject() override;

  /// Builds the modem control object, reads the device's values, opens the AT port, makes the
  /// sensor's id and starts the worker. The first failure is returned, and then no worker runs.
  HRESULT Start(IWDFDevice* device);
  /// Ends the worker, forgets the clients and closes the AT port; sends nothing to the modem, and
  /// drops the events still queued. Always S_OK.
  HRESULT Stop();
  /// Entry to the working power state: reading goes on, and so does what ran before. E_FAIL
  /// without a modem control object.
  HRESULT PowerUp();
  /// Exit from it: reading stops, nothing else changes.
  HRESULT PowerDown();

  /// Any thread.
  void PostSensorEvent(std::uint32_t event) noexcept { events_.Post(event); }
  void SetClassExtension(ISensorClassExtension* classExtension) {
    output_.SetClassExtension(classExtension);
  }
  ISensorDriver* DriverFace() { return &driver_; }

  /// Null before the start and after the stop. The pointer keeps the object alive, closed or not.
  ComPtr<ModemControl> Modem() EXCLUDES(modemLock_);
  SensorStateMachine& Machine() { return machine_; }
  FixStore& Fixes() { return fixes_; }
  LeadTimes& Leads() { return leadTimes_; }
  const DeviceValues& Values() const { return values_; }
  LPWSTR SensorId() const { return output_.SensorId(); }

 private:
  ~SensorCore() override = default;

  bool IsStopping() override { return stopEvent_.IsSet(); }
  bool IsLocationRequestOutstanding() override { return fixes_.IsRequestOutstanding(); }
  void OnLocationRequestStarting() override { fixes_.RequestStarts(); }
  void OnLocationRequestAccepted(bool periodic) override { fixes_.RequestAccepted(periodic); }
  void OnLocationRequestRefused() override { fixes_.RequestRefused(); }
  void OnLocationRequestStopped() override { fixes_.RequestStopped(); }
  void OnReportParsed(FixRecord fix) override { fixes_.StoreReport(std::move(fix)); }
  void OnFixComplete(std::string sentences) override;
  void OnLocationError() override { PostSensorEvent(EV_SINGLE_SHOT_ERROR_RECEIVED); }
  void OnEngineSwitchRead(bool on) override { PostSensorEvent(on ? EV_RADIO_ON : EV_RADIO_OFF); }

  static DWORD WINAPI WorkerEntry(void* core);
  void WorkerMain();
  void DrainQueue();
  template <class Work>
  void Guarded(const char* what, Work&& work);
  HRESULT Prepare(IWDFDevice* device, ModemControl& modem);
  void Resume(ModemControl& modem);

  EventQueue events_;
  Timers timers_;  // worker thread
  LeadTimes leadTimes_;
  FixStore fixes_;
  SensorOutput output_;
  SensorStateMachine machine_{{events_, timers_, leadTimes_, fixes_, output_}};
  DeviceValues values_;
  SensorDriver driver_{*this};

  CriticalSection modemLock_;
  ComPtr<ModemControl> modem_ GUARDED_BY(modemLock_);

  Event stopEvent_;
  Handle workerThread_;
};

}  // namespace stelvane
