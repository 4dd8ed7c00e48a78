#include "workbench/framework/FxQueue.h"

#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxDevice.h"

namespace bench {

FxQueue::FxQueue(const World& world, FxDevice& device,
                 stelvane::ComPtr<IQueueCallbackDeviceIoControl> callback)
    : FxObject(world, "queue", DeletedBy::kFramework),
      device_(device),
      callback_(std::move(callback)) {}

void FxQueue::Present(FxClientRequest& request, On thread) {
  bool refused = false;
  {
    const std::lock_guard lock(mutex_);
    refused = !accepting_;
    if (!refused && !dispatching_) {
      waiting_.push_back(&request);
      return;
    }
    if (!refused) withDriver_.push_back(&request);
  }
  if (refused) {
    request.Finish(kInvalidDeviceState, 0);
  } else if (thread == On::kCallingThread) {
    Dispatch(request);
  } else {
    DispatchOnThread(request);
  }
}

void FxQueue::DispatchOnThread(FxClientRequest& request) {
  const std::lock_guard lock(threadsLock_);
  threads_.remove_if([](const DispatchThread& dispatch) { return dispatch.done.load(); });
  DispatchThread& dispatch = threads_.emplace_back();
  dispatch.thread = Thread(world().clock, [this, &request, &dispatch] {
    Dispatch(request);
    dispatch.done = true;
  });
}

void FxQueue::Dispatch(FxClientRequest& request) {
  request.GiveToDriver();
  // The callback returns nothing; what it answers the request with counts as its result.
  CallDriver(world(), "IQueueCallbackDeviceIoControl::OnDeviceIoControl", [&] {
    callback_->OnDeviceIoControl(this, &request, request.code(), request.inputSize(),
                                 request.outputSize());
    return request.Answer();
  });
}

void FxQueue::OnCompleted(FxClientRequest& request, const std::function<void()>& publish) {
  {
    const std::lock_guard lock(mutex_);
    std::erase(withDriver_, &request);
    publish();
  }
  world().clock.Notify();
}

std::size_t FxQueue::Waiting() const {
  const std::lock_guard lock(mutex_);
  return waiting_.size();
}

std::size_t FxQueue::WithDriver() const {
  const std::lock_guard lock(mutex_);
  return withDriver_.size();
}

void FxQueue::AskForAnswers() {
  const std::lock_guard lock(mutex_);
  for (FxClientRequest* request : withDriver_) request->AskForAnswer();
}

void FxQueue::WaitForDriver(std::string_view call) {
  const bool answered = world().clock.WaitUntil(world().clock.Now() + kAnswerLimit, [this] {
    const std::lock_guard lock(mutex_);
    return withDriver_.empty();
  });
  if (answered) return;
  Report(rule::kSlowAnswer,
         std::string(call) + ": " + std::to_string(WithDriver()) + " still with the driver");
}

void FxQueue::GetDevice(IWDFDevice** device) {
  *device = nullptr;
  InvokeVoid("IWDFIoQueue::GetDevice", [&] { device_.HandOut(device); });
}

WDF_IO_QUEUE_STATE FxQueue::GetState(ULONG* inQueue, ULONG* inDriver) {
  return InvokeFor("IWDFIoQueue::GetState", WDF_IO_QUEUE_STATE{}, [&] {
    const std::lock_guard lock(mutex_);
    if (inQueue != nullptr) *inQueue = static_cast<ULONG>(waiting_.size());
    if (inDriver != nullptr) *inDriver = static_cast<ULONG>(withDriver_.size());
    int state = 0;
    if (accepting_) state |= WdfIoQueueAcceptRequests;
    if (dispatching_) state |= WdfIoQueueDispatchRequests;
    if (waiting_.empty()) state |= WdfIoQueueNoRequests;
    if (withDriver_.empty()) state |= WdfIoQueueDriverNoRequests;
    return static_cast<WDF_IO_QUEUE_STATE>(state);
  });
}

void FxQueue::Start() {
  InvokeVoid("IWDFIoQueue::Start", [this] {
    std::deque<FxClientRequest*> waiting;
    {
      const std::lock_guard lock(mutex_);
      accepting_ = true;
      dispatching_ = true;
      waiting.swap(waiting_);
      withDriver_.insert(withDriver_.end(), waiting.begin(), waiting.end());
    }
    for (FxClientRequest* request : waiting) DispatchOnThread(*request);
  });
}

void FxQueue::StopSynchronously() {
  InvokeVoid("IWDFIoQueue::StopSynchronously", [this] {
    {
      const std::lock_guard lock(mutex_);
      dispatching_ = false;
    }
    WaitForDriver("StopSynchronously");
  });
}

void FxQueue::PurgeSynchronously() {
  InvokeVoid("IWDFIoQueue::PurgeSynchronously", [this] {
    std::deque<FxClientRequest*> cancelled;
    {
      const std::lock_guard lock(mutex_);
      accepting_ = false;
      cancelled.swap(waiting_);
    }
    for (FxClientRequest* request : cancelled) request->Finish(kOperationAborted, 0);
    WaitForDriver("PurgeSynchronously");
  });
}

void FxQueue::Quiesce() {
  {
    const std::lock_guard lock(mutex_);
    accepting_ = false;
    dispatching_ = false;
  }
  const std::lock_guard lock(threadsLock_);
  threads_.clear();
}

void FxQueue::OnDeleted() {
  callback_.Reset();
}

HRESULT FxQueue::ConfigureRequestDispatching(WDF_REQUEST_TYPE, BOOL) {
  return Unexpected("IWDFIoQueue::ConfigureRequestDispatching");
}

HRESULT FxQueue::RetrieveNextRequest(IWDFIoRequest** request) {
  *request = nullptr;
  return Unexpected("IWDFIoQueue::RetrieveNextRequest");
}

HRESULT FxQueue::RetrieveNextRequestByFileObject(IWDFFile*, IWDFIoRequest** request) {
  *request = nullptr;
  return Unexpected("IWDFIoQueue::RetrieveNextRequestByFileObject");
}

void FxQueue::Stop(IQueueCallbackStateChange*) {
  Unexpected("IWDFIoQueue::Stop");
}

void FxQueue::Drain(IQueueCallbackStateChange*) {
  Unexpected("IWDFIoQueue::Drain");
}

void FxQueue::DrainSynchronously() {
  Unexpected("IWDFIoQueue::DrainSynchronously");
}

void FxQueue::Purge(IQueueCallbackStateChange*) {
  Unexpected("IWDFIoQueue::Purge");
}

}  // namespace bench
