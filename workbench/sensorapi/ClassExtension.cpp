#include "workbench/sensorapi/ClassExtension.h"

#include <utility>

#include "workbench/framework/DriverCall.h"
#include "workbench/sensorapi/PortableDeviceCollections.h"

namespace bench {
namespace {

constexpr HRESULT kCanNotComplete = HRESULT_FROM_WIN32(ERROR_CAN_NOT_COMPLETE);
constexpr HRESULT kAlreadyInitialized = HRESULT_FROM_WIN32(ERROR_ALREADY_INITIALIZED);
constexpr HRESULT kNobodySubscribed = HRESULT_FROM_WIN32(ERROR_OBJECT_NOT_FOUND);

constexpr PROPERTYKEY kObjectId = {keys::kObjectSet, 2};

void Append(std::string* line, const std::string& part) {
  if (!line->empty()) *line += ", ";
  *line += part;
}

}  // namespace

ClassExtension::ClassExtension(const World& world, SensorService& service)
    : ApiObject(world, "class extension", "ISensorClassExtension"), service_(service) {}

// What a leaked class extension still holds may be gone already.
ClassExtension::~ClassExtension() {
  static_cast<void>(device_.Detach());
  static_cast<void>(driver_.callbacks.Detach());
}

void ClassExtension::OnDestroyed() {
  if (End() == State::kInitialized) Report(rule::kNeverUninitialized, "IUnknown::Release");
}

std::string ClassExtension::SensorId() const {
  const std::lock_guard lock(mutex_);
  return driver_.sensorId.empty() ? std::string() : Utf8(driver_.sensorId.data());
}

HRESULT STDMETHODCALLTYPE ClassExtension::Initialize(IUnknown* device, IUnknown* sensorDriver) {
  return Call("Initialize", [&] {
    if (device == nullptr || sensorDriver == nullptr) return E_POINTER;
    CheckQueryInterface(world(), *sensorDriver, &iidOf<ISensorDriver>);
    ComPtr<ISensorDriver> callbacks = AskFor<ISensorDriver>(world(), *sensorDriver);
    if (!callbacks) return E_NOINTERFACE;
    std::vector<WCHAR> sensorId;
    if (service_.options().enumerateSensors) {
      const HRESULT result = Enumerate(*callbacks.Get(), &sensorId);
      if (FAILED(result) && !service_.options().tolerateFailedEnumeration) return result;
    }
    return Begin(device, std::move(callbacks), std::move(sensorId));
  });
}

HRESULT ClassExtension::Begin(IUnknown* device, ComPtr<ISensorDriver> callbacks,
                              std::vector<WCHAR> sensorId) {
  {
    const std::lock_guard lock(mutex_);
    if (state_ == State::kInitialized) return kAlreadyInitialized;
    if (state_ == State::kUninitialized) return kCanNotComplete;
    state_ = State::kInitialized;
    device_ = ComPtr<IUnknown>(device);
    driver_ = {std::move(callbacks), std::move(sensorId)};
  }
  service_.SetExtension(this);
  return S_OK;
}

HRESULT ClassExtension::Enumerate(ISensorDriver& callbacks, std::vector<WCHAR>* sensorId) {
  ComPtr<IPortableDeviceValuesCollection> objects;
  HRESULT result = CallDriver(world(), "ISensorDriver::OnGetSupportedSensorObjects",
                              [&] { return callbacks.OnGetSupportedSensorObjects(objects.Put()); });
  if (FAILED(result)) return result;
  if (!objects) {
    Report(rule::kNoResult, "OnGetSupportedSensorObjects");
    return E_POINTER;
  }
  std::vector<KeyValues> sets;
  result = ReadValueSets(world(), *objects.Get(), &sets);
  if (FAILED(result)) return result;
  const Variant* const id = sets.empty() ? nullptr : FindValue(sets.front(), kObjectId);
  if (id == nullptr || id->Type() != VT_LPWSTR) return kNotFound;
  *sensorId = Wide(Utf8(id->Get().pwszVal));
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassExtension::Uninitialize() {
  return Call("Uninitialize", [&] {
    const State before = End();
    if (before == State::kUninitialized) Report(rule::kAfterUninitialize, "Uninitialize");
    // Without Initialize it is not a mistake: so ends a start that failed half-way.
    return before == State::kInitialized ? S_OK : kCanNotComplete;
  });
}

ClassExtension::State ClassExtension::End() {
  service_.DropExtension(this);
  ComPtr<IUnknown> device;  // both released after the lock
  Driver driver;
  const std::lock_guard lock(mutex_);
  std::swap(device, device_);
  std::swap(driver, driver_);
  clients_.clear();
  return std::exchange(state_, State::kUninitialized);
}

HRESULT ClassExtension::Ready(std::string_view method) {
  State state;
  {
    const std::lock_guard lock(mutex_);
    state = state_;
  }
  if (state == State::kInitialized) return S_OK;
  Report(state == State::kNew ? rule::kNotInitialized : rule::kAfterUninitialize, method);
  return kCanNotComplete;
}

HRESULT ClassExtension::CheckSensor(std::string_view method, const WCHAR* sensorId) {
  const std::string known = SensorId();
  const std::string given = Utf8(sensorId);
  if (sensorId != nullptr && (known.empty() || given == known)) return S_OK;
  Report(rule::kWrongSensor, std::string(method) + " for '" + given + "'");
  return E_INVALIDARG;
}

HRESULT ClassExtension::CheckEvent(const KeyValues& values, bench::Report* report) {
  *report = DecodeReport(world().clock.Now(), values);
  const Variant* const time = FindValue(values, keys::kTimestamp);
  const bool hasTime = time != nullptr && time->Type() == VT_FILETIME;
  if (!hasTime || !report->eventId) {
    Report(rule::kMalformedEvent, hasTime ? "no event id" : "no time stamp");
    return E_INVALIDARG;
  }
  if (service_.options().checkReports && SameGuid(*report->eventId, kSensorEventDataUpdated)) {
    std::string departures;
    for (const std::string& fault : report->faults) Append(&departures, fault);
    for (const std::string& name : report->MissingFields()) Append(&departures, "no " + name);
    if (!departures.empty()) Report(rule::kBadReport, departures);
  }
  return S_OK;
}

std::vector<IWDFFile*> ClassExtension::Subscribers() const {
  const std::lock_guard lock(mutex_);
  std::vector<IWDFFile*> files;
  for (const auto& [file, client] : clients_) {
    if (client.subscribed) files.push_back(file);
  }
  return files;
}

HRESULT STDMETHODCALLTYPE ClassExtension::PostEvent(LPWSTR sensorId,
                                                    IPortableDeviceValuesCollection* events) {
  return Call("PostEvent", [&] {
    HRESULT result = Ready("PostEvent");
    if (SUCCEEDED(result)) result = CheckSensor("PostEvent", sensorId);
    if (FAILED(result)) return result;
    if (events == nullptr) return E_POINTER;
    std::vector<KeyValues> sets;
    result = ReadValueSets(world(), *events, &sets);
    if (SUCCEEDED(result) && sets.empty()) {
      Report(rule::kMalformedEvent, "no value set");
      result = E_INVALIDARG;
    }
    std::vector<bench::Report> reports(sets.size());
    for (std::size_t i = 0; SUCCEEDED(result) && i < sets.size(); ++i) {
      result = CheckEvent(sets[i], &reports[i]);
    }
    if (FAILED(result)) return result;
    const std::vector<IWDFFile*> subscribers = Subscribers();
    if (subscribers.empty()) return kNobodySubscribed;
    for (const bench::Report& report : reports) service_.Deliver(report, subscribers);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE ClassExtension::PostStateChange(LPWSTR sensorId, SensorState state) {
  return Call("PostStateChange", [&] {
    HRESULT result = Ready("PostStateChange");
    if (SUCCEEDED(result)) result = CheckSensor("PostStateChange", sensorId);
    if (FAILED(result)) return result;
    if (static_cast<unsigned>(state) > static_cast<unsigned>(SENSOR_STATE_MAX)) {
      Report(rule::kBadState, std::to_string(static_cast<int>(state)));
      return E_INVALIDARG;
    }
    service_.Deliver(state);
    return S_OK;
  });
}

}  // namespace bench
