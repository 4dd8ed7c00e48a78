// The driver host: loads a driver object and walks one device through its life.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "base/ComPtr.h"
#include "platform/WdfCallbacks.h"
#include "workbench/framework/ClientRequest.h"
#include "workbench/framework/DevicePlan.h"
#include "workbench/framework/World.h"
#include "workbench/modem/UsbLink.h"

struct IWDFFile;

namespace bench {

class FxDevice;
class FxDriver;
class UsbFunction;

/// Asks a class factory for the driver object as the host process does: for IDriverEntry, else for
/// IUnknown and from there. Null with the failure in `result`.
stelvane::ComPtr<IDriverEntry> LoadDriver(IClassFactory& factory, const World& world,
                                          HRESULT& result);

/// Each step calls the driver on the calling thread and returns its answer. A step out of the
/// framework's order is a mistake of the test and throws std::logic_error; `SurpriseRemoval` and
/// the requests may come from any thread at any time after AddDevice.
class Host {
 public:
  /// Clock, ledger, record and link must outlive the host.
  Host(Clock& clock, Ledger& ledger, CallRecord& calls, UsbLink& link, IDriverEntry* driver,
       DevicePlan plan = {});
  /// Takes the device away from the driver without further callbacks, if it is still there.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // ---- Steps.
  /// OnInitialize (the first time), then OnDeviceAdd. A device that was pulled out is in again.
  HRESULT AddDevice();
  HRESULT PrepareHardware();
  HRESULT D0Entry(WDF_POWER_DEVICE_STATE previousState);
  HRESULT SelfManagedIoInit();
  HRESULT SelfManagedIoSuspend();
  HRESULT D0Exit(WDF_POWER_DEVICE_STATE newState);
  HRESULT SelfManagedIoRestart();
  void SelfManagedIoFlush();
  void SelfManagedIoCleanup();
  HRESULT ReleaseHardware();
  /// The device is unplugged: transfers fail from now on, and the driver is told.
  void SurpriseRemoval();
  HRESULT QueryRemove();
  HRESULT QueryStop();
  /// Deletes the device object with everything in it. Requests still open are abandoned.
  void RemoveDevice();
  /// OnDeinitialize, and the last reference to the driver object; then what the driver still holds
  /// is reported as leaked.
  void Unload();

  // ---- Sequences.
  /// Prepare, D0 entry, self-managed I/O init. Stops at the first failure, unwinds, returns it.
  HRESULT Start();
  /// From whatever state on: suspend, D0 exit, flush, cleanup, release; nothing for a device that
  /// never started or has stopped. The first failure.
  HRESULT Stop();
  /// Suspend and D0 exit.
  HRESULT PowerDown(WDF_POWER_DEVICE_STATE newState = WdfPowerDeviceD3);
  /// D0 entry and restart.
  HRESULT PowerUp(WDF_POWER_DEVICE_STATE previousState = WdfPowerDeviceD3);

  struct StepResult {
    std::string step;
    HRESULT result;
  };
  /// Every step so far with the driver's answer (S_OK for those that return nothing).
  std::vector<StepResult> Steps() const;

  // ---- Clients.
  enum class Dispatch { kFrameworkThread, kCallingThread };
  /// Presents an I/O-control request to the default queue. Without a queue it fails at once.
  ClientRequest SendIoControl(ULONG code, std::string_view input, std::size_t outputSize,
                              IWDFFile* file = nullptr,
                              Dispatch dispatch = Dispatch::kFrameworkThread);
  /// A client's handle; valid until CleanupFile.
  IWDFFile* OpenFile();
  /// Tells the driver that the handle was closed, then drops the file object.
  void CleanupFile(IWDFFile* file);
  /// Requests that the driver has not completed yet.
  std::size_t OpenRequests() const;

  // ---- What a test looks at or does to the device.
  /// Null while there is no device. No reference is added.
  FxDevice* device() const { return device_; }
  FxDriver& driver() const { return *fxDriver_; }
  UsbFunction& usb() { return *usb_; }
  const World& world() const { return world_; }

 private:
  enum class State {
    kNoDevice,
    kAdded,
    kPrepareFailed,
    kPrepared,
    kD0EntryFailed,
    kWorking,  // in D0, self-managed I/O not running
    kRunning,  // in D0 with self-managed I/O
    kPoweredDown,
    kFlushed,
    kCleanedUp,
    kReleased,
    kUnloaded,
  };

  void Expect(std::string_view step, std::initializer_list<State> legal) const;
  template <class Call>
  HRESULT Step(std::string_view step, Call call);
  /// A step of the way down, which may fail only for a device that the driver cannot reach: it is
  /// unplugged, or has no open USB target.
  template <class Call>
  HRESULT StepDown(std::string_view step, Call call);
  template <class Call>
  void StepVoid(std::string_view step, Call call);

  const World world_;
  const DevicePlan plan_;
  std::unique_ptr<UsbFunction> usb_;
  stelvane::ComPtr<IDriverEntry> entry_;
  FxDriver* fxDriver_ = nullptr;
  std::atomic<FxDevice*> device_{nullptr};
  State state_ = State::kNoDevice;
  bool initialized_ = false;
  bool ioInitialized_ = false;
  mutable std::mutex stepsLock_;
  std::vector<StepResult> steps_;
};

}  // namespace bench
