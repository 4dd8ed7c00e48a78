// A driver that has nothing in common with the sensor but the framework: a client's request goes
// out on one bulk pipe and is completed with what comes in on the other.
#include "tests/echo/EchoDriver.h"

#include <algorithm>

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
    const HRESULT written = Write(request);
    if (FAILED(written)) Answer(written, nullptr, 0);
  }

  // The reader's callbacks.
  void STDMETHODCALLTYPE OnReaderCompletion(IWDFUsbTargetPipe*, IWDFMemory* memory, SIZE_T count,
                                            void*) override {
    Answer(S_OK, memory->GetDataBuffer(nullptr), count);
  }
  BOOL STDMETHODCALLTYPE OnReaderFailure(IWDFUsbTargetPipe*, HRESULT status) override {
    Answer(status, nullptr, 0);
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

  bool Keep(IWDFIoRequest* request) {
    AcquireSRWLockExclusive(&lock_);
    const bool kept = !open_;
    if (kept) open_ = ComPtr<IWDFIoRequest>(request);
    ReleaseSRWLockExclusive(&lock_);
    return kept;
  }
  ComPtr<IWDFIoRequest> Take() {
    AcquireSRWLockExclusive(&lock_);
    ComPtr<IWDFIoRequest> request = std::move(open_);
    ReleaseSRWLockExclusive(&lock_);
    return request;
  }
  // Completes the open request, if there is one still.
  void Answer(HRESULT status, void* data, SIZE_T count) {
    const ComPtr<IWDFIoRequest> request = Take();
    if (!request) return;
    ComPtr<IWDFMemory> output;
    request->GetOutputMemory(output.Put());
    const SIZE_T size = output ? std::min(count, output->GetSize()) : 0;
    if (size != 0) output->CopyFromBuffer(0, data, size);
    output.Reset();
    request->CompleteWithInformation(status, size);
    device_->ResumeIdle();
  }
  void Abort() { Answer(kAborted, nullptr, 0); }

  ComPtr<IWDFDevice2> device_;
  ComPtr<IWDFIoQueue> queue_;
  ComPtr<IWDFUsbTargetDevice> usb_;
  ComPtr<IWDFUsbTargetPipe> in_;
  ComPtr<IWDFUsbTargetPipe> out_;
  SRWLOCK lock_ = SRWLOCK_INIT;
  ComPtr<IWDFIoRequest> open_;  // guarded by lock_
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
