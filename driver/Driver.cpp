#include "driver/Driver.h"

#include "driver/DeviceCallbacks.h"
#include "driver/Driver.trace.h"
#include "platform/WdfDevice.h"
#include "platform/WdfDriver.h"

namespace stelvane {

namespace {

// Repeated at rising levels, so that a listener sees some of it whatever level it enabled.
void TraceBanner() {
  TRACE(BannerRule);
  TRACE(BannerName);
  TRACE(BannerSecondRule);
  TRACE(BannerBuilt, __DATE__, __TIME__);
  TRACE(BannerCritical);
  TRACE(BannerError);
  TRACE(BannerWarning);
  TRACE(BannerInformation);
  TRACE(BannerVerbose);
}

// The device pointer is dropped at once: the device is found again when its hardware is prepared.
HRESULT CreateDevice(IWDFDriver* driver, IWDFDeviceInitialize* deviceInit,
                     const ComPtr<DeviceCallbacks>& callbacks) {
  deviceInit->SetLockingConstraint(WDF_CALLBACK_CONSTRAINT::None);
  deviceInit->SetPowerPolicyOwnership(TRUE);
  ComPtr<IUnknown> unknown;
  RETURN_IF_FAILED(callbacks.As(unknown), DeviceNotCreated);
  ComPtr<IWDFDevice> device;
  RETURN_IF_FAILED(driver->CreateDevice(deviceInit, unknown.Get(), device.Put()), DeviceNotCreated);
  return S_OK;
}

}  // namespace

HRESULT Driver::CreateInstance(REFIID iid, void** object) noexcept {
  ComPtr<Driver> driver;
  const HRESULT result = CreateObject(driver);
  return FAILED(result) ? result : driver->QueryInterface(iid, object);
}

HRESULT Driver::OnInitialize(IWDFDriver* driver) noexcept {
  TRACE(InitializeEntered);
  TRACE(InitializeLeft, S_OK);
  return S_OK;
}

HRESULT Driver::OnDeviceAdd(IWDFDriver* driver, IWDFDeviceInitialize* deviceInit) noexcept {
  TraceBanner();
  TRACE(DeviceAddEntered);
  ComPtr<DeviceCallbacks> callbacks;
  HRESULT result = CreateObject(callbacks);
  if (FAILED(result)) {
    TRACE(CallbacksNotMade, result);
  } else {
    result = CreateDevice(driver, deviceInit, callbacks);
  }
  TRACE(DeviceAddLeft, result);
  return result;
}

void Driver::OnDeinitialize(IWDFDriver* driver) noexcept {
  TRACE(DeinitializeEntered);
  TRACE(DeinitializeLeft);
}

}  // namespace stelvane
