#include "workbench/framework/FxSentRequest.h"

#include "workbench/framework/FxCompletionParams.h"
#include "workbench/framework/FxMemory.h"

namespace bench {

std::optional<WDFMEMORY_OFFSET> RangeOf(std::size_t memorySize, const WDFMEMORY_OFFSET* offset) {
  if (offset == nullptr) return WDFMEMORY_OFFSET{.BufferOffset = 0, .BufferLength = memorySize};
  if (offset->BufferOffset > memorySize) return std::nullopt;
  if (offset->BufferLength > memorySize - offset->BufferOffset) return std::nullopt;
  return *offset;
}

void FxSentRequest::Format(const Transfer& transfer) {
  const std::lock_guard lock(mutex_);
  transfer_ = transfer;
  completion_.reset();
}

HRESULT FxSentRequest::Send(IWDFIoTarget* ioTarget, ULONG flags, LONGLONG) {
  return Invoke("IWDFIoRequest::Send", [&] { return SendFormatted(ioTarget, flags); });
}

HRESULT FxSentRequest::SendFormatted(IWDFIoTarget* ioTarget, ULONG flags) {
  if ((flags & WDF_REQUEST_SEND_OPTION_SYNCHRONOUS) == 0) {
    Report(rule::kUnexpectedCall, "asynchronous Send");
    return E_NOTIMPL;
  }
  FxBase* const object = FindObject<FxBase>(ioTarget);
  auto* const target = dynamic_cast<TransferTarget*>(object);
  if (target == nullptr) return E_INVALIDARG;
  if (const HRESULT refusal = target->AcceptsSend(); FAILED(refusal)) return refusal;
  std::optional<Transfer> transfer;
  {
    // One format serves one send.
    const std::lock_guard lock(mutex_);
    transfer = std::exchange(transfer_, std::nullopt);
  }
  if (!transfer) {
    Report(rule::kBadFormat, "Send without a format");
    return kInvalidDeviceRequest;
  }
  if (transfer->target != object) {
    Report(rule::kBadFormat, "Send to another target than it is formatted for");
    return E_INVALIDARG;
  }
  if (transfer->memory != nullptr && !transfer->memory->IsUsable()) {
    Report(rule::kDeletedObject, "Send with " + transfer->memory->name());
    return E_INVALIDARG;
  }
  const HRESULT status = target->CarryOut(*transfer);
  const std::lock_guard lock(mutex_);
  completion_ = {.status = status,
                 .information = SUCCEEDED(status) ? transfer->length : 0,
                 .type = transfer->type};
  return S_OK;
}

void FxSentRequest::GetCompletionParams(IWDFRequestCompletionParams** completionParams) {
  *completionParams = nullptr;
  InvokeVoid("IWDFIoRequest::GetCompletionParams", [&] {
    std::optional<Completion> completion;
    {
      const std::lock_guard lock(mutex_);
      completion = completion_;
    }
    if (!completion) {
      Report(rule::kBadFormat, "GetCompletionParams of a request that was not sent");
      return;
    }
    auto& params = Make<FxCompletionParams>(world(), this, completion->status,
                                            completion->information, completion->type);
    params.HandOut(completionParams);
    params.Orphan();
  });
}

}  // namespace bench
