#include "driver/DeviceContext.h"

#include <objbase.h>

#include "driver/DeviceContext.trace.h"
#include "driver/IoControlCodes.h"
#include "sensor/RadioControl.h"

namespace stelvane {

namespace {

constexpr GUID kDeviceInterfaceClass = {
    0x1c60e337, 0x17c9, 0x42f7, {0x92, 0xfa, 0x39, 0xc5, 0x6e, 0x4b, 0x46, 0xe3}};

}  // namespace

HRESULT DeviceContext::InitializeObject() {
  const HRESULT result = PlainObject::InitializeObject();
  return FAILED(result) ? result : lock_.Initialize();
}

HRESULT DeviceContext::Attach(IWDFDevice* device, DeviceCallbacks* owner) {
  if (classExtensionReady_) {
    TRACE(AttachedTwice);
    return E_UNEXPECTED;
  }
  device_ = ComPtr<IWDFDevice>(device);
  {
    const ScopedLock partners(partnersLock_);
    owner_ = ComPtr<DeviceCallbacks>(owner);
  }
  const ScopedLock lock(lock_);
  sensorStopped_ = false;
  return S_OK;
}

HRESULT DeviceContext::StartSensor() {
  HRESULT result = Core() ? S_OK : StartSensorCore();
  if (FAILED(result)) return result;
  if (!classExtensionReady_) {
    result = CreateClassExtension();
    if (FAILED(result)) {
      TRACE(ClassExtensionFailed, result);
      return result;
    }
    TRACE(ClassExtensionRuns);
  }
  {
    const ScopedLock lock(lock_);
    sensorStopped_ = false;
  }
  classExtensionReady_ = true;
  return result;
}

HRESULT DeviceContext::StartSensorCore() {
  ComPtr<SensorCore> core;
  if (const HRESULT result = CreateObject(core); FAILED(result)) {
    TRACE(CoreNotMade, result);
    return E_UNEXPECTED;
  }
  {
    const ScopedLock partners(partnersLock_);
    sensorCore_ = core;
  }
  RETURN_IF_FAILED(core->Start(device_.Get()), CoreNotStarted);
  return S_OK;
}

HRESULT DeviceContext::CreateClassExtension() {
  if (ClassExtension()) {
    TRACE(ClassExtensionSetTwice);
    return E_UNEXPECTED;
  }
  ComPtr<ISensorClassExtension> extension;
  HRESULT result =
      CoCreateInstance(clsid::kSensorClassExtension, nullptr, CLSCTX_INPROC_SERVER,
                       iidOf<ISensorClassExtension>, reinterpret_cast<void**>(extension.Put()));
  if (result == REGDB_E_CLASSNOTREG) {
    TRACE(ClassNotRegistered);
    return E_UNEXPECTED;
  }
  RETURN_IF_FAILED(result, ClassExtensionNotMade);
  {
    // Stays on a later failure, for ReleaseClassExtension.
    const ScopedLock partners(partnersLock_);
    classExtension_ = extension;
  }
  const ComPtr<SensorCore> core = Core();
  ComPtr<IUnknown> face;
  RETURN_IF_FAILED(
      core->DriverFace()->QueryInterface(iidOf<IUnknown>, reinterpret_cast<void**>(face.Put())),
      CoreFaceMissing);
  result = device_ ? extension->Initialize(device_.Get(), face.Get()) : E_POINTER;
  RETURN_IF_FAILED(result, ClassExtensionNotInitialized);
  core->SetClassExtension(extension.Get());
  return EnableDeviceInterface();
}

HRESULT DeviceContext::EnableDeviceInterface() {
  const HRESULT created = device_->CreateDeviceInterface(&kDeviceInterfaceClass, nullptr);
  TRACE(InterfaceCreated, created);
  if (FAILED(created)) return created;
  RETURN_IF_FAILED(device_->AssignDeviceInterfaceState(&kDeviceInterfaceClass, nullptr, TRUE),
                   InterfaceNotEnabled);
  return S_OK;
}

HRESULT DeviceContext::StopSensorCore() {
  const ScopedLock lock(lock_);
  if (sensorStopped_) return S_OK;
  HRESULT result = S_OK;
  if (const ComPtr<SensorCore> core = Core(); core) {
    result = core->Stop();
    if (FAILED(result)) TRACE(CoreNotStopped, result);
  }
  {
    ComPtr<SensorCore> released;
    const ScopedLock partners(partnersLock_);
    std::swap(released, sensorCore_);
  }
  sensorStopped_ = true;
  return result;
}

void DeviceContext::ReleaseClassExtension() {
  ComPtr<ISensorClassExtension> extension;
  ComPtr<DeviceCallbacks> owner;
  {
    const ScopedLock partners(partnersLock_);
    extension = std::move(classExtension_);
    owner = std::move(owner_);
  }
  if (extension) extension->Uninitialize();
  extension.Reset();
  owner.Reset();
  classExtensionReady_ = false;
}

HRESULT DeviceContext::PowerUp() {
  if (const ComPtr<SensorCore> core = Core(); core) return core->PowerUp();
  TRACE(NoCoreToPowerUp);
  return E_FAIL;
}

HRESULT DeviceContext::PowerDown() {
  if (const ComPtr<SensorCore> core = Core(); core) return core->PowerDown();
  TRACE(NoCoreToPowerDown);
  return E_FAIL;
}

void DeviceContext::PostSensorEvent(std::uint32_t event) {
  if (const ComPtr<SensorCore> core = Core(); core) core->PostSensorEvent(event);
}

void DeviceContext::ProcessIoControl(IWDFIoRequest* request) {
  const ComPtr<ISensorClassExtension> extension = ClassExtension();
  if (!extension) return;
  const HRESULT result = extension->ProcessIoControl(request);
  TRACE(RequestForwarded, result);
}

void DeviceContext::CleanupFile(IWDFFile* file) {
  if (const ComPtr<ISensorClassExtension> extension = ClassExtension(); extension) {
    extension->CleanupFile(file);
  }
}

HRESULT DeviceContext::HandlePrivateIoControl(IWDFIoRequest* request, ULONG controlCode) {
  ComPtr<DeviceCallbacks> owner;
  {
    const ScopedLock partners(partnersLock_);
    owner = owner_;
  }
  if (!owner) {
    TRACE(RefusedInShutdown, controlCode);
    return kShutdownInProgress;
  }
  const CallbackScope scope(owner->Guard(), kPrivateIoControl);
  HRESULT result = scope.Result();
  if (FAILED(result)) {
    TRACE(RefusedInShutdown, controlCode);
    return result;
  }
  if (const ComPtr<SensorCore> core = Core(); core) {
    switch (controlCode) {
      case kIoctlReadRadioState:
        result = ReadRadioState(*core.Get(), request, RadioValue::kCurrent);
        break;
      case kIoctlReadPreviousRadioState:
        result = ReadRadioState(*core.Get(), request, RadioValue::kPrevious);
        break;
      default:
        result = SetRadioState(*core.Get(), request, controlCode == kIoctlStorePreviousRadioState);
    }
  }
  TRACE(PrivateRequestHandled, controlCode, result);
  return result;
}

ComPtr<SensorCore> DeviceContext::Core() {
  const ScopedLock partners(partnersLock_);
  return sensorCore_;
}

ComPtr<ISensorClassExtension> DeviceContext::ClassExtension() {
  const ScopedLock partners(partnersLock_);
  return classExtension_;
}

}  // namespace stelvane
