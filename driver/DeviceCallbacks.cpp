#include "driver/DeviceCallbacks.h"

#include "driver/DeviceCallbacks.trace.h"
#include "driver/DeviceContext.h"
#include "driver/DeviceDescription.h"
#include "driver/Module.h"
#include "driver/QueueCallback.h"
#include "sensor/Events.h"

namespace stelvane {

namespace {

constexpr ULONG kIdleTimeoutMs = 100;

// The device leaves and enters idle only as the engine is used; a failure is no reason not to run.
void ApplyIdleSettings() {
  WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS settings = {};
  settings.Size = sizeof(settings);
  settings.IdleCaps = IdleCannotWakeFromS0;
  settings.DxState = PowerDeviceD3;
  settings.IdleTimeout = kIdleTimeoutMs;
  settings.UserControlOfIdleSettings = IdleAllowUserControl;
  settings.Enabled = WdfFalse;
  settings.PowerUpIdleDeviceOnSystemWake = WdfUseDefault;
  settings.ExcludeD3Cold = WdfFalse;  // later frameworks read the same number as system-managed
  const ComPtr<IWDFDevice> device = ModuleDevice();
  ComPtr<IWDFDevice3> idleControl;
  HRESULT result = device ? device.As(idleControl) : E_POINTER;
  if (SUCCEEDED(result)) result = idleControl->AssignS0IdleSettingsEx(&settings);
  TRACE(IdleSettingsApplied, result);
}

}  // namespace

DeviceCallbacks::DeviceCallbacks() = default;
DeviceCallbacks::~DeviceCallbacks() = default;

ComPtr<DeviceContext> DeviceCallbacks::Context() {
  const ScopedLock lock(contextLock_);
  return context_;
}

HRESULT DeviceCallbacks::OnPrepareHardware(IWDFDevice* device) noexcept {
  TRACE(PrepareHardwareEntered);
  HRESULT result = E_UNEXPECTED;
  if (device == nullptr) {
    TRACE(NoDevice);
  } else {
    const CallbackScope scope(guard_, kHardwarePreparation);
    result = scope.Result();
    if (SUCCEEDED(result)) result = Prepare(device);
  }
  TRACE(PrepareHardwareLeft, result);
  return result;
}

HRESULT DeviceCallbacks::Prepare(IWDFDevice* device) {
  if (device != ModuleDevice().Get()) SetModuleDevice(device);
  if (const HRESULT queued = EnsureDefaultQueue(this); FAILED(queued)) {
    TRACE(NoDefaultQueue, queued);
  }
  HRESULT result = MakeContext();
  if (SUCCEEDED(result)) result = CheckDeviceDescription(device);
  if (SUCCEEDED(result)) {
    result = Context()->StartSensor();
    if (FAILED(result)) TRACE(SensorNotStarted, result);
  }
  TRACE(HardwarePrepared, result);
  return result;
}

HRESULT DeviceCallbacks::MakeContext() {
  ComPtr<DeviceContext> context;
  const HRESULT result = CreateObject(context);
  {
    const ScopedLock lock(contextLock_);
    // A previous context is overwritten without being released; it is meant.
    static_cast<void>(context_.Detach());
    context_ = context;
  }
  if (!context) {
    // Whatever kept it from being made: the preparation fails with E_POINTER.
    TRACE(ContextNotMade, result);
    return E_POINTER;
  }
  return context->Attach(ModuleDevice().Get(), this);
}

HRESULT DeviceCallbacks::OnReleaseHardware(IWDFDevice* device) noexcept {
  TRACE(ReleaseHardwareEntered);
  guard_.BeginShutdown();
  HRESULT result = S_OK;
  ComPtr<DeviceContext> context = Context();
  if (context) {
    result = context->StopSensorCore();
    context->ReleaseClassExtension();
    ComPtr<DeviceContext> released;
    const ScopedLock lock(contextLock_);
    std::swap(released, context_);
  }
  context.Reset();
  if (device == ModuleDevice().Get()) SetModuleDevice(nullptr);
  TRACE(ReleaseHardwareLeft, result);
  return result;
}

HRESULT DeviceCallbacks::OnD0Entry(IWDFDevice* device,
                                   WDF_POWER_DEVICE_STATE previousState) noexcept {
  TRACE(D0EntryEntered, static_cast<ULONG>(previousState));
  const CallbackScope scope(guard_, kPowerTransition);
  HRESULT result = scope.Result();
  if (SUCCEEDED(result)) {
    if (const ComPtr<DeviceContext> context = Context(); context) {
      result = context->PowerUp();
      if (FAILED(result)) TRACE(PowerUpFailed, result);
    }
  }
  TRACE(D0EntryLeft, result);
  return result;
}

HRESULT DeviceCallbacks::OnD0Exit(IWDFDevice* device, WDF_POWER_DEVICE_STATE newState) noexcept {
  TRACE(D0ExitEntered, static_cast<ULONG>(newState));
  const CallbackScope scope(guard_, kPowerTransition);
  HRESULT result = scope.Result();
  // Unlike power-up, a shutdown does not keep this out; it is meant.
  if (const ComPtr<DeviceContext> context = Context(); context) result = context->PowerDown();
  TRACE(D0ExitLeft, result);
  return result;
}

void DeviceCallbacks::OnSurpriseRemoval(IWDFDevice* device) noexcept {
  TRACE(SurpriseRemovalEntered);
  guard_.BeginShutdown();
  TRACE(SurpriseRemovalLeft);
}

HRESULT DeviceCallbacks::OnQueryRemove(IWDFDevice* device) noexcept {
  TRACE(QueryRemoveEntered);
  TRACE(QueryRemoveLeft, S_OK);
  return S_OK;
}

HRESULT DeviceCallbacks::OnQueryStop(IWDFDevice* device) noexcept {
  TRACE(QueryStopEntered);
  TRACE(QueryStopLeft, S_OK);
  return S_OK;
}

HRESULT DeviceCallbacks::OnSelfManagedIoInit(IWDFDevice* device) noexcept {
  TRACE(IoInitEntered);
  const CallbackScope scope(guard_, kSelfManagedIo);
  if (SUCCEEDED(scope.Result())) {
    if (const ComPtr<DeviceContext> context = Context(); context) {
      context->SetIoActive(true);
      context->PostSensorEvent(EV_INIT);
      ApplyIdleSettings();
    }
  }
  TRACE(IoInitLeft, scope.Result());
  return scope.Result();
}

HRESULT DeviceCallbacks::OnSelfManagedIoRestart(IWDFDevice* device) noexcept {
  TRACE(IoRestartEntered);
  const CallbackScope scope(guard_, kSelfManagedIo);
  if (SUCCEEDED(scope.Result())) {
    if (const ComPtr<DeviceContext> context = Context(); context) context->SetIoActive(true);
  }
  TRACE(IoRestartLeft, scope.Result());
  return scope.Result();
}

HRESULT DeviceCallbacks::OnSelfManagedIoSuspend(IWDFDevice* device) noexcept {
  TRACE(IoSuspendEntered);
  const CallbackScope scope(guard_, kSelfManagedIo);
  // Also in a shutdown; it is meant.
  if (const ComPtr<DeviceContext> context = Context(); context) {
    context->SetIoActive(false);
    if (queue_) {
      queue_->StopSynchronously();
      queue_->Start();
    }
  }
  TRACE(IoSuspendLeft, scope.Result());
  return scope.Result();
}

void DeviceCallbacks::OnSelfManagedIoFlush(IWDFDevice* device) noexcept {
  TRACE(IoFlushEntered);
  const CallbackScope scope(guard_, kSelfManagedIo);
  if (SUCCEEDED(scope.Result()) && queue_) queue_->PurgeSynchronously();
  TRACE(IoFlushLeft);
}

void DeviceCallbacks::OnSelfManagedIoCleanup(IWDFDevice* device) noexcept {
  TRACE(IoCleanupEntered);
  TRACE(IoCleanupLeft);
}

HRESULT DeviceCallbacks::OnSelfManagedIoStop(IWDFDevice* device) noexcept {
  TRACE(IoStopEntered);
  TRACE(IoStopLeft, S_OK);
  return S_OK;
}

void DeviceCallbacks::OnCleanupFile(IWDFFile* file) noexcept {
  TRACE(CleanupFileEntered, file);
  const CallbackScope scope(guard_, kFileCleanup);
  if (SUCCEEDED(scope.Result())) {
    if (const ComPtr<DeviceContext> context = Context(); context) context->CleanupFile(file);
  }
  TRACE(CleanupFileLeft);
}

}  // namespace stelvane
