#include "workbench/framework/FxUsbInterface.h"

#include "workbench/framework/FxUsbPipe.h"

namespace bench {

namespace {
constexpr UCHAR kInterfaceDescriptorType = 4;
}  // namespace

FxUsbInterface& FxUsbInterface::Create(const World& world, FxBase& parent, UsbFunction& usb,
                                       std::size_t index) {
  const InterfacePlan& plan = usb.plan().interfaces.at(index);
  auto& made = Make<FxUsbInterface>(world, &parent, plan, index);
  for (const EndpointPlan& endpoint : plan.endpoints) {
    made.pipes_.push_back(&FxUsbPipe::Create(world, made, usb, endpoint));
  }
  return made;
}

void FxUsbInterface::GetInterfaceDescriptor(PUSB_INTERFACE_DESCRIPTOR descriptor) {
  InvokeVoid("IWDFUsbInterface::GetInterfaceDescriptor", [&] {
    *descriptor = {};
    descriptor->bLength = sizeof *descriptor;
    descriptor->bDescriptorType = kInterfaceDescriptorType;
    descriptor->bInterfaceNumber = static_cast<UCHAR>(index_);
    descriptor->bNumEndpoints =
        plan_.claimedEndpoints.value_or(static_cast<UCHAR>(plan_.endpoints.size()));
  });
}

UCHAR FxUsbInterface::GetInterfaceNumber() {
  return InvokeFor("IWDFUsbInterface::GetInterfaceNumber", UCHAR{0},
                   [this] { return static_cast<UCHAR>(index_); });
}

UCHAR FxUsbInterface::GetNumEndPoints() {
  return InvokeFor("IWDFUsbInterface::GetNumEndPoints", UCHAR{0},
                   [this] { return static_cast<UCHAR>(pipes_.size()); });
}

UCHAR FxUsbInterface::GetConfiguredSettingIndex() {
  Unexpected("IWDFUsbInterface::GetConfiguredSettingIndex");
  return 0;
}

HRESULT FxUsbInterface::SelectSetting(UCHAR) {
  return Unexpected("IWDFUsbInterface::SelectSetting");
}

WINUSB_INTERFACE_HANDLE FxUsbInterface::GetWinUsbHandle() {
  Unexpected("IWDFUsbInterface::GetWinUsbHandle");
  return nullptr;
}

HRESULT FxUsbInterface::RetrieveUsbPipeObject(UCHAR pipeIndex, IWDFUsbTargetPipe** pipe) {
  return Invoke("IWDFUsbInterface::RetrieveUsbPipeObject", [&] {
    *pipe = nullptr;
    if (pipeIndex >= pipes_.size()) {
      Report(rule::kBadArgument, "RetrieveUsbPipeObject beyond the last pipe");
      return E_INVALIDARG;
    }
    pipes_[pipeIndex]->HandOut(pipe);
    return S_OK;
  });
}

}  // namespace bench
