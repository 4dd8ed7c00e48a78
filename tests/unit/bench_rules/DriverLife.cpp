#include "tests/unit/bench_rules/DriverLife.h"

namespace bench {

namespace {
constexpr ULONG kEcho = 0x22e004;  // any code
}  // namespace

DriverLife::DriverLife()
    : module_(std::make_unique<DriverModule>(TestModulePath(), &redirector_)),
      imports_(reinterpret_cast<const ModuleCalls*>(
          reinterpret_cast<void*>(module_->Export("moduleCalls")))) {
  redirector_.Books().Mark();
  WatchCalls(ledger, redirector_, {});
  script.onPrepare = [this](IWDFDevice* wdfDevice) { return Prepare(wdfDevice); };
  script.onD0Entry = [this](IWDFDevice*) {
    device().StopIdle(TRUE);
    return Reader()->Start();
  };
  script.onIoControl = [](IWDFIoRequest* request, ULONG) { request->Complete(S_OK); };
  script.onReaderFailure = [](IWDFUsbTargetPipe*, HRESULT) { return TRUE; };
  script.onSuspend = [this](IWDFDevice*) {
    queue_->StopSynchronously();
    queue_->Start();
    return S_OK;
  };
  script.onD0Exit = [this](IWDFDevice*) {
    device().ResumeIdle();
    return Reader()->Stop(WdfIoTargetCancelSentIo);
  };
  script.onRelease = [this](IWDFDevice*) {
    pipe_.Reset();
    CloseUsb();
    queue_.Reset();
    return S_OK;
  };
}

DriverLife::~DriverLife() {
  if (thread_ == nullptr) return;
  threadMayEnd_ = true;
  clock.Notify();
  WaitForSingleObject(thread_, INFINITE);
  CloseHandle(thread_);
}

HRESULT DriverLife::Prepare(IWDFDevice* wdfDevice) {
  const ComPtr<IQueueCallbackDeviceIoControl> queueCallback(new FakeQueueCallback(script));
  wdfDevice->CreateIoQueue(queueCallback.Get(), TRUE, WdfIoQueueDispatchParallel, powerManaged,
                           TRUE, queue_.Put());
  pipe_ = Pipe(1, 0);
  ComPtr<IWDFUsbTargetPipe2> pipe2;
  pipe_.As(pipe2);
  auto* const reader = new FakeReader(script);
  const ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> hold(reader);
  return pipe2->ConfigureContinuousReader(16, 0, 0, pendingReads, nullptr, reader, nullptr, reader);
}

ComPtr<IWDFIoRequest> DriverLife::MakeRequest() {
  ComPtr<IWDFIoRequest> request;
  device().CreateRequest(nullptr, nullptr, request.Put());
  return request;
}

void DriverLife::LeaveAThread() {
  const HANDLE thread = imports_->createThread(
      [](void* life) -> DWORD {
        auto& self = *static_cast<DriverLife*>(life);
        self.clock.WaitUntil(kForever, [&self] { return self.threadMayEnd_.load(); });
        return 0;
      },
      this, 0);
  DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &thread_, SYNCHRONIZE, FALSE,
                  0);
  imports_->closeHandle(thread);
}

void DriverLife::LiveFromAddToRemove() {
  host->AddDevice();
  host->Start();
  host->SendIoControl(kEcho, "abcd", 4, nullptr, Host::Dispatch::kCallingThread);
  modem.Say("first");
  host->usb().FailRead(E_FAIL);
  modem.Say("second");
  clock.SleepFor(1);  // lets the reader take all that
  host->PowerDown();
  host->PowerUp();
  host->Stop();
  host->RemoveDevice();
}

std::vector<std::string> DriverLife::Run() {
  LiveFromAddToRemove();
  const HRESULT canUnload = module_->CanUnloadNow();
  // The driver object outlives the module, so that the module's end can still try to call it.
  module_.reset();
  host->Unload();
  return FindingsOf(ledger, redirector_, canUnload);
}

}  // namespace bench
