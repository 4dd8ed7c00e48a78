// A client's I/O-control request in the driver's hands.
#pragma once

#include <atomic>
#include <memory>
#include <string_view>

#include "workbench/framework/ClientRequest.h"
#include "workbench/framework/FxFile.h"
#include "workbench/framework/FxMemory.h"
#include "workbench/framework/FxRequest.h"

namespace bench {

class FxQueue;

/// How long a driver may take to answer what it holds once it is asked to.
inline constexpr Millis kAnswerLimit = 1000;

class FxClientRequest final : public FxRequest {
 public:
  struct Parameters {
    ULONG code = 0;
    std::string_view input;  // copied
    std::size_t outputSize = 0;
    FxFile* file = nullptr;
  };
  /// A buffer of no bytes has no memory object.
  static FxClientRequest& Create(const World& world, FxQueue& queue, const Parameters& parameters,
                                 std::shared_ptr<ClientRequest::Outcome> outcome);
  FxClientRequest(const World& world, FxQueue& queue, const Parameters& parameters,
                  std::shared_ptr<ClientRequest::Outcome> outcome);

  ULONG code() const { return code_; }
  std::size_t inputSize() const { return inputSize_; }
  std::size_t outputSize() const { return outputSize_; }

  /// From now on it is the driver that owes an answer.
  void GiveToDriver() { withDriver_ = true; }
  /// The answer is due by kAnswerLimit from now; a later one is reported.
  void AskForAnswer() { due_ = world().clock.Now() + kAnswerLimit; }
  /// What the request was answered with; E_PENDING as long as it is not.
  HRESULT Answer() const { return answer_; }
  /// Ends a request that the framework itself answers.
  void Finish(HRESULT status, std::size_t information);

  void STDMETHODCALLTYPE CompleteWithInformation(HRESULT completionStatus,
                                                 SIZE_T information) override;
  void STDMETHODCALLTYPE SetInformation(ULONG_PTR information) override;
  void STDMETHODCALLTYPE Complete(HRESULT completionStatus) override;
  WDF_REQUEST_TYPE STDMETHODCALLTYPE GetType() override;
  void STDMETHODCALLTYPE GetDeviceIoControlParameters(ULONG* controlCode, SIZE_T* inBufferSize,
                                                      SIZE_T* outBufferSize) override;
  void STDMETHODCALLTYPE GetOutputMemory(IWDFMemory** memory) override;
  void STDMETHODCALLTYPE GetInputMemory(IWDFMemory** memory) override;
  void STDMETHODCALLTYPE GetFileObject(IWDFFile** fileObject) override;
  ULONG STDMETHODCALLTYPE GetRequestorProcessId() override;

 protected:
  std::string_view BrokenBy(std::string_view call) const override;
  void OnDeleted() override;

 private:
  FxQueue& queue_;
  const ULONG code_;
  const std::size_t inputSize_;
  const std::size_t outputSize_;
  FxFile* const file_;
  const std::shared_ptr<ClientRequest::Outcome> outcome_;
  FxMemory* input_ = nullptr;
  FxMemory* output_ = nullptr;
  std::atomic<bool> withDriver_{false};
  std::atomic<bool> completed_{false};
  std::atomic<HRESULT> answer_{E_PENDING};
  std::atomic<Millis> due_{kForever};
  std::atomic<std::size_t> information_{0};
};

}  // namespace bench
