#include "tests/driver/SensorFace.h"

#include <objbase.h>

#include <stdexcept>
#include <utility>

#include "workbench/framework/CountedObject.h"
#include "workbench/sensorapi/ClassExtension.h"

namespace bench {

struct SensorFace::State {
  Rig& rig;
  stelvane::ComPtr<ISensorDriver> driver;
};

namespace {

class Extension final : public CountedObject<ISensorClassExtension> {
 public:
  explicit Extension(std::shared_ptr<SensorFace::State> state)
      : state_(std::move(state)),
        real_(MakeApiObject<ClassExtension>(state_->rig.sensors().world(), state_->rig.sensors())) {
  }

  HRESULT STDMETHODCALLTYPE Initialize(IUnknown* device, IUnknown* sensorDriver) override {
    sensorDriver->QueryInterface(iidOf<ISensorDriver>,
                                 reinterpret_cast<void**>(state_->driver.Put()));
    return real_->Initialize(device, sensorDriver);
  }
  HRESULT STDMETHODCALLTYPE Uninitialize() override {
    state_->driver.Reset();
    return real_->Uninitialize();
  }
  HRESULT STDMETHODCALLTYPE ProcessIoControl(IWDFIoRequest* request) override {
    return real_->ProcessIoControl(request);
  }
  HRESULT STDMETHODCALLTYPE PostEvent(LPWSTR sensorId,
                                      IPortableDeviceValuesCollection* events) override {
    return real_->PostEvent(sensorId, events);
  }
  HRESULT STDMETHODCALLTYPE PostStateChange(LPWSTR sensorId, SensorState state) override {
    return real_->PostStateChange(sensorId, state);
  }
  HRESULT STDMETHODCALLTYPE CleanupFile(IWDFFile* file) override {
    return real_->CleanupFile(file);
  }

 private:
  const std::shared_ptr<SensorFace::State> state_;
  const stelvane::ComPtr<ClassExtension> real_;
};

class Factory final : public CountedObject<IClassFactory> {
 public:
  explicit Factory(std::shared_ptr<SensorFace::State> state) : state_(std::move(state)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    const stelvane::ComPtr<ISensorClassExtension> extension(new Extension(state_));
    return extension->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  const std::shared_ptr<SensorFace::State> state_;
};

}  // namespace

SensorFace::SensorFace(Rig& rig) : state_(std::make_shared<State>(State{rig, {}})) {
  const stelvane::ComPtr<IClassFactory> factory(new Factory(state_));
  if (FAILED(CoRegisterClassObject(clsid::kSensorClassExtension, factory.Get(),
                                   CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_))) {
    throw std::runtime_error("the class extension cannot be registered");
  }
}

SensorFace::~SensorFace() {
  CoRevokeClassObject(cookie_);
}

ISensorDriver* SensorFace::Driver() const {
  return state_->driver.Get();
}

}  // namespace bench
