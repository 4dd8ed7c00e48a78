#include "workbench/framework/Host.h"

#include <algorithm>
#include <stdexcept>

#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxDevice.h"
#include "workbench/framework/FxDriver.h"
#include "workbench/framework/FxFile.h"
#include "workbench/framework/FxQueue.h"
#include "workbench/framework/FxUsbDevice.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

stelvane::ComPtr<IDriverEntry> LoadDriver(IClassFactory& factory, const World& world,
                                          HRESULT& result) {
  const auto create = [&](const GUID& iid, void** object) {
    return CallDriver(world, "IClassFactory::CreateInstance",
                      [&] { return factory.CreateInstance(nullptr, iid, object); });
  };
  stelvane::ComPtr<IDriverEntry> entry;
  result = create(iidOf<IDriverEntry>, reinterpret_cast<void**>(entry.Put()));
  if (FAILED(result)) {
    stelvane::ComPtr<IUnknown> object;
    result = create(iidOf<IUnknown>, reinterpret_cast<void**>(object.Put()));
    if (SUCCEEDED(result)) entry = AskFor<IDriverEntry>(world, *object.Get());
    if (SUCCEEDED(result) && !entry) result = E_NOINTERFACE;
  }
  if (entry) CheckQueryInterface(world, *entry.Get());
  return entry;
}

Host::Host(Clock& clock, Ledger& ledger, CallRecord& calls, UsbLink& link, IDriverEntry* driver,
           DevicePlan plan)
    : world_{.clock = clock, .ledger = ledger, .calls = calls},
      plan_(std::move(plan)),
      usb_(std::make_unique<UsbFunction>(clock, link, plan_.usb)),
      entry_(driver),
      fxDriver_(&Make<FxDriver>(world_, nullptr, plan_, *usb_)) {}

Host::~Host() {
  fxDriver_->Delete();
  world_.ledger.WaitForDeleted();
}

void Host::Expect(std::string_view step, std::initializer_list<State> legal) const {
  if (std::ranges::find(legal, state_) != legal.end()) return;
  throw std::logic_error(std::string(step) + " is out of the framework's order");
}

template <class Call>
HRESULT Host::Step(std::string_view step, Call call) {
  const HRESULT result = CallDriver(world_, step, call);
  const std::lock_guard lock(stepsLock_);
  steps_.push_back({.step = std::string(step.substr(step.rfind(':') + 1)), .result = result});
  return result;
}

template <class Call>
HRESULT Host::StepDown(std::string_view step, Call call) {
  const bool reachable = !usb_->IsUnplugged() && device()->UsbTarget() != nullptr;
  const HRESULT result = Step(step, call);
  if (FAILED(result) && reachable) world_.ledger.Report(rule::kFailedWayDown, step);
  return result;
}

template <class Call>
void Host::StepVoid(std::string_view step, Call call) {
  Step(step, [&] {
    call();
    return S_OK;
  });
}

HRESULT Host::AddDevice() {
  Expect("AddDevice", {State::kNoDevice});
  if (!initialized_) {
    const HRESULT result =
        Step("IDriverEntry::OnInitialize", [&] { return entry_->OnInitialize(fxDriver_); });
    if (FAILED(result)) return result;
    initialized_ = true;
  }
  usb_->PlugIn();
  auto& init = Make<FxDeviceInit>(world_, nullptr);
  const HRESULT result =
      Step("IDriverEntry::OnDeviceAdd", [&] { return entry_->OnDeviceAdd(fxDriver_, &init); });
  init.Delete();
  FxDevice* const created = fxDriver_->TakeCreatedDevice();
  if (created == nullptr) return result;
  if (FAILED(result)) {
    created->Delete();
    return result;
  }
  device_ = created;
  ioInitialized_ = false;
  state_ = State::kAdded;
  return result;
}

HRESULT Host::PrepareHardware() {
  Expect("PrepareHardware", {State::kAdded});
  HRESULT result = S_OK;
  if (const auto& callback = device()->callbacks().hardware) {
    result = Step("IPnpCallbackHardware::OnPrepareHardware",
                  [&] { return callback->OnPrepareHardware(device_); });
  }
  state_ = FAILED(result) ? State::kPrepareFailed : State::kPrepared;
  return result;
}

HRESULT Host::D0Entry(WDF_POWER_DEVICE_STATE previousState) {
  Expect("D0Entry", {State::kPrepared, State::kPoweredDown});
  device()->EnteredWorkingState();
  HRESULT result = S_OK;
  if (const auto& callback = device()->callbacks().pnp) {
    result = Step("IPnpCallback::OnD0Entry",
                  [&] { return callback->OnD0Entry(device_, previousState); });
  }
  state_ = FAILED(result) ? State::kD0EntryFailed : State::kWorking;
  return result;
}

HRESULT Host::SelfManagedIoInit() {
  Expect("SelfManagedIoInit", {State::kWorking});
  if (ioInitialized_) throw std::logic_error("self-managed I/O is initialised once a start");
  HRESULT result = S_OK;
  ioInitialized_ = true;
  if (const auto& callback = device()->callbacks().selfManagedIo) {
    result = Step("IPnpCallbackSelfManagedIo::OnSelfManagedIoInit",
                  [&] { return callback->OnSelfManagedIoInit(device_); });
  }
  if (SUCCEEDED(result)) state_ = State::kRunning;
  return result;
}

HRESULT Host::SelfManagedIoSuspend() {
  Expect("SelfManagedIoSuspend", {State::kRunning});
  HRESULT result = S_OK;
  if (FxQueue* const queue = device()->DefaultQueue(); queue != nullptr) queue->AskForAnswers();
  if (const auto& callback = device()->callbacks().selfManagedIo) {
    result = StepDown("IPnpCallbackSelfManagedIo::OnSelfManagedIoSuspend",
                      [&] { return callback->OnSelfManagedIoSuspend(device_); });
  }
  state_ = State::kWorking;
  return result;
}

HRESULT Host::D0Exit(WDF_POWER_DEVICE_STATE newState) {
  Expect("D0Exit", {State::kWorking});
  HRESULT result = S_OK;
  if (const auto& callback = device()->callbacks().pnp) {
    result =
        StepDown("IPnpCallback::OnD0Exit", [&] { return callback->OnD0Exit(device_, newState); });
  }
  state_ = State::kPoweredDown;
  return result;
}

HRESULT Host::SelfManagedIoRestart() {
  Expect("SelfManagedIoRestart", {State::kWorking});
  if (!ioInitialized_) throw std::logic_error("self-managed I/O restarts only after its init");
  HRESULT result = S_OK;
  if (const auto& callback = device()->callbacks().selfManagedIo) {
    result = Step("IPnpCallbackSelfManagedIo::OnSelfManagedIoRestart",
                  [&] { return callback->OnSelfManagedIoRestart(device_); });
  }
  if (SUCCEEDED(result)) state_ = State::kRunning;
  return result;
}

void Host::SelfManagedIoFlush() {
  Expect("SelfManagedIoFlush", {State::kPoweredDown, State::kD0EntryFailed});
  if (const auto& callback = device()->callbacks().selfManagedIo) {
    StepVoid("IPnpCallbackSelfManagedIo::OnSelfManagedIoFlush",
             [&] { callback->OnSelfManagedIoFlush(device_); });
  }
  state_ = State::kFlushed;
}

void Host::SelfManagedIoCleanup() {
  Expect("SelfManagedIoCleanup", {State::kFlushed});
  if (const auto& callback = device()->callbacks().selfManagedIo) {
    StepVoid("IPnpCallbackSelfManagedIo::OnSelfManagedIoCleanup",
             [&] { callback->OnSelfManagedIoCleanup(device_); });
  }
  state_ = State::kCleanedUp;
}

HRESULT Host::ReleaseHardware() {
  Expect("ReleaseHardware", {State::kPrepareFailed, State::kD0EntryFailed, State::kPrepared,
                             State::kPoweredDown, State::kCleanedUp});
  HRESULT result = S_OK;
  if (const auto& callback = device()->callbacks().hardware) {
    result = StepDown("IPnpCallbackHardware::OnReleaseHardware",
                      [&] { return callback->OnReleaseHardware(device_); });
  }
  device()->CheckIdleBalance();
  state_ = State::kReleased;
  return result;
}

void Host::SurpriseRemoval() {
  if (device_ == nullptr) throw std::logic_error("there is no device to remove");
  usb_->Unplug();
  if (const auto& callback = device()->callbacks().pnp) {
    StepVoid("IPnpCallback::OnSurpriseRemoval", [&] { callback->OnSurpriseRemoval(device_); });
  }
}

HRESULT Host::QueryRemove() {
  Expect("QueryRemove", {State::kRunning, State::kPoweredDown});
  const auto& callback = device()->callbacks().pnp;
  if (!callback) return S_OK;
  return Step("IPnpCallback::OnQueryRemove", [&] { return callback->OnQueryRemove(device_); });
}

HRESULT Host::QueryStop() {
  Expect("QueryStop", {State::kRunning, State::kPoweredDown});
  const auto& callback = device()->callbacks().pnp;
  if (!callback) return S_OK;
  return Step("IPnpCallback::OnQueryStop", [&] { return callback->OnQueryStop(device_); });
}

void Host::RemoveDevice() {
  Expect("RemoveDevice", {State::kAdded, State::kReleased});
  device()->Delete();
  device_ = nullptr;
  state_ = State::kNoDevice;
}

void Host::Unload() {
  Expect("Unload", {State::kNoDevice});
  if (initialized_) {
    StepVoid("IDriverEntry::OnDeinitialize", [&] { entry_->OnDeinitialize(fxDriver_); });
  }
  entry_.Reset();
  fxDriver_->Delete();
  world_.ledger.WaitForDeleted();
  world_.ledger.ReportLeaks();
  state_ = State::kUnloaded;
}

std::vector<Host::StepResult> Host::Steps() const {
  const std::lock_guard lock(stepsLock_);
  return steps_;
}

ClientRequest Host::SendIoControl(ULONG code, std::string_view input, std::size_t outputSize,
                                  IWDFFile* file, Dispatch dispatch) {
  auto outcome = std::make_shared<ClientRequest::Outcome>(world_.clock);
  ClientRequest handle(outcome);
  FxDevice* const device = device_;
  FxQueue* const queue = device == nullptr ? nullptr : device->DefaultQueue();
  if (queue == nullptr) {
    outcome->Complete(kInvalidDeviceRequest, 0, {});
    return handle;
  }
  FxFile* const fxFile =
      file == nullptr ? nullptr : dynamic_cast<FxFile*>(world_.ledger.Find(file));
  auto& request = FxClientRequest::Create(
      world_, *queue, {.code = code, .input = input, .outputSize = outputSize, .file = fxFile},
      outcome);
  queue->Present(request, dispatch == Dispatch::kFrameworkThread ? FxQueue::On::kFrameworkThread
                                                                 : FxQueue::On::kCallingThread);
  return handle;
}

IWDFFile* Host::OpenFile() {
  if (device_ == nullptr) throw std::logic_error("there is no device to open");
  return &Make<FxFile>(world_, device_, "client file");
}

void Host::CleanupFile(IWDFFile* file) {
  auto* const fxFile = dynamic_cast<FxFile*>(world_.ledger.Find(file));
  if (fxFile == nullptr || !fxFile->IsUsable()) throw std::logic_error("the file is not open");
  if (const auto& callback = device()->callbacks().fileCleanup) {
    StepVoid("IFileCallbackCleanup::OnCleanupFile", [&] { callback->OnCleanupFile(fxFile); });
  }
  fxFile->Delete();
}

std::size_t Host::OpenRequests() const {
  FxDevice* const device = device_;
  FxQueue* const queue = device == nullptr ? nullptr : device->DefaultQueue();
  return queue == nullptr ? 0 : queue->Waiting() + queue->WithDriver();
}

}  // namespace bench
