#include "at/ModemPort.h"

#include <atomic>

#include "at/ModemPort.trace.h"
#include "platform/WdfRequest.h"

namespace stelvane {

namespace {

constexpr SIZE_T kReadLength = 4096;  // bytes a read asks for
constexpr UCHAR kPendingReads = 1;
constexpr UCHAR kAtPortEndpoints = 2;

// The USB target device of the open port. It holds no reference: the framework's object tree keeps
// the device until Close deletes it.
constinit std::atomic<IWDFUsbTargetDevice*> usbTargetDevice{nullptr};

// CDC SET_CONTROL_LINE_STATE to interface 0, with DTR and RTS asserted: it wakes the command port.
WINUSB_SETUP_PACKET ControlLineState() {
  WINUSB_SETUP_PACKET packet = {};
  packet.RequestType = 0x21;
  packet.Request = 0x22;
  packet.Value = 0x0003;
  return packet;
}

HRESULT Complete(IWDFIoRequest* request, IWDFUsbTargetDevice* usbDevice) {
  WINUSB_SETUP_PACKET packet = ControlLineState();
  RETURN_IF_FAILED(usbDevice->FormatRequestForControlTransfer(request, &packet, nullptr, nullptr),
                   ControlRequestNotFormatted);
  RETURN_IF_FAILED(request->Send(usbDevice, WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0),
                   ControlRequestNotSent);
  ComPtr<IWDFRequestCompletionParams> params;
  request->GetCompletionParams(params.Put());
  RETURN_IF_FAILED(params ? params->GetCompletionStatus() : E_FAIL, ControlRequestRefused);
  return S_OK;
}

HRESULT SendControlLineRequest(IWDFDevice* device, IWDFUsbTargetDevice* usbDevice) {
  ComPtr<IWDFIoRequest> request;
  RETURN_IF_FAILED(device->CreateRequest(nullptr, usbDevice, request.Put()),
                   ControlRequestNotCreated);
  const HRESULT result = Complete(request.Get(), usbDevice);
  request->DeleteWdfObject();
  return result;
}

HRESULT ConfigureReader(const ComPtr<IWDFUsbTargetPipe>& pipe, IUnknown* readers) {
  ComPtr<IWDFUsbTargetPipe2> reader;
  RETURN_IF_FAILED(pipe.As(reader), ReaderInterfaceMissing);
  const ComPtr<IUnknown> callbacks(readers);
  ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> onComplete;
  RETURN_IF_FAILED(callbacks.As(onComplete), ReaderInterfaceMissing);
  ComPtr<IUsbTargetPipeContinuousReaderCallbackReadersFailed> onFailure;
  RETURN_IF_FAILED(callbacks.As(onFailure), ReaderInterfaceMissing);
  RETURN_IF_FAILED(reader->ConfigureContinuousReader(kReadLength, 0, 0, kPendingReads, nullptr,
                                                     onComplete.Get(), nullptr, onFailure.Get()),
                   ReaderFailed);
  return S_OK;
}

}  // namespace

HRESULT ModemPort::Open(IWDFDevice* device, IUnknown* readers) {
  ComPtr<IWDFUsbTargetFactory> factory;
  RETURN_IF_FAILED(ComPtr<IWDFDevice>(device).As(factory), UsbFactoryMissing);
  ComPtr<IWDFUsbTargetDevice> usbDevice;
  RETURN_IF_FAILED(factory->CreateUsbTargetDevice(usbDevice.Put()), UsbTargetFailed);
  usbTargetDevice = usbDevice.Get();
  const UCHAR interfaces = usbDevice->GetNumInterfaces();

  HRESULT result = SendControlLineRequest(device, usbDevice.Get());
  if (SUCCEEDED(result)) result = SearchInterfaces(usbDevice.Get(), interfaces, readers);
  // The framework gives out one USB device at a time: kept, it would bar every later opening.
  if (FAILED(result)) Close();
  TRACE(PortOpened, result);
  return result;
}

void ModemPort::Close() {
  ComPtr<IWDFUsbTargetPipe> in;
  ComPtr<IWDFUsbTargetPipe> out;
  {
    const ScopedLock lock(lock_);
    in = std::move(bulkInPipe_);
    out = std::move(bulkOutPipe_);
  }
  in.Reset();
  out.Reset();
  if (IWDFUsbTargetDevice* const device = usbTargetDevice.exchange(nullptr); device != nullptr) {
    if (const HRESULT result = device->DeleteWdfObject(); FAILED(result)) {
      TRACE(DeleteFailed, result);
    }
  }
}

ComPtr<IWDFUsbTargetPipe> ModemPort::InPipe() {
  const ScopedLock lock(lock_);
  return bulkInPipe_;
}

ComPtr<IWDFUsbTargetPipe> ModemPort::OutPipe() {
  const ScopedLock lock(lock_);
  return bulkOutPipe_;
}

HRESULT ModemPort::SearchInterfaces(IWDFUsbTargetDevice* usbDevice, UCHAR count,
                                    IUnknown* readers) {
  for (UCHAR index = 0; index < count; ++index) {
    ComPtr<IWDFUsbInterface> usbInterface;
    RETURN_IF_FAILED(usbDevice->RetrieveUsbInterface(index, usbInterface.Put()), InterfaceFailed);
    USB_INTERFACE_DESCRIPTOR descriptor = {};
    usbInterface->GetInterfaceDescriptor(&descriptor);
    if (descriptor.bNumEndpoints != kAtPortEndpoints) continue;
    if (const HRESULT result = TakePipes(usbInterface.Get()); FAILED(result)) return result;
    const ComPtr<IWDFUsbTargetPipe> in = InPipe();
    if (in && OutPipe()) return ConfigureReader(in, readers);
  }
  TRACE(NoAtPort, ULONG{count});
  return kNoAtPort;
}

HRESULT ModemPort::TakePipes(IWDFUsbInterface* usbInterface) {
  const UCHAR count = usbInterface->GetNumEndPoints();
  for (UCHAR index = 0; index < count; ++index) {
    ComPtr<IWDFUsbTargetPipe> pipe;
    RETURN_IF_FAILED(usbInterface->RetrieveUsbPipeObject(index, pipe.Put()), PipeFailed);
    TakePipe(index, pipe.Get());
  }
  return S_OK;
}

void ModemPort::TakePipe(UCHAR index, IWDFUsbTargetPipe* pipe) {
  const bool isIn = pipe->IsInEndPoint() && pipe->GetType() == UsbdPipeTypeBulk;
  const bool isOut = !isIn && pipe->IsOutEndPoint() && pipe->GetType() == UsbdPipeTypeBulk;
  if (!isIn && !isOut) return;
  {
    const ScopedLock lock(lock_);
    ComPtr<IWDFUsbTargetPipe>& place = isIn ? bulkInPipe_ : bulkOutPipe_;
    if (!place) {
      place = ComPtr<IWDFUsbTargetPipe>(pipe);
      return;
    }
  }
  TRACE(ExtraPipe, ULONG{index});
}

}  // namespace stelvane
