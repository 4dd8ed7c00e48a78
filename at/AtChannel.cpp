#include "at/AtChannel.h"

#include <algorithm>
#include <new>
#include <utility>

#include "at/AtChannel.trace.h"
#include "platform/WdfDriver.h"
#include "platform/WdfRequest.h"

namespace stelvane {

namespace {

// Puts the line, without a terminating zero, into a memory of its own and formats the write.
HRESULT FillRequest(IWDFDevice* device, IWDFIoTarget* target, IWDFFile* file,
                    IWDFIoRequest* request, std::string_view line) {
  ComPtr<IWDFDriver> driver;
  device->GetDriver(driver.Put());
  ComPtr<IWDFMemory> memory;
  RETURN_IF_FAILED(
      driver ? driver->CreateWdfMemory(line.size(), nullptr, request, memory.Put()) : E_FAIL,
      WriteMemoryNotCreated);
  RETURN_IF_FAILED(memory->CopyFromBuffer(0, const_cast<char*>(line.data()), line.size()),
                   WriteMemoryNotFilled);
  RETURN_IF_FAILED(target->FormatRequestForWrite(request, file, memory.Get(), nullptr, nullptr),
                   WriteNotFormatted);
  return S_OK;
}

HRESULT SendAndWait(IWDFIoRequest* request, IWDFIoTarget* target) {
  RETURN_IF_FAILED(request->Send(target, WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0), WriteNotSent);
  ComPtr<IWDFRequestCompletionParams> params;
  request->GetCompletionParams(params.Put());
  const HRESULT status = params ? params->GetCompletionStatus() : E_FAIL;
  RETURN_IF_FAILED(status, WriteFailed);
  return status;
}

}  // namespace

HRESULT AtChannel::InitializeObject() {
  HRESULT result = ComObject::InitializeObject();
  if (SUCCEEDED(result)) result = port_.Initialize();
  if (SUCCEEDED(result)) result = receiveLock_.Initialize();
  if (SUCCEEDED(result)) result = useLock_.Initialize();
  return result;
}

HRESULT AtChannel::Bind(IWDFDevice* device) {
  RETURN_IF_FAILED(ComPtr<IWDFDevice>(device).As(device_), IdleControlMissing);
  return S_OK;
}

HRESULT AtChannel::OpenModemPort() {
  const auto readers = static_cast<IUsbTargetPipeContinuousReaderCallbackReadComplete*>(this);
  const HRESULT result = port_.Open(device_.Get(), readers);
  if (FAILED(result)) return result;
  // Before the first D0 entry nobody uses the engine, and the reader waits for that entry.
  if (EngineUseCount() < 1) return result;
  RETURN_IF_FAILED(StartReading(true), ReaderNotStarted);
  return result;
}

void AtChannel::Attach(LineSink& sink) {
  const ScopedLock lock(receiveLock_);
  sink_ = &sink;
}

void AtChannel::Detach() {
  const ScopedLock lock(receiveLock_);
  sink_ = nullptr;
}

HRESULT AtChannel::StartReading(bool start) {
  const ComPtr<IWDFUsbTargetPipe> in = port_.InPipe();
  if (!in || !port_.OutPipe()) {
    TRACE(PipeMissing);
    return kNoAtPort;
  }
  ComPtr<IWDFIoTargetStateManagement> target;
  RETURN_IF_FAILED(in.As(target), TargetStateMissing);
  const HRESULT result = start ? target->Start() : target->Stop(WdfIoTargetCancelSentIo);
  TRACE(ReadingSwitched, ULONG{start}, result);
  return result;
}

HRESULT AtChannel::WriteLine(std::string_view line, Event& responseEvent) {
  const ComPtr<IWDFUsbTargetPipe> out = port_.OutPipe();
  ComPtr<IWDFIoTarget> target;
  if (const HRESULT result = out ? out.As(target) : E_NOINTERFACE; FAILED(result)) {
    TRACE(WriteTargetMissing, result);
    return E_FAIL;
  }
  ComPtr<IWDFFile> file;
  target->GetTargetFile(file.Put());
  ComPtr<IWDFIoRequest> request;
  RETURN_IF_FAILED(device_->CreateRequest(nullptr, target.Get(), request.Put()),
                   WriteRequestNotCreated);
  HRESULT result = FillRequest(device_.Get(), target.Get(), file.Get(), request.Get(), line);
  if (SUCCEEDED(result)) {
    responseEvent.Clear();
    result = SendAndWait(request.Get(), target.Get());
  }
  // Its parent, the pipe, would keep the request alive otherwise.
  request->DeleteWdfObject();
  return result;
}

HRESULT AtChannel::AcquireEngineUse(bool waitForWorking) {
  HRESULT result = S_OK;
  bool stoppedIdle = false;
  bool heldTwice = false;
  useLock_.Enter();
  if (useCount_ == 0) {
    useLock_.Leave();
    result = device_->StopIdle(waitForWorking);
    stoppedIdle = SUCCEEDED(result);
    useLock_.Enter();
    // Another thread may have come first meanwhile: one hold is enough.
    heldTwice = stoppedIdle && useCount_ > 0;
  }
  ++useCount_;
  useLock_.Leave();
  if (heldTwice) device_->ResumeIdle();
  if (FAILED(result)) TRACE(StopIdleFailed, result);
  return result;
}

void AtChannel::ReleaseEngineUse() {
  bool last = false;
  {
    const ScopedLock lock(useLock_);
    if (useCount_ >= 1) last = --useCount_ == 0;
  }
  if (last) device_->ResumeIdle();
}

void AtChannel::ReleaseAllEngineUses() {
  bool held = false;
  {
    const ScopedLock lock(useLock_);
    held = std::exchange(useCount_, 0) > 0;
  }
  if (held) device_->ResumeIdle();
}

LONG AtChannel::EngineUseCount() {
  const ScopedLock lock(useLock_);
  return useCount_;
}

void AtChannel::OnReaderCompletion(IWDFUsbTargetPipe* pipe, IWDFMemory* memory,
                                   SIZE_T numBytesTransferred, PVOID context) noexcept {
  TRACE(ReaderCompletionEntered, ULONG64{numBytesTransferred});
  SIZE_T size = 0;
  const void* const data = memory != nullptr ? memory->GetDataBuffer(&size) : nullptr;
  if (data != nullptr) {
    OnBytesReceived(static_cast<const char*>(data), std::min(numBytesTransferred, size));
  }
  TRACE(ReaderCompletionLeft);
}

BOOL AtChannel::OnReaderFailure(IWDFUsbTargetPipe* pipe, HRESULT status) noexcept {
  TRACE(ReaderFailureEntered);
  const ScopedLock lock(receiveLock_);
  const bool restart = sink_ != nullptr && !sink_->IsStopping();
  TRACE(ReaderFailure, status, ULONG{restart});
  TRACE(ReaderFailureLeft, ULONG{restart});
  return restart;
}

void AtChannel::OnBytesReceived(const char* data, std::size_t count) {
  const ScopedLock lock(receiveLock_);
  if (sink_ == nullptr) return;
  try {
    lines_.Feed(data, count, [&sink = *sink_](std::string_view line) { sink.DispatchLine(line); });
  } catch (const std::bad_alloc&) {
    TRACE(BytesDropped, ULONG64{count});
  }
}

}  // namespace stelvane
