#include "workbench/framework/FxUsbPipe.h"

#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxMemory.h"
#include "workbench/framework/FxSentRequest.h"

namespace bench {

FxUsbPipe& FxUsbPipe::Create(const World& world, FxBase& parent, UsbFunction& usb,
                             const EndpointPlan& plan) {
  auto& pipe = Make<FxUsbPipe>(world, &parent, usb, plan);
  pipe.file_ = &Make<FxFile>(world, &pipe, "target file");
  return pipe;
}

FxUsbPipe::FxUsbPipe(const World& world, UsbFunction& usb, const EndpointPlan& plan)
    : FxObject(world, "usb pipe", DeletedBy::kFramework), usb_(usb), plan_(plan) {}

void* FxUsbPipe::Find(const GUID& iid) {
  return Match<IWDFUsbTargetPipe2, IWDFUsbTargetPipe, IWDFIoTarget, IWDFObject,
               IWDFIoTargetStateManagement>(this, iid);
}

void FxUsbPipe::Quiesce() {
  ContinuousReader* const reader = Reader();
  if (reader == nullptr) return;
  if (reader->InsideCallback()) Report(rule::kReaderReentered, "delete");
  reader->End();
}

void FxUsbPipe::OnDeleted() {
  if (ContinuousReader* const reader = Reader(); reader != nullptr) reader->DropCallbacks();
}

ContinuousReader* FxUsbPipe::Reader() const {
  const std::lock_guard lock(mutex_);
  return reader_.get();
}

HRESULT FxUsbPipe::AcceptsSend() const {
  return Reader() != nullptr || !started_ ? kInvalidDeviceState : S_OK;
}

HRESULT FxUsbPipe::CarryOut(const Transfer& transfer) {
  return usb_.Write(transfer.memory->Bytes().substr(transfer.offset, transfer.length));
}

void FxUsbPipe::GetTargetFile(IWDFFile** file) {
  *file = nullptr;
  InvokeVoid("IWDFIoTarget::GetTargetFile", [&] { file_->HandOut(file); });
}

HRESULT FxUsbPipe::FormatRequestForWrite(IWDFIoRequest* request, IWDFFile* file,
                                         IWDFMemory* inputMemory,
                                         PWDFMEMORY_OFFSET inputMemoryOffset,
                                         PLONGLONG deviceOffset) {
  return Invoke("IWDFIoTarget::FormatRequestForWrite", [&] {
    auto* const formatted = FindObject<FxSentRequest>(request);
    auto* const memory = FindObject<FxMemory>(inputMemory);
    if (formatted == nullptr || memory == nullptr) return E_INVALIDARG;
    if (plan_.IsIn()) {
      Report(rule::kBadFormat, "a write to a pipe that reads");
      return kInvalidDeviceRequest;
    }
    if (file != nullptr && file != file_) {
      Report(rule::kBadFormat, "a write with the file of another target");
      return E_INVALIDARG;
    }
    const auto range = RangeOf(memory->Bytes().size(), inputMemoryOffset);
    if (!range || deviceOffset != nullptr) {
      Report(rule::kBadFormat, "a write with a wrong offset");
      return E_INVALIDARG;
    }
    formatted->Format({.target = this,
                       .type = WdfUsbRequestTypePipeWrite,
                       .control = {},
                       .memory = memory,
                       .offset = range->BufferOffset,
                       .length = range->BufferLength});
    return S_OK;
  });
}

BOOL FxUsbPipe::IsInEndPoint() {
  return InvokeFor("IWDFUsbTargetPipe::IsInEndPoint", BOOL{FALSE},
                   [this] { return BOOL{plan_.IsIn()}; });
}

BOOL FxUsbPipe::IsOutEndPoint() {
  return InvokeFor("IWDFUsbTargetPipe::IsOutEndPoint", BOOL{FALSE},
                   [this] { return BOOL{!plan_.IsIn()}; });
}

USBD_PIPE_TYPE FxUsbPipe::GetType() {
  return InvokeFor("IWDFUsbTargetPipe::GetType", UsbdPipeTypeControl,
                   [this] { return static_cast<USBD_PIPE_TYPE>(plan_.type); });
}

HRESULT FxUsbPipe::ConfigureContinuousReader(
    SIZE_T transferLength, SIZE_T headerLength, SIZE_T trailerLength, UCHAR numPendingReads,
    IUnknown* memoryCleanupCallbackInterface,
    IUsbTargetPipeContinuousReaderCallbackReadComplete* onCompletion, PVOID completionContext,
    IUsbTargetPipeContinuousReaderCallbackReadersFailed* onFailure) {
  return Invoke("IWDFUsbTargetPipe2::ConfigureContinuousReader", [&] {
    const bool reads = plan_.IsIn() && (plan_.type == EndpointType::kBulk ||
                                        plan_.type == EndpointType::kInterrupt);
    if (!reads || Reader() != nullptr) return kInvalidDeviceState;
    if (transferLength == 0 || onCompletion == nullptr) {
      Report(rule::kBadArgument, "a reader needs a length and a callback");
      return E_INVALIDARG;
    }
    if (headerLength != 0 || trailerLength != 0 || memoryCleanupCallbackInterface != nullptr) {
      Report(rule::kUnexpectedCall, "a reader with header, trailer or memory clean-up");
      return E_NOTIMPL;
    }
    // With more, or the framework's own choice (0), completions overlap and bytes change their
    // order.
    if (numPendingReads != 1) Report(rule::kPendingReads, std::to_string(numPendingReads));
    CheckQueryInterface(world(), *onCompletion);
    if (onFailure != nullptr) CheckQueryInterface(world(), *onFailure);
    started_ = false;
    auto reader = std::make_unique<ContinuousReader>(
        *this, world(), usb_,
        ContinuousReader::Settings{.transferLength = transferLength,
                                   .onCompletion = stelvane::ComPtr(onCompletion),
                                   .context = completionContext,
                                   .onFailure = stelvane::ComPtr(onFailure),
                                   .hasData = plan_.type == EndpointType::kBulk});
    const std::lock_guard lock(mutex_);
    reader_ = std::move(reader);
    return S_OK;
  });
}

WDF_IO_TARGET_STATE FxUsbPipe::GetState() {
  return InvokeFor("IWDFIoTargetStateManagement::GetState", WdfIoTargetDeleted,
                   [this] { return started_ ? WdfIoTargetStarted : WdfIoTargetStopped; });
}

template <class Body>
void FxUsbPipe::Control(std::string_view call, Body body) {
  if (ContinuousReader* const reader = Reader(); reader != nullptr && reader->InsideCallback()) {
    Report(rule::kReaderReentered, call);
  }
  if (controlled_.exchange(true)) Report(rule::kReaderOverlap, call);
  body();
  controlled_ = false;
}

HRESULT FxUsbPipe::Start() {
  return Invoke("IWDFIoTargetStateManagement::Start", [this] {
    Control("IWDFIoTargetStateManagement::Start", [this] {
      started_ = true;
      if (ContinuousReader* const reader = Reader(); reader != nullptr) reader->Start();
    });
    return S_OK;
  });
}

HRESULT FxUsbPipe::Stop(WDF_IO_TARGET_SENT_IO_ACTION action) {
  return Invoke("IWDFIoTargetStateManagement::Stop", [&] {
    // A read may stay without bytes for ever.
    if (action != WdfIoTargetCancelSentIo) {
      Report(rule::kUnexpectedCall, "Stop that does not cancel what was sent");
    }
    Control("IWDFIoTargetStateManagement::Stop", [this] {
      started_ = false;
      if (ContinuousReader* const reader = Reader(); reader != nullptr) reader->Stop();
    });
    return S_OK;
  });
}

HRESULT FxUsbPipe::Remove(BOOL) {
  return Unexpected("IWDFIoTargetStateManagement::Remove");
}

void FxUsbPipe::CancelSentRequestsForFile(IWDFFile*) {
  Unexpected("IWDFIoTarget::CancelSentRequestsForFile");
}

HRESULT FxUsbPipe::FormatRequestForRead(IWDFIoRequest*, IWDFFile*, IWDFMemory*, PWDFMEMORY_OFFSET,
                                        PLONGLONG) {
  return Unexpected("IWDFIoTarget::FormatRequestForRead");
}

HRESULT FxUsbPipe::FormatRequestForIoctl(IWDFIoRequest*, ULONG, IWDFFile*, IWDFMemory*,
                                         PWDFMEMORY_OFFSET, IWDFMemory*, PWDFMEMORY_OFFSET) {
  return Unexpected("IWDFIoTarget::FormatRequestForIoctl");
}

HRESULT FxUsbPipe::Abort() {
  return Unexpected("IWDFUsbTargetPipe::Abort");
}

HRESULT FxUsbPipe::Reset() {
  return Unexpected("IWDFUsbTargetPipe::Reset");
}

HRESULT FxUsbPipe::Flush() {
  return Unexpected("IWDFUsbTargetPipe::Flush");
}

void FxUsbPipe::GetInformation(PWINUSB_PIPE_INFORMATION) {
  Unexpected("IWDFUsbTargetPipe::GetInformation");
}

HRESULT FxUsbPipe::RetrievePipePolicy(ULONG, ULONG*, PVOID) {
  return Unexpected("IWDFUsbTargetPipe::RetrievePipePolicy");
}

HRESULT FxUsbPipe::SetPipePolicy(ULONG, ULONG, PVOID) {
  return Unexpected("IWDFUsbTargetPipe::SetPipePolicy");
}

}  // namespace bench
