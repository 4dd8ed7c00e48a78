// A driver that has nothing in common with the sensor but the framework: a client's request goes
// out on one bulk pipe and is completed with what comes in on the other.
#include "tests/echo/EchoDriver.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "base/ComPtr.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfDevice.h"
#include "platform/WdfDriver.h"
#include "platform/WdfRequest.h"
#include "platform/WdfTypes.h"
#include "platform/WdfUsb.h"
#include "tests/echo/ComServer.h"

namespace echo {
namespace {

using stelvane::ComPtr;

constexpr SIZE_T kBlock = 64;

class Device final : public Object<IPnpCallback, IPnpCallbackHardware, IPnpCallbackSelfManagedIo,
                                   IQueueCallbackDeviceIoControl,
                                   IUsbTargetPipeContinuousReaderCallbackReadComplete,
                                   IUsbTargetPipeContinuousReaderCallbackReadersFailed> {
 public:
  // IPnpCallbackHardware
  HRESULT STDMETHODCALLTYPE OnPrepareHardware(IWDFDevice* device) override {
    ComPtr<IWDFDevice>(device).As(device_);
    auto* const requests = static_cast<IQueueCallbackDeviceIoControl*>(this);
    HRESULT result = device->CreateIoQueue(requests, TRUE, WdfIoQueueDispatchParallel, FALSE, TRUE,
                                           queue_.Put());
    ComPtr<IWDFUsbTargetFactory> factory;
    if (SUCCEEDED(result)) result = device_.As(factory);
    if (SUCCEEDED(result)) result = factory->CreateUsbTargetDevice(usb_.Put());
    if (SUCCEEDED(result)) TakePipes();
    if (FAILED(result) || !in_ || !out_) return E_FAIL;
    ComPtr<IWDFUsbTargetPipe2> reader;
    in_.As(reader);
    return reader->ConfigureContinuousReader(kBlock, 0, 0, 1, nullptr, this, nullptr, this);
  }
  HRESULT STDMETHODCALLTYPE OnReleaseHardware(IWDFDevice*) override {
    Abort();
    in_.Reset();
    out_.Reset();
    if (usb_) usb_->DeleteWdfObject();
    usb_.Reset();
    queue_.Reset();
    device_.Reset();
    return S_OK;
  }

  // IPnpCallback
  HRESULT STDMETHODCALLTYPE OnD0Entry(IWDFDevice*, WDF_POWER_DEVICE_STATE) override {
    return Reading()->Start();
  }
  HRESULT STDMETHODCALLTYPE OnD0Exit(IWDFDevice*, WDF_POWER_DEVICE_STATE) override {
    return Reading()->Stop(WdfIoTargetCancelSentIo);
  }
  void STDMETHODCALLTYPE OnSurpriseRemoval(IWDFDevice*) override { Abort(); }
  HRESULT STDMETHODCALLTYPE OnQueryRemove(IWDFDevice*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnQueryStop(IWDFDevice*) override { return S_OK; }

  // IPnpCallbackSelfManagedIo
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoInit(IWDFDevice*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoSuspend(IWDFDevice*) override {
    Abort();
    queue_->StopSynchronously();
    queue_->Start();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoRestart(IWDFDevice*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoStop(IWDFDevice*) override { return S_OK; }
  void STDMETHODCALLTYPE OnSelfManagedIoFlush(IWDFDevice*) override {
    queue_->PurgeSynchronously();
  }
  void STDMETHODCALLTYPE OnSelfManagedIoCleanup(IWDFDevice*) override {}

  // IQueueCallbackDeviceIoControl
  void STDMETHODCALLTYPE OnDeviceIoControl(IWDFIoQueue*, IWDFIoRequest* request, ULONG code, SIZE_T,
                                           SIZE_T) override {
    if (code != kEcho) return request->Complete(kUnknownCode);
    if (!Keep(request)) return request->Complete(kBusy);
    device_->StopIdle(TRUE);
    Written(Write(request));
  }

  // The reader's callbacks.
  void STDMETHODCALLTYPE OnReaderCompletion(IWDFUsbTargetPipe*, IWDFMemory* memory, SIZE_T count,
                                            void*) override {
    Answer({S_OK, std::string(static_cast<const char*>(memory->GetDataBuffer(nullptr)), count)});
  }
  BOOL STDMETHODCALLTYPE OnReaderFailure(IWDFUsbTargetPipe*, HRESULT status) override {
    Answer({status, {}});
    return TRUE;
  }

 private:
  void TakePipes() {
    for (UCHAR i = 0; i < usb_->GetNumInterfaces(); ++i) {
      ComPtr<IWDFUsbInterface> usbInterface;
      if (FAILED(usb_->RetrieveUsbInterface(i, usbInterface.Put()))) return;
      for (UCHAR j = 0; j < usbInterface->GetNumEndPoints(); ++j) {
        ComPtr<IWDFUsbTargetPipe> pipe;
        if (FAILED(usbInterface->RetrieveUsbPipeObject(j, pipe.Put()))) return;
        if (pipe->GetType() == UsbdPipeTypeBulk) (pipe->IsInEndPoint() ? in_ : out_) = pipe;
      }
    }
  }
  ComPtr<IWDFIoTargetStateManagement> Reading() {
    ComPtr<IWDFIoTargetStateManagement> state;
    in_.As(state);
    return state;
  }

  HRESULT Write(IWDFIoRequest* request) {
    ComPtr<IWDFMemory> input;
    request->GetInputMemory(input.Put());
    ComPtr<IWDFIoRequest> write;
    HRESULT result = device_->CreateRequest(nullptr, out_.Get(), write.Put());
    if (FAILED(result)) return result;
    result = out_->FormatRequestForWrite(write.Get(), nullptr, input.Get(), nullptr, nullptr);
    if (SUCCEEDED(result)) {
      result = write->Send(out_.Get(), WDF_REQUEST_SEND_OPTION_SYNCHRONOUS, 0);
    }
    if (SUCCEEDED(result)) {
      ComPtr<IWDFRequestCompletionParams> completion;
      write->GetCompletionParams(completion.Put());
      result = completion->GetCompletionStatus();
    }
    write->DeleteWdfObject();
    return result;
  }

  struct Outcome {
    HRESULT status;
    std::string bytes;
  };
  class Locked {
   public:
    explicit Locked(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    ~Locked() { ReleaseSRWLockExclusive(&lock_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

   private:
    SRWLOCK& lock_;
  };

  bool Keep(IWDFIoRequest* request) {
    const Locked locked(lock_);
    if (open_) return false;
    open_ = ComPtr<IWDFIoRequest>(request);
    writing_ = true;
    return true;
  }
  // What came while the request was still being written had to wait, so that nobody else ends the
  // request, and with it the device, under the writing thread's feet.
  void Written(HRESULT status) {
    ComPtr<IWDFIoRequest> request;
    std::optional<Outcome> outcome;
    {
      const Locked locked(lock_);
      writing_ = false;
      outcome = std::exchange(early_, std::nullopt);
      if (FAILED(status)) outcome = {status, {}};
      if (outcome) request = std::move(open_);
    }
    if (request) Complete(*request.Get(), *outcome);
  }
  // Ends the open request, if there is one still.
  void Answer(Outcome outcome) {
    ComPtr<IWDFIoRequest> request;
    {
      const Locked locked(lock_);
      if (writing_) {
        if (!early_) early_ = std::move(outcome);
      } else {
        request = std::move(open_);
      }
    }
    if (request) Complete(*request.Get(), outcome);
  }
  void Complete(IWDFIoRequest& request, Outcome& outcome) {
    ComPtr<IWDFMemory> output;
    request.GetOutputMemory(output.Put());
    const SIZE_T size = output ? std::min(outcome.bytes.size(), output->GetSize()) : 0;
    if (size != 0) output->CopyFromBuffer(0, outcome.bytes.data(), size);
    output.Reset();
    device_->ResumeIdle();
    request.CompleteWithInformation(outcome.status, size);
  }
  void Abort() { Answer({kAborted, {}}); }

  ComPtr<IWDFDevice2> device_;
  ComPtr<IWDFIoQueue> queue_;
  ComPtr<IWDFUsbTargetDevice> usb_;
  ComPtr<IWDFUsbTargetPipe> in_;
  ComPtr<IWDFUsbTargetPipe> out_;
  SRWLOCK lock_ = SRWLOCK_INIT;
  // Guarded by lock_.
  ComPtr<IWDFIoRequest> open_;
  bool writing_ = false;
  std::optional<Outcome> early_;
};

class Driver final : public Object<IDriverEntry> {
 public:
  HRESULT STDMETHODCALLTYPE OnInitialize(IWDFDriver*) override { return S_OK; }
  void STDMETHODCALLTYPE OnDeinitialize(IWDFDriver*) override {}
  HRESULT STDMETHODCALLTYPE OnDeviceAdd(IWDFDriver* driver, IWDFDeviceInitialize* init) override {
    init->SetLockingConstraint(WDF_CALLBACK_CONSTRAINT::None);
    init->SetPowerPolicyOwnership(TRUE);
    ComPtr<IUnknown> callbacks;
    const HRESULT result =
        Create<Device>(iidOf<IUnknown>, reinterpret_cast<void**>(callbacks.Put()));
    ComPtr<IWDFDevice> device;
    return FAILED(result) ? result : driver->CreateDevice(init, callbacks.Get(), device.Put());
  }
};

}  // namespace
}  // namespace echo

extern "C" {

UMDF_VERSION_DATA Microsoft_WDF_UMDF_Version = {1, 11, 0};

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
  *object = nullptr;
  if (!IsEqualGUID(classId, echo::kDriverClass)) return CLASS_E_CLASSNOTAVAILABLE;
  return echo::Create<echo::Factory<echo::Driver>>(iid, object);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return echo::objectsAlive == 0 ? S_OK : S_FALSE;
}

}  // extern "C"
