#include "workbench/framework/FxUsbDevice.h"

#include "workbench/framework/FxSentRequest.h"
#include "workbench/framework/FxUsbInterface.h"

namespace bench {

FxUsbDevice& FxUsbDevice::Create(const World& world, FxBase& parent, UsbFunction& usb) {
  auto& device = Make<FxUsbDevice>(world, &parent, usb);
  device.file_ = &Make<FxFile>(world, &device, "target file");
  for (std::size_t index = 0; index < usb.plan().interfaces.size(); ++index) {
    device.interfaces_.push_back(&FxUsbInterface::Create(world, device, usb, index));
  }
  return device;
}

void FxUsbDevice::GetTargetFile(IWDFFile** file) {
  *file = nullptr;
  InvokeVoid("IWDFIoTarget::GetTargetFile", [&] { file_->HandOut(file); });
}

void FxUsbDevice::CancelSentRequestsForFile(IWDFFile*) {
  Unexpected("IWDFIoTarget::CancelSentRequestsForFile");
}

HRESULT FxUsbDevice::FormatRequestForRead(IWDFIoRequest*, IWDFFile*, IWDFMemory*, PWDFMEMORY_OFFSET,
                                          PLONGLONG) {
  return Unexpected("IWDFIoTarget::FormatRequestForRead");
}

HRESULT FxUsbDevice::FormatRequestForWrite(IWDFIoRequest*, IWDFFile*, IWDFMemory*,
                                           PWDFMEMORY_OFFSET, PLONGLONG) {
  return Unexpected("IWDFIoTarget::FormatRequestForWrite");
}

HRESULT FxUsbDevice::FormatRequestForIoctl(IWDFIoRequest*, ULONG, IWDFFile*, IWDFMemory*,
                                           PWDFMEMORY_OFFSET, IWDFMemory*, PWDFMEMORY_OFFSET) {
  return Unexpected("IWDFIoTarget::FormatRequestForIoctl");
}

WINUSB_INTERFACE_HANDLE FxUsbDevice::GetWinUsbHandle() {
  Unexpected("IWDFUsbTargetDevice::GetWinUsbHandle");
  return nullptr;
}

UCHAR FxUsbDevice::GetNumInterfaces() {
  return InvokeFor("IWDFUsbTargetDevice::GetNumInterfaces", UCHAR{0},
                   [this] { return static_cast<UCHAR>(interfaces_.size()); });
}

HRESULT FxUsbDevice::RetrieveUsbInterface(UCHAR interfaceIndex, IWDFUsbInterface** usbInterface) {
  return Invoke("IWDFUsbTargetDevice::RetrieveUsbInterface", [&] {
    *usbInterface = nullptr;
    if (interfaceIndex >= interfaces_.size()) {
      Report(rule::kBadArgument, "RetrieveUsbInterface beyond the last interface");
      return E_INVALIDARG;
    }
    interfaces_[interfaceIndex]->HandOut(usbInterface);
    return S_OK;
  });
}

HRESULT FxUsbDevice::FormatRequestForControlTransfer(IWDFIoRequest* request,
                                                     PWINUSB_SETUP_PACKET setupPacket,
                                                     IWDFMemory* memory,
                                                     PWDFMEMORY_OFFSET transferOffset) {
  return Invoke("IWDFUsbTargetDevice::FormatRequestForControlTransfer", [&] {
    auto* const formatted = FindObject<FxSentRequest>(request);
    if (formatted == nullptr) return E_INVALIDARG;
    if (memory != nullptr || transferOffset != nullptr || setupPacket->Length != 0) {
      Report(rule::kBadFormat, "a control transfer with a data stage");
      return E_INVALIDARG;
    }
    formatted->Format({.target = this,
                       .type = WdfUsbRequestTypeDeviceControlTransfer,
                       .control = {.requestType = setupPacket->RequestType,
                                   .request = setupPacket->Request,
                                   .value = setupPacket->Value,
                                   .index = setupPacket->Index,
                                   .length = setupPacket->Length}});
    return S_OK;
  });
}

HRESULT FxUsbDevice::RetrieveDeviceInformation(ULONG, ULONG*, PVOID) {
  return Unexpected("IWDFUsbTargetDevice::RetrieveDeviceInformation");
}

HRESULT FxUsbDevice::RetrieveDescriptor(UCHAR, UCHAR, USHORT, ULONG*, PVOID) {
  return Unexpected("IWDFUsbTargetDevice::RetrieveDescriptor");
}

HRESULT FxUsbDevice::RetrievePowerPolicy(ULONG, ULONG*, PVOID) {
  return Unexpected("IWDFUsbTargetDevice::RetrievePowerPolicy");
}

HRESULT FxUsbDevice::SetPowerPolicy(ULONG, ULONG, PVOID) {
  return Unexpected("IWDFUsbTargetDevice::SetPowerPolicy");
}

}  // namespace bench
