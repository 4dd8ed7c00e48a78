// The record that a driver fills before it creates its device.
#pragma once

#include <atomic>

#include "platform/WdfDriver.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxDeviceInit final : public FxUnknown<IWDFDeviceInitialize> {
 public:
  explicit FxDeviceInit(const World& world) : FxUnknown(world, "device init") {}

  struct Choices {
    WDF_CALLBACK_CONSTRAINT lockingConstraint = WDF_CALLBACK_CONSTRAINT::WdfDeviceLevel;
    bool ownsPowerPolicy = false;
  };
  const Choices& choices() const { return choices_; }
  /// True the first time: one record makes one device.
  bool Use() { return !used_.exchange(true); }

  void STDMETHODCALLTYPE SetFilter() override { Unexpected("IWDFDeviceInitialize::SetFilter"); }
  void STDMETHODCALLTYPE SetLockingConstraint(WDF_CALLBACK_CONSTRAINT lockType) override {
    InvokeVoid("IWDFDeviceInitialize::SetLockingConstraint",
               [&] { choices_.lockingConstraint = lockType; });
  }
  HRESULT STDMETHODCALLTYPE RetrieveDevicePropertyStore(PCWSTR, WDF_PROPERTY_STORE_RETRIEVE_FLAGS,
                                                        IWDFNamedPropertyStore**,
                                                        WDF_PROPERTY_STORE_DISPOSITION*) override {
    return Unexpected("IWDFDeviceInitialize::RetrieveDevicePropertyStore");
  }
  void STDMETHODCALLTYPE SetPowerPolicyOwnership(BOOL own) override {
    InvokeVoid("IWDFDeviceInitialize::SetPowerPolicyOwnership",
               [&] { choices_.ownsPowerPolicy = own != FALSE; });
  }
  void STDMETHODCALLTYPE AutoForwardCreateCleanupClose(WDF_TRI_STATE) override {
    Unexpected("IWDFDeviceInitialize::AutoForwardCreateCleanupClose");
  }
  HRESULT STDMETHODCALLTYPE RetrieveDeviceInstanceId(PWSTR, DWORD*) override {
    return Unexpected("IWDFDeviceInitialize::RetrieveDeviceInstanceId");
  }
  void STDMETHODCALLTYPE SetPnpCapability(WDF_PNP_CAPABILITY, WDF_TRI_STATE) override {
    Unexpected("IWDFDeviceInitialize::SetPnpCapability");
  }
  WDF_TRI_STATE STDMETHODCALLTYPE GetPnpCapability(WDF_PNP_CAPABILITY) override {
    Unexpected("IWDFDeviceInitialize::GetPnpCapability");
    return WdfUseDefault;
  }

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFDeviceInitialize>(this, iid); }

 private:
  Choices choices_;
  std::atomic<bool> used_{false};
};

}  // namespace bench
