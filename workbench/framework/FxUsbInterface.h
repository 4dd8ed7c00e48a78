// One interface of the USB function, as the plan describes it.
#pragma once

#include <vector>

#include "platform/WdfUsb.h"
#include "workbench/framework/FxObject.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

class FxUsbPipe;

class FxUsbInterface final : public FxObject<IWDFUsbInterface> {
 public:
  /// Makes the interface with all its pipes.
  static FxUsbInterface& Create(const World& world, FxBase& parent, UsbFunction& usb,
                                std::size_t index);
  FxUsbInterface(const World& world, const InterfacePlan& plan, std::size_t index)
      : FxObject(world, "usb interface", DeletedBy::kFramework), plan_(plan), index_(index) {}

  FxUsbPipe& PipeAt(std::size_t index) const { return *pipes_.at(index); }

  /// Fills in the descriptor, with the endpoint number that the plan claims.
  void STDMETHODCALLTYPE GetInterfaceDescriptor(PUSB_INTERFACE_DESCRIPTOR descriptor) override;
  UCHAR STDMETHODCALLTYPE GetInterfaceNumber() override;
  UCHAR STDMETHODCALLTYPE GetNumEndPoints() override;
  UCHAR STDMETHODCALLTYPE GetConfiguredSettingIndex() override;
  HRESULT STDMETHODCALLTYPE SelectSetting(UCHAR settingNumber) override;
  WINUSB_INTERFACE_HANDLE STDMETHODCALLTYPE GetWinUsbHandle() override;
  HRESULT STDMETHODCALLTYPE RetrieveUsbPipeObject(UCHAR pipeIndex,
                                                  IWDFUsbTargetPipe** pipe) override;

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFUsbInterface, IWDFObject>(this, iid); }

 private:
  const InterfacePlan& plan_;
  const std::size_t index_;
  std::vector<FxUsbPipe*> pipes_;
};

}  // namespace bench
