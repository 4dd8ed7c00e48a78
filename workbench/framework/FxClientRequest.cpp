#include "workbench/framework/FxClientRequest.h"

#include "workbench/framework/FxQueue.h"

namespace bench {

namespace {
// Any client process will do.
constexpr ULONG kClientProcess = 4711;
}  // namespace

FxClientRequest& FxClientRequest::Create(const World& world, FxQueue& queue,
                                         const Parameters& parameters,
                                         std::shared_ptr<ClientRequest::Outcome> outcome) {
  auto& request = Make<FxClientRequest>(world, &queue, queue, parameters, std::move(outcome));
  if (!parameters.input.empty()) {
    request.input_ =
        &Make<FxMemory>(world, &request, "input memory", DeletedBy::kFramework, parameters.input);
  }
  if (parameters.outputSize != 0) {
    request.output_ = &Make<FxMemory>(world, &request, "output memory", DeletedBy::kFramework,
                                      parameters.outputSize);
  }
  return request;
}

FxClientRequest::FxClientRequest(const World& world, FxQueue& queue, const Parameters& parameters,
                                 std::shared_ptr<ClientRequest::Outcome> outcome)
    : FxRequest(world, "client request", DeletedBy::kFramework),
      queue_(queue),
      code_(parameters.code),
      inputSize_(parameters.input.size()),
      outputSize_(parameters.outputSize),
      file_(parameters.file),
      outcome_(std::move(outcome)) {}

void FxClientRequest::Finish(HRESULT status, std::size_t information) {
  if (completed_.exchange(true)) {
    Report(rule::kCompletedTwice, "by two threads");
    return;
  }
  answer_ = status;
  if (world().clock.Now() > due_) Report(rule::kSlowAnswer, "after the device's suspension");
  std::string output;
  if (output_ != nullptr) output = output_->Bytes();
  Delete(rule::kTouchedAfterCompletion);
  queue_.OnCompleted(*this, [&] { outcome_->Complete(status, information, std::move(output)); });
}

std::string_view FxClientRequest::BrokenBy(std::string_view call) const {
  const bool completes =
      call == "IWDFIoRequest::Complete" || call == "IWDFIoRequest::CompleteWithInformation";
  return completes && completed_ ? rule::kCompletedTwice : FxRequest::BrokenBy(call);
}

void FxClientRequest::OnDeleted() {
  if (completed_) return;
  if (withDriver_) Report(rule::kNeverCompleted, "the device is removed");
  outcome_->Abandon();
  world().clock.Notify();
}

void FxClientRequest::CompleteWithInformation(HRESULT completionStatus, SIZE_T information) {
  InvokeVoid("IWDFIoRequest::CompleteWithInformation",
             [&] { Finish(completionStatus, information); });
}

void FxClientRequest::SetInformation(ULONG_PTR information) {
  InvokeVoid("IWDFIoRequest::SetInformation", [&] { information_ = information; });
}

void FxClientRequest::Complete(HRESULT completionStatus) {
  InvokeVoid("IWDFIoRequest::Complete", [&] { Finish(completionStatus, information_); });
}

WDF_REQUEST_TYPE FxClientRequest::GetType() {
  return InvokeFor("IWDFIoRequest::GetType", WdfRequestUndefined,
                   [] { return WdfRequestDeviceIoControl; });
}

void FxClientRequest::GetDeviceIoControlParameters(ULONG* controlCode, SIZE_T* inBufferSize,
                                                   SIZE_T* outBufferSize) {
  InvokeVoid("IWDFIoRequest::GetDeviceIoControlParameters", [&] {
    if (controlCode != nullptr) *controlCode = code_;
    if (inBufferSize != nullptr) *inBufferSize = inputSize_;
    if (outBufferSize != nullptr) *outBufferSize = outputSize_;
  });
}

void FxClientRequest::GetOutputMemory(IWDFMemory** memory) {
  *memory = nullptr;
  InvokeVoid("IWDFIoRequest::GetOutputMemory", [&] {
    if (output_ != nullptr) output_->HandOut(memory);
  });
}

void FxClientRequest::GetInputMemory(IWDFMemory** memory) {
  *memory = nullptr;
  InvokeVoid("IWDFIoRequest::GetInputMemory", [&] {
    if (input_ != nullptr) input_->HandOut(memory);
  });
}

void FxClientRequest::GetFileObject(IWDFFile** fileObject) {
  *fileObject = nullptr;
  InvokeVoid("IWDFIoRequest::GetFileObject", [&] {
    if (file_ != nullptr) file_->HandOut(fileObject);
  });
}

ULONG FxClientRequest::GetRequestorProcessId() {
  return InvokeFor("IWDFIoRequest::GetRequestorProcessId", ULONG{0}, [] { return kClientProcess; });
}

}  // namespace bench
