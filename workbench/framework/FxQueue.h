// The device's default queue: presents clients' requests to the driver, several at a time.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <list>
#include <mutex>

#include "platform/WdfRequest.h"
#include "workbench/framework/FxClientRequest.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxDevice;

class FxQueue final : public FxObject<IWDFIoQueue> {
 public:
  FxQueue(const World& world, FxDevice& device,
          stelvane::ComPtr<IQueueCallbackDeviceIoControl> callback);

  enum class On { kFrameworkThread, kCallingThread };
  /// Dispatches the request, keeps it while the queue is stopped (a framework thread takes it once
  /// the queue starts), or refuses it when the queue is purged.
  void Present(FxClientRequest& request, On thread);
  /// A request that is complete is out of the driver's hands. `publish` hands the outcome to the
  /// client in the same moment, so that neither side sees one without the other.
  void OnCompleted(FxClientRequest& request, const std::function<void()>& publish);
  /// Waiting in the queue, and in the driver's hands.
  std::size_t Waiting() const;
  std::size_t WithDriver() const;

  /// The device is to suspend: what the driver holds has to be answered within a second.
  void AskForAnswers();

  void STDMETHODCALLTYPE GetDevice(IWDFDevice** device) override;
  HRESULT STDMETHODCALLTYPE ConfigureRequestDispatching(WDF_REQUEST_TYPE requestType,
                                                        BOOL forward) override;
  WDF_IO_QUEUE_STATE STDMETHODCALLTYPE GetState(ULONG* inQueue, ULONG* inDriver) override;
  HRESULT STDMETHODCALLTYPE RetrieveNextRequest(IWDFIoRequest** request) override;
  HRESULT STDMETHODCALLTYPE RetrieveNextRequestByFileObject(IWDFFile* file,
                                                            IWDFIoRequest** request) override;
  void STDMETHODCALLTYPE Start() override;
  void STDMETHODCALLTYPE Stop(IQueueCallbackStateChange* stopComplete) override;
  /// Waits for the driver's answers. After a second the wait is given up and reported.
  void STDMETHODCALLTYPE StopSynchronously() override;
  void STDMETHODCALLTYPE Drain(IQueueCallbackStateChange* drainComplete) override;
  void STDMETHODCALLTYPE DrainSynchronously() override;
  void STDMETHODCALLTYPE Purge(IQueueCallbackStateChange* purgeComplete) override;
  /// As StopSynchronously, and what waits in the queue is cancelled.
  void STDMETHODCALLTYPE PurgeSynchronously() override;

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFIoQueue, IWDFObject>(this, iid); }
  void Quiesce() override;
  void OnDeleted() override;

 private:
  struct DispatchThread {
    std::atomic<bool> done{false};
    Thread thread;
  };

  void DispatchOnThread(FxClientRequest& request);
  void Dispatch(FxClientRequest& request);
  void WaitForDriver(std::string_view call);

  FxDevice& device_;
  stelvane::ComPtr<IQueueCallbackDeviceIoControl> callback_;
  mutable std::mutex mutex_;  // guards the states and lists; taken in the clock's `ready`
  bool accepting_ = true;
  bool dispatching_ = true;
  std::deque<FxClientRequest*> waiting_;
  std::deque<FxClientRequest*> withDriver_;
  std::mutex threadsLock_;
  std::list<DispatchThread> threads_;
};

}  // namespace bench
