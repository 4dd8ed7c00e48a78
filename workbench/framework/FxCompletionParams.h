// How a sent request ended.
#pragma once

#include "platform/WdfRequest.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxCompletionParams final : public FxUnknown<IWDFUsbRequestCompletionParams> {
 public:
  FxCompletionParams(const World& world, HRESULT status, ULONG_PTR information,
                     WDF_USB_REQUEST_TYPE type)
      : FxUnknown(world, "completion params"),
        status_(status),
        information_(information),
        type_(type) {}

  HRESULT STDMETHODCALLTYPE GetCompletionStatus() override {
    return Invoke("IWDFRequestCompletionParams::GetCompletionStatus", [this] { return status_; });
  }
  ULONG_PTR STDMETHODCALLTYPE GetInformation() override {
    return InvokeFor("IWDFRequestCompletionParams::GetInformation", ULONG_PTR{0},
                     [this] { return information_; });
  }
  WDF_REQUEST_TYPE STDMETHODCALLTYPE GetCompletedRequestType() override {
    return InvokeFor("IWDFRequestCompletionParams::GetCompletedRequestType", WdfRequestUndefined,
                     [] { return WdfRequestUsb; });
  }
  WDF_USB_REQUEST_TYPE STDMETHODCALLTYPE GetCompletedUsbRequestType() override {
    return InvokeFor("IWDFUsbRequestCompletionParams::GetCompletedUsbRequestType",
                     WdfUsbRequestTypeInvalid, [this] { return type_; });
  }
  void STDMETHODCALLTYPE GetDeviceControlTransferParameters(IWDFMemory**, ULONG*, SIZE_T*,
                                                            PWINUSB_SETUP_PACKET) override {
    Unexpected("IWDFUsbRequestCompletionParams::GetDeviceControlTransferParameters");
  }
  void STDMETHODCALLTYPE GetPipeWriteParameters(IWDFMemory**, SIZE_T*, SIZE_T*) override {
    Unexpected("IWDFUsbRequestCompletionParams::GetPipeWriteParameters");
  }
  void STDMETHODCALLTYPE GetPipeReadParameters(IWDFMemory**, SIZE_T*, SIZE_T*) override {
    Unexpected("IWDFUsbRequestCompletionParams::GetPipeReadParameters");
  }

 protected:
  void* Find(const GUID& iid) override {
    return Match<IWDFUsbRequestCompletionParams, IWDFRequestCompletionParams>(this, iid);
  }

 private:
  const HRESULT status_;
  const ULONG_PTR information_;
  const WDF_USB_REQUEST_TYPE type_;
};

}  // namespace bench
