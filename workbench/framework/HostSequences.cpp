// The host's sequences: its steps in the framework's order.
#include "workbench/framework/Host.h"

namespace bench {

HRESULT Host::Start() {
  HRESULT result = PrepareHardware();
  if (SUCCEEDED(result)) result = D0Entry(WdfPowerDeviceD3Final);
  if (SUCCEEDED(result)) result = SelfManagedIoInit();
  if (FAILED(result)) Stop();
  return result;
}

HRESULT Host::Stop() {
  if (state_ == State::kAdded || state_ == State::kReleased) return S_OK;
  HRESULT first = S_OK;
  const auto keep = [&first](HRESULT result) {
    if (SUCCEEDED(first)) first = result;
  };
  if (state_ == State::kRunning) keep(SelfManagedIoSuspend());
  if (state_ == State::kWorking) keep(D0Exit(WdfPowerDeviceD3Final));
  if (ioInitialized_ && (state_ == State::kPoweredDown || state_ == State::kD0EntryFailed)) {
    SelfManagedIoFlush();
    SelfManagedIoCleanup();
  }
  keep(ReleaseHardware());
  return first;
}

HRESULT Host::PowerDown(WDF_POWER_DEVICE_STATE newState) {
  const HRESULT suspended = SelfManagedIoSuspend();
  const HRESULT exited = D0Exit(newState);
  return FAILED(suspended) ? suspended : exited;
}

HRESULT Host::PowerUp(WDF_POWER_DEVICE_STATE previousState) {
  const HRESULT result = D0Entry(previousState);
  return FAILED(result) ? result : SelfManagedIoRestart();
}

}  // namespace bench
