// A request that the driver makes itself and sends to a USB target.
#pragma once

#include <mutex>
#include <optional>

#include "workbench/framework/FxRequest.h"
#include "workbench/framework/Transfer.h"

namespace bench {

class FxSentRequest final : public FxRequest {
 public:
  explicit FxSentRequest(const World& world) : FxRequest(world, "request", DeletedBy::kDriver) {}

  /// For the targets' FormatRequestFor... methods.
  void Format(const Transfer& transfer);

  /// Synchronous only. The result says whether the request was sent.
  HRESULT STDMETHODCALLTYPE Send(IWDFIoTarget* ioTarget, ULONG flags, LONGLONG timeout) override;
  /// Gives the last send's outcome.
  void STDMETHODCALLTYPE
  GetCompletionParams(IWDFRequestCompletionParams** completionParams) override;

 private:
  HRESULT SendFormatted(IWDFIoTarget* ioTarget, ULONG flags);

  struct Completion {
    HRESULT status;
    ULONG_PTR information;
    WDF_USB_REQUEST_TYPE type;
  };

  std::mutex mutex_;
  std::optional<Transfer> transfer_;
  std::optional<Completion> completion_;
};

}  // namespace bench
