// One pipe: writes on the way out, a continuous reader on the way in.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "platform/WdfUsb.h"
#include "workbench/framework/ContinuousReader.h"
#include "workbench/framework/FxFile.h"
#include "workbench/framework/FxObject.h"
#include "workbench/framework/Transfer.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

class FxUsbPipe final : public FxObject<IWDFUsbTargetPipe2, IWDFIoTargetStateManagement>,
                        public TransferTarget {
 public:
  /// Makes the pipe with its file object.
  static FxUsbPipe& Create(const World& world, FxBase& parent, UsbFunction& usb,
                           const EndpointPlan& plan);
  FxUsbPipe(const World& world, UsbFunction& usb, const EndpointPlan& plan);

  HRESULT AcceptsSend() const override;
  HRESULT CarryOut(const Transfer& transfer) override;

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
  // IWDFUsbTargetPipe
  HRESULT STDMETHODCALLTYPE Abort() override;
  HRESULT STDMETHODCALLTYPE Reset() override;
  HRESULT STDMETHODCALLTYPE Flush() override;
  void STDMETHODCALLTYPE GetInformation(PWINUSB_PIPE_INFORMATION info) override;
  BOOL STDMETHODCALLTYPE IsInEndPoint() override;
  BOOL STDMETHODCALLTYPE IsOutEndPoint() override;
  USBD_PIPE_TYPE STDMETHODCALLTYPE GetType() override;
  HRESULT STDMETHODCALLTYPE RetrievePipePolicy(ULONG policyType, ULONG* valueLength,
                                               PVOID value) override;
  HRESULT STDMETHODCALLTYPE SetPipePolicy(ULONG policyType, ULONG valueLength,
                                          PVOID value) override;
  // IWDFUsbTargetPipe2
  /// Once, and only on a pipe that can read. The reader waits for Start.
  HRESULT STDMETHODCALLTYPE ConfigureContinuousReader(
      SIZE_T transferLength, SIZE_T headerLength, SIZE_T trailerLength, UCHAR numPendingReads,
      IUnknown* memoryCleanupCallbackInterface,
      IUsbTargetPipeContinuousReaderCallbackReadComplete* onCompletion, PVOID completionContext,
      IUsbTargetPipeContinuousReaderCallbackReadersFailed* onFailure) override;
  // IWDFIoTargetStateManagement
  WDF_IO_TARGET_STATE STDMETHODCALLTYPE GetState() override;
  HRESULT STDMETHODCALLTYPE Start() override;
  /// With a reader: returns when no callback of it runs.
  HRESULT STDMETHODCALLTYPE Stop(WDF_IO_TARGET_SENT_IO_ACTION action) override;
  HRESULT STDMETHODCALLTYPE Remove(BOOL surprise) override;

 protected:
  void* Find(const GUID& iid) override;
  void Quiesce() override;
  void OnDeleted() override;

 private:
  /// Null while none is configured. Never replaced once set.
  ContinuousReader* Reader() const;
  /// Reports control from the reader's own callback, or by two threads at once.
  template <class Body>
  void Control(std::string_view call, Body body);

  UsbFunction& usb_;
  const EndpointPlan& plan_;
  FxFile* file_ = nullptr;
  std::atomic<bool> started_{true};
  std::atomic<bool> controlled_{false};
  mutable std::mutex mutex_;
  std::unique_ptr<ContinuousReader> reader_;
};

}  // namespace bench
