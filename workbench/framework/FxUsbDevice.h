// The USB target: the control pipe, and the way to the interfaces.
#pragma once

#include <vector>

#include "platform/WdfUsb.h"
#include "workbench/framework/FxFile.h"
#include "workbench/framework/FxObject.h"
#include "workbench/framework/Transfer.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

class FxUsbInterface;

class FxUsbDevice final : public FxObject<IWDFUsbTargetDevice>, public TransferTarget {
 public:
  /// Makes the target with all its interfaces and pipes.
  static FxUsbDevice& Create(const World& world, FxBase& parent, UsbFunction& usb);
  FxUsbDevice(const World& world, UsbFunction& usb)
      : FxObject(world, "usb device", DeletedBy::kDriver), usb_(usb) {}

  FxUsbInterface& InterfaceAt(std::size_t index) const { return *interfaces_.at(index); }

  HRESULT AcceptsSend() const override { return S_OK; }
  HRESULT CarryOut(const Transfer& transfer) override { return usb_.Control(transfer.control); }

  // IWDFIoTarget
  void STDMETHODCALLTYPE GetTargetFile(IWDFFile** file) override;
  void STDMETHODCALLTYPE CancelSentRequestsForFile(IWDFFile* file) override;
  HRESULT STDMETHODCALLTYPE FormatRequestForRead(IWDFIoRequest* request, IWDFFile* file,
                                                 IWDFMemory* outputMemory,
                                                 PWDFMEMORY_OFFSET outputMemoryOffset,
                                                 PLONGLONG deviceOffset) override;
  HRESULT STDMETHODCALLTYPE FormatRequestForWrite(IWDFIoRequest* request, IWDFFile* file,
                                                  IWDFMemory* inputMemory,
                                                  PWDFMEMORY_OFFSET inputMemoryOffset,
                                                  PLONGLONG deviceOffset) override;
  HRESULT STDMETHODCALLTYPE FormatRequestForIoctl(IWDFIoRequest* request, ULONG ioctlCode,
                                                  IWDFFile* file, IWDFMemory* inputMemory,
                                                  PWDFMEMORY_OFFSET inputMemoryOffset,
                                                  IWDFMemory* outputMemory,
                                                  PWDFMEMORY_OFFSET outputMemoryOffset) override;
  // IWDFUsbTargetDevice
  WINUSB_INTERFACE_HANDLE STDMETHODCALLTYPE GetWinUsbHandle() override;
  UCHAR STDMETHODCALLTYPE GetNumInterfaces() override;
  HRESULT STDMETHODCALLTYPE RetrieveUsbInterface(UCHAR interfaceIndex,
                                                 IWDFUsbInterface** usbInterface) override;
  /// Only transfers without a data stage.
  HRESULT STDMETHODCALLTYPE
  FormatRequestForControlTransfer(IWDFIoRequest* request, PWINUSB_SETUP_PACKET setupPacket,
                                  IWDFMemory* memory, PWDFMEMORY_OFFSET transferOffset) override;
  HRESULT STDMETHODCALLTYPE RetrieveDeviceInformation(ULONG informationType, ULONG* bufferLength,
                                                      PVOID buffer) override;
  HRESULT STDMETHODCALLTYPE RetrieveDescriptor(UCHAR descriptorType, UCHAR index, USHORT languageID,
                                               ULONG* bufferLength, PVOID buffer) override;
  HRESULT STDMETHODCALLTYPE RetrievePowerPolicy(ULONG policyType, ULONG* valueLength,
                                                PVOID value) override;
  HRESULT STDMETHODCALLTYPE SetPowerPolicy(ULONG policyType, ULONG valueLength,
                                           PVOID value) override;

 protected:
  void* Find(const GUID& iid) override {
    return Match<IWDFUsbTargetDevice, IWDFIoTarget, IWDFObject>(this, iid);
  }

 private:
  UsbFunction& usb_;
  FxFile* file_ = nullptr;
  std::vector<FxUsbInterface*> interfaces_;
};

}  // namespace bench
