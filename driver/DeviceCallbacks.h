// One device's callbacks: Plug and Play, power, self-managed I/O and file cleanup.
#pragma once

#include "base/ComObject.h"
#include "driver/ShutdownGuard.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfRequest.h"

namespace stelvane {

class DeviceContext;

/// Made when the device is added, given to the framework as the device's callback object. The
/// framework may run several of its callbacks at once, on its own threads: there is no locking
/// constraint, and the guard is what they meet at. Once a shutdown has begun every guarded
/// callback answers kShutdownInProgress; only power-down and suspend still act, which is meant.
class DeviceCallbacks final : public ComObject<IPnpCallback, IPnpCallbackHardware,
                                               IPnpCallbackSelfManagedIo, IFileCallbackCleanup> {
 public:
  DeviceCallbacks();

  HRESULT STDMETHODCALLTYPE OnD0Entry(IWDFDevice* device,
                                      WDF_POWER_DEVICE_STATE previousState) noexcept override;
  HRESULT STDMETHODCALLTYPE OnD0Exit(IWDFDevice* device,
                                     WDF_POWER_DEVICE_STATE newState) noexcept override;
  void STDMETHODCALLTYPE OnSurpriseRemoval(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnQueryRemove(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnQueryStop(IWDFDevice* device) noexcept override;

  HRESULT STDMETHODCALLTYPE OnPrepareHardware(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnReleaseHardware(IWDFDevice* device) noexcept override;

  void STDMETHODCALLTYPE OnSelfManagedIoCleanup(IWDFDevice* device) noexcept override;
  void STDMETHODCALLTYPE OnSelfManagedIoFlush(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoInit(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoSuspend(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoRestart(IWDFDevice* device) noexcept override;
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoStop(IWDFDevice* device) noexcept override;

  void STDMETHODCALLTYPE OnCleanupFile(IWDFFile* file) noexcept override;

  ShutdownGuard& Guard() { return guard_; }
  /// Null until hardware is prepared and after it was released.
  ComPtr<DeviceContext> Context() EXCLUDES(contextLock_);
  /// The place of the default queue, for the one who creates it; null when somebody else had.
  ComPtr<IWDFIoQueue>& Queue() { return queue_; }

 private:
  ~DeviceCallbacks() override;
  HRESULT Prepare(IWDFDevice* device);
  HRESULT MakeContext() EXCLUDES(contextLock_);

  ShutdownGuard guard_;
  SlimLock contextLock_;
  ComPtr<DeviceContext> context_ GUARDED_BY(contextLock_);
  ComPtr<IWDFIoQueue> queue_;
};

}  // namespace stelvane
