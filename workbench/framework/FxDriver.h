// The framework's driver object: root of the object tree, maker of devices and memory.
#pragma once

#include "platform/WdfDriver.h"
#include "workbench/framework/DevicePlan.h"
#include "workbench/framework/FxObject.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

class FxDevice;

class FxDriver final : public FxObject<IWDFDriver> {
 public:
  /// `plan` and `usb` describe every device that the driver creates.
  FxDriver(const World& world, const DevicePlan& plan, UsbFunction& usb)
      : FxObject(world, "driver", DeletedBy::kFramework), plan_(plan), usb_(usb) {}

  /// The device that the driver created since the last call; null if none.
  FxDevice* TakeCreatedDevice() { return std::exchange(created_, nullptr); }

  HRESULT STDMETHODCALLTYPE CreateDevice(IWDFDeviceInitialize* deviceInit,
                                         IUnknown* callbackInterface, IWDFDevice** device) override;
  HRESULT STDMETHODCALLTYPE CreateWdfObject(IUnknown* callbackInterface, IWDFObject* parentObject,
                                            IWDFObject** object) override;
  HRESULT STDMETHODCALLTYPE CreatePreallocatedWdfMemory(BYTE* buffer, SIZE_T bufferSize,
                                                        IUnknown* callbackInterface,
                                                        IWDFObject* parentObject,
                                                        IWDFMemory** memory) override;
  HRESULT STDMETHODCALLTYPE CreateWdfMemory(SIZE_T bufferSize, IUnknown* callbackInterface,
                                            IWDFObject* parentObject, IWDFMemory** memory) override;
  BOOL STDMETHODCALLTYPE IsVersionAvailable(UMDF_VERSION_DATA* minimumVersion) override;
  HRESULT STDMETHODCALLTYPE RetrieveVersionString(PWSTR version, DWORD* chars) override;

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFDriver, IWDFObject>(this, iid); }

 private:
  const DevicePlan& plan_;
  UsbFunction& usb_;
  FxDevice* created_ = nullptr;
};

}  // namespace bench
