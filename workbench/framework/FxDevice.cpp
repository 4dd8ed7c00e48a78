#include "workbench/framework/FxDevice.h"

#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxDriver.h"
#include "workbench/framework/FxPropertyStore.h"
#include "workbench/framework/FxQueue.h"
#include "workbench/framework/FxSentRequest.h"
#include "workbench/framework/FxUsbDevice.h"
#include "workbench/framework/Text.h"

namespace bench {

FxDevice::FxDevice(const World& world, FxDriver& driver, const DevicePlan& plan, UsbFunction& usb,
                   FxDeviceInit::Choices choices)
    : FxObject(world, "device", DeletedBy::kFramework),
      driver_(driver),
      plan_(plan),
      usb_(usb),
      choices_(choices) {}

void FxDevice::TakeCallbacks(IUnknown& callbackObject) {
  CheckQueryInterface(world(), callbackObject);
  callbacks_.pnp = AskFor<IPnpCallback>(world(), callbackObject);
  callbacks_.hardware = AskFor<IPnpCallbackHardware>(world(), callbackObject);
  callbacks_.selfManagedIo = AskFor<IPnpCallbackSelfManagedIo>(world(), callbackObject);
  callbacks_.fileCleanup = AskFor<IFileCallbackCleanup>(world(), callbackObject);
  CallAtCleanup(AskFor<IObjectCleanup>(world(), callbackObject));
  AskForUndrivenDeviceCallbacks(world(), callbackObject);
}

void FxDevice::OnDeleted() {
  callbacks_ = {};
}

void* FxDevice::Find(const GUID& iid) {
  return Match<IWDFDevice3, IWDFDevice2, IWDFDevice, IWDFObject, IWDFUsbTargetFactory>(this, iid);
}

FxQueue* FxDevice::DefaultQueue() const {
  const std::lock_guard lock(mutex_);
  return defaultQueue_;
}

FxUsbDevice* FxDevice::UsbTarget() const {
  const std::lock_guard lock(mutex_);
  return usbTarget_ != nullptr && usbTarget_->IsUsable() ? usbTarget_ : nullptr;
}

std::vector<FxDevice::DeviceInterface> FxDevice::DeviceInterfaces() const {
  const std::lock_guard lock(mutex_);
  return deviceInterfaces_;
}

std::optional<WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS> FxDevice::IdleSettings() const {
  const std::lock_guard lock(mutex_);
  return idleSettings_;
}

void FxDevice::CheckIdleBalance() const {
  if (const int holds = idleHolds_; holds > 0) {
    Report(rule::kIdleBalance, std::to_string(holds) + " StopIdle without ResumeIdle");
  }
}

HRESULT FxDevice::RetrieveDevicePropertyStore(PCWSTR subkey, WDF_PROPERTY_STORE_RETRIEVE_FLAGS,
                                              IWDFNamedPropertyStore** propStore,
                                              WDF_PROPERTY_STORE_DISPOSITION* disposition) {
  return Invoke("IWDFDevice::RetrieveDevicePropertyStore", [&] {
    *propStore = nullptr;
    const auto place = plan_.registry.find(TextOf(subkey));
    if (place == plan_.registry.end()) return kFileNotFound;
    if (disposition != nullptr) *disposition = OpenedExistingStore;
    auto& store = Make<FxPropertyStore>(world(), this, place->second);
    store.HandOut(propStore);
    store.Orphan();
    return S_OK;
  });
}

void FxDevice::GetDriver(IWDFDriver** driver) {
  *driver = nullptr;
  InvokeVoid("IWDFDevice::GetDriver", [&] { driver_.HandOut(driver); });
}

HRESULT FxDevice::RetrieveDeviceInstanceId(PWSTR buffer, DWORD* chars) {
  return Invoke("IWDFDevice::RetrieveDeviceInstanceId", [&] {
    const DWORD room = *chars;
    const auto needed = static_cast<DWORD>(plan_.instanceId.size() + 1);
    *chars = needed;
    if (buffer == nullptr) {
      if (room == 0) return S_OK;
      Report(rule::kBadArgument, "RetrieveDeviceInstanceId of a length without a buffer");
      return E_INVALIDARG;
    }
    if (room < needed) return kInsufficientBuffer;
    CopyText(plan_.instanceId, buffer);
    return S_OK;
  });
}

void FxDevice::GetDefaultIoQueue(IWDFIoQueue** ioQueue) {
  // Without a queue the pointer stays as the caller left it.
  InvokeVoid("IWDFDevice::GetDefaultIoQueue", [&] {
    if (FxQueue* const queue = DefaultQueue(); queue != nullptr) queue->HandOut(ioQueue);
  });
}

HRESULT FxDevice::CreateIoQueue(IUnknown* callbackInterface, BOOL isDefault,
                                WDF_IO_QUEUE_DISPATCH_TYPE dispatchType, BOOL powerManaged, BOOL,
                                IWDFIoQueue** ioQueue) {
  return Invoke("IWDFDevice::CreateIoQueue", [&] {
    *ioQueue = nullptr;
    if (callbackInterface == nullptr) return kBadConfiguration;
    if (isDefault == FALSE || dispatchType != WdfIoQueueDispatchParallel) {
      Report(rule::kUnexpectedCall, "CreateIoQueue of other than a default queue and parallel");
      return E_NOTIMPL;
    }
    // The framework would hold requests back in a low-power state, which a driver that idles its
    // device would never leave again for them.
    if (powerManaged != FALSE) Report(rule::kPowerManagedQueue, "CreateIoQueue");
    if (DefaultQueue() != nullptr) return kInvalidDeviceState;
    CheckQueryInterface(world(), *callbackInterface);
    auto callback = AskFor<IQueueCallbackDeviceIoControl>(world(), *callbackInterface);
    if (!callback) return kBadConfiguration;
    AskForUndrivenQueueCallbacks(world(), *callbackInterface);
    auto& queue = Make<FxQueue>(world(), this, *this, std::move(callback));
    queue.CallAtCleanup(AskFor<IObjectCleanup>(world(), *callbackInterface));
    queue.HandOut(ioQueue);
    const std::lock_guard lock(mutex_);
    defaultQueue_ = &queue;
    return S_OK;
  });
}

HRESULT FxDevice::CreateDeviceInterface(LPCGUID deviceInterfaceGuid, PCWSTR) {
  return Invoke("IWDFDevice::CreateDeviceInterface", [&] {
    const std::lock_guard lock(mutex_);
    deviceInterfaces_.push_back({.id = *deviceInterfaceGuid});
    return S_OK;
  });
}

HRESULT FxDevice::AssignDeviceInterfaceState(LPCGUID deviceInterfaceGuid, PCWSTR, BOOL enable) {
  return Invoke("IWDFDevice::AssignDeviceInterfaceState", [&] {
    const std::lock_guard lock(mutex_);
    for (DeviceInterface& known : deviceInterfaces_) {
      if (!SameGuid(known.id, *deviceInterfaceGuid)) continue;
      known.enabled = enable != FALSE;
      return S_OK;
    }
    return kNotFound;
  });
}

HRESULT FxDevice::CreateRequest(IUnknown* callbackInterface, IWDFObject* parentObject,
                                IWDFIoRequest** request) {
  return Invoke("IWDFDevice::CreateRequest", [&] {
    *request = nullptr;
    FxBase* const parent = parentObject == nullptr ? this : FindObject<FxBase>(parentObject);
    if (parent == nullptr) return E_INVALIDARG;
    auto& made = Make<FxSentRequest>(world(), parent);
    if (callbackInterface != nullptr) {
      CheckQueryInterface(world(), *callbackInterface);
      made.CallAtCleanup(AskFor<IObjectCleanup>(world(), *callbackInterface));
    }
    made.HandOut(request);
    return S_OK;
  });
}

HRESULT FxDevice::StopIdle(BOOL waitForD0) {
  if (waitForD0 == FALSE) ++unwaitedStopIdles_;
  // Counted whatever the result, a planned failure too: each call has to be matched by one
  // ResumeIdle.
  if (IsUsable()) ++idleHolds_;
  return Invoke("IWDFDevice2::StopIdle", [&] {
    if (!choices_.ownsPowerPolicy) return kInvalidDeviceRequest;
    return plan_.stopIdleNeedsD0 && !wasWorking_ ? kInvalidDeviceRequest : S_OK;
  });
}

void FxDevice::ResumeIdle() {
  InvokeVoid("IWDFDevice2::ResumeIdle", [&] {
    if (--idleHolds_ >= 0) return;
    ++idleHolds_;
    Report(rule::kIdleBalance, "ResumeIdle without StopIdle");
  });
}

HRESULT FxDevice::AssignS0IdleSettingsEx(PWUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS idleSettings) {
  return Invoke("IWDFDevice3::AssignS0IdleSettingsEx", [&] {
    if (idleSettings->Size != sizeof *idleSettings) {
      Report(rule::kBadArgument, "AssignS0IdleSettingsEx with a wrong size");
      return E_INVALIDARG;
    }
    const std::lock_guard lock(mutex_);
    idleSettings_ = *idleSettings;
    return S_OK;
  });
}

HRESULT FxDevice::CreateUsbTargetDevice(IWDFUsbTargetDevice** device) {
  return Invoke("IWDFUsbTargetFactory::CreateUsbTargetDevice", [&] {
    *device = nullptr;
    if (UsbTarget() != nullptr) return E_ACCESSDENIED;
    FxUsbDevice& target = FxUsbDevice::Create(world(), *this, usb_);
    target.HandOut(device);
    const std::lock_guard lock(mutex_);
    usbTarget_ = &target;
    return S_OK;
  });
}

}  // namespace bench
