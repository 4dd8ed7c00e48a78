// A small driver whose callbacks a test fills in, and the bench that it runs on.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "base/ComPtr.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfDevice.h"
#include "platform/WdfDriver.h"
#include "platform/WdfRequest.h"
#include "platform/WdfUsb.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/framework/CallRecord.h"
#include "workbench/framework/CountedObject.h"
#include "workbench/framework/FxDevice.h"
#include "workbench/framework/FxDriver.h"
#include "workbench/framework/FxUsbPipe.h"
#include "workbench/framework/Host.h"
#include "workbench/framework/Ledger.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

using stelvane::ComPtr;

/// What a test makes of the driver. Left alone, every callback succeeds and does nothing.
struct Script {
  using DeviceStep = std::function<HRESULT(IWDFDevice*)>;
  std::function<HRESULT(IWDFDriver*, IWDFDeviceInitialize*)> onDeviceAdd;
  DeviceStep onPrepare, onD0Entry, onIoInit, onRestart, onSuspend, onD0Exit, onRelease;
  std::function<void(IWDFDevice*)> onFlush, onSurpriseRemoval;
  std::function<void(IWDFFile*)> onCleanupFile;
  std::function<void(IWDFIoRequest*, ULONG)> onIoControl;
  std::function<void(std::string)> onBytes;
  std::function<BOOL(IWDFUsbTargetPipe*, HRESULT)> onReaderFailure;
};

class FakeDeviceCallbacks final
    : public CountedObject<IPnpCallback, IPnpCallbackHardware, IPnpCallbackSelfManagedIo,
                           IFileCallbackCleanup> {
 public:
  explicit FakeDeviceCallbacks(Script& script) : script_(script) {}

  HRESULT STDMETHODCALLTYPE OnD0Entry(IWDFDevice* device, WDF_POWER_DEVICE_STATE) override {
    return Run(script_.onD0Entry, device);
  }
  HRESULT STDMETHODCALLTYPE OnD0Exit(IWDFDevice* device, WDF_POWER_DEVICE_STATE) override {
    return Run(script_.onD0Exit, device);
  }
  void STDMETHODCALLTYPE OnSurpriseRemoval(IWDFDevice* device) override {
    if (script_.onSurpriseRemoval) script_.onSurpriseRemoval(device);
  }
  HRESULT STDMETHODCALLTYPE OnQueryRemove(IWDFDevice*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnQueryStop(IWDFDevice*) override { return E_ABORT; }
  HRESULT STDMETHODCALLTYPE OnPrepareHardware(IWDFDevice* device) override {
    return Run(script_.onPrepare, device);
  }
  HRESULT STDMETHODCALLTYPE OnReleaseHardware(IWDFDevice* device) override {
    return Run(script_.onRelease, device);
  }
  void STDMETHODCALLTYPE OnSelfManagedIoCleanup(IWDFDevice*) override {}
  void STDMETHODCALLTYPE OnSelfManagedIoFlush(IWDFDevice* device) override {
    if (script_.onFlush) script_.onFlush(device);
  }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoInit(IWDFDevice* device) override {
    return Run(script_.onIoInit, device);
  }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoSuspend(IWDFDevice* device) override {
    return Run(script_.onSuspend, device);
  }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoRestart(IWDFDevice* device) override {
    return Run(script_.onRestart, device);
  }
  HRESULT STDMETHODCALLTYPE OnSelfManagedIoStop(IWDFDevice*) override { return S_OK; }
  void STDMETHODCALLTYPE OnCleanupFile(IWDFFile* file) override {
    if (script_.onCleanupFile) script_.onCleanupFile(file);
  }

 private:
  static HRESULT Run(const Script::DeviceStep& step, IWDFDevice* device) {
    return step ? step(device) : S_OK;
  }
  Script& script_;
};

class FakeQueueCallback final : public CountedObject<IQueueCallbackDeviceIoControl> {
 public:
  explicit FakeQueueCallback(Script& script) : script_(script) {}
  void STDMETHODCALLTYPE OnDeviceIoControl(IWDFIoQueue*, IWDFIoRequest* request, ULONG code, SIZE_T,
                                           SIZE_T) override {
    if (script_.onIoControl) script_.onIoControl(request, code);
  }

 private:
  Script& script_;
};

class FakeReader final : public CountedObject<IUsbTargetPipeContinuousReaderCallbackReadComplete,
                                              IUsbTargetPipeContinuousReaderCallbackReadersFailed> {
 public:
  explicit FakeReader(Script& script) : script_(script) {}
  void STDMETHODCALLTYPE OnReaderCompletion(IWDFUsbTargetPipe*, IWDFMemory* memory, SIZE_T count,
                                            PVOID) override {
    const char* const data = static_cast<const char*>(memory->GetDataBuffer(nullptr));
    if (script_.onBytes) script_.onBytes(std::string(data, count));
  }
  BOOL STDMETHODCALLTYPE OnReaderFailure(IWDFUsbTargetPipe* pipe, HRESULT status) override {
    return script_.onReaderFailure ? script_.onReaderFailure(pipe, status) : FALSE;
  }

 private:
  Script& script_;
};

class FakeDriver final : public CountedObject<IDriverEntry> {
 public:
  explicit FakeDriver(Script& script) : script_(script) {}
  HRESULT STDMETHODCALLTYPE OnInitialize(IWDFDriver*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnDeviceAdd(IWDFDriver* driver, IWDFDeviceInitialize* init) override {
    if (script_.onDeviceAdd) return script_.onDeviceAdd(driver, init);
    init->SetLockingConstraint(WDF_CALLBACK_CONSTRAINT::None);
    init->SetPowerPolicyOwnership(TRUE);
    const ComPtr<IPnpCallback> callbacks(new FakeDeviceCallbacks(script_));
    ComPtr<IWDFDevice> device;
    return driver->CreateDevice(init, callbacks.Get(), device.Put());
  }
  void STDMETHODCALLTYPE OnDeinitialize(IWDFDriver*) override {}

 private:
  Script& script_;
};

/// A modem that notes what it gets and says what the test wants it to say.
class FakeModem final : public UsbLink {
 public:
  std::int32_t OnControlRequest(const ControlRequest& request) override {
    controls.push_back(request);
    return answer;
  }
  std::int32_t OnHostWrite(std::string_view bytes) override {
    writes.emplace_back(bytes);
    return answer;
  }
  void SetSink(ByteSink sink) override { sink_ = std::move(sink); }
  void Say(std::string_view bytes) { sink_(bytes); }

  std::int32_t answer = S_OK;
  std::vector<ControlRequest> controls;
  std::vector<std::string> writes;

 private:
  ByteSink sink_;
};

/// What reader callbacks collect and a test waits for.
class Collected {
 public:
  explicit Collected(Clock& clock) : clock_(clock) {}
  void Add(std::string item) {
    {
      const std::lock_guard lock(mutex_);
      items_.push_back(std::move(item));
    }
    clock_.Notify();
  }
  std::vector<std::string> Items() {
    const std::lock_guard lock(mutex_);
    return items_;
  }
  /// Everything that came, once there are `count` items (or a minute went by in vain).
  std::vector<std::string> WaitFor(std::size_t count) {
    clock_.WaitUntil(clock_.Now() + 60'000, [&] {
      const std::lock_guard lock(mutex_);
      return items_.size() >= count;
    });
    return Items();
  }

 private:
  Clock& clock_;
  std::mutex mutex_;
  std::vector<std::string> items_;
};

/// A host with the fake driver and modem on virtual time.
struct Bench {
  explicit Bench(DevicePlan plan = {})
      : host(std::make_unique<Host>(clock, ledger, calls, modem,
                                    ComPtr<IDriverEntry>(new FakeDriver(script)).Get(),
                                    std::move(plan))) {}

  /// The fake driver's reader on the bulk IN pipe (interface 1, pipe 0), not started.
  ComPtr<IWDFUsbTargetPipe> ConfigureReader(SIZE_T length = 4096) {
    ComPtr<IWDFUsbTargetPipe> pipe = Pipe(1, 0);
    ComPtr<IWDFUsbTargetPipe2> pipe2;
    pipe.As(pipe2);
    auto* const reader = new FakeReader(script);
    const ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> hold(reader);
    configured =
        pipe2->ConfigureContinuousReader(length, 0, 0, 1, nullptr, reader, nullptr, reader);
    return pipe;
  }
  ComPtr<IWDFUsbTargetDevice> OpenUsb() {
    if (!usb) {
      ComPtr<IWDFUsbTargetFactory> factory;
      const ComPtr<IWDFDevice> device(host->device());
      device.As(factory);
      factory->CreateUsbTargetDevice(usb.Put());
    }
    return usb;
  }
  ComPtr<IWDFUsbTargetPipe> Pipe(UCHAR interfaceIndex, UCHAR pipeIndex) {
    ComPtr<IWDFUsbInterface> interface1;
    OpenUsb()->RetrieveUsbInterface(interfaceIndex, interface1.Put());
    ComPtr<IWDFUsbTargetPipe> pipe;
    interface1->RetrieveUsbPipeObject(pipeIndex, pipe.Put());
    return pipe;
  }
  /// Deletes the USB target and gives up the test's references to it.
  void CloseUsb() {
    usb->DeleteWdfObject();
    usb.Reset();
  }
  /// The default queue of a running device, made by the fake driver.
  ComPtr<IWDFIoQueue> MakeQueue() {
    const ComPtr<IQueueCallbackDeviceIoControl> callback(new FakeQueueCallback(script));
    ComPtr<IWDFIoQueue> queue;
    host->device()->CreateIoQueue(callback.Get(), TRUE, WdfIoQueueDispatchParallel, FALSE, TRUE,
                                  queue.Put());
    return queue;
  }
  std::vector<std::string> StepNames() const {
    std::vector<std::string> names;
    for (const auto& step : host->Steps()) names.push_back(step.step);
    return names;
  }

  VirtualClock clock;
  Ledger ledger;
  CallRecord calls{clock};
  FakeModem modem;
  Script script;
  HRESULT configured = E_PENDING;
  std::unique_ptr<Host> host;
  ComPtr<IWDFUsbTargetDevice> usb;
};

inline ComPtr<IWDFIoTargetStateManagement> StateOf(const ComPtr<IWDFUsbTargetPipe>& pipe) {
  ComPtr<IWDFIoTargetStateManagement> state;
  pipe.As(state);
  return state;
}

}  // namespace bench
