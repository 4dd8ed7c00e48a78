#include "sensor/SensorDriver.h"

#include <objbase.h>

#include <algorithm>
#include <iterator>
#include <new>

#include "platform/SensorKeys.h"
#include "sensor/DataReport.h"
#include "sensor/Properties.h"
#include "sensor/SensorCore.h"
#include "sensor/SensorDriver.trace.h"

namespace stelvane {

namespace {

constexpr DWORD kReadWaitMs = 1800;

bool IsOnEarth(const FixRecord& fix) {
  return fix.latitude >= -90 && fix.latitude <= 90 && fix.longitude >= -180 && fix.longitude <= 180;
}

// For the trace; what does not fit is shown at the limit.
LONG Microdegrees(double degrees) {
  return static_cast<LONG>(std::clamp(degrees, -2000.0, 2000.0) * 1e6);
}

// No exception leaves a call of the class extension.
template <class Work>
HRESULT Guarded(Work&& work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    TRACE(CallAborted);
    return E_OUTOFMEMORY;
  }
}

HRESULT RefuseNull() {
  TRACE(NullArgument);
  return E_INVALIDARG;
}

using KeyCollection = ComPtr<IPortableDeviceKeyCollection>;

HRESULT GiveKeys(IPortableDeviceKeyCollection** keyCollection, HRESULT (*make)(KeyCollection&)) {
  if (keyCollection == nullptr) return RefuseNull();
  KeyCollection keys;
  const HRESULT result = make(keys);
  *keyCollection = SUCCEEDED(result) ? keys.Detach() : nullptr;
  return result;
}

HRESULT GiveEvents(GUID** events, ULONG* count) {
  if (events == nullptr || count == nullptr) return RefuseNull();
  constexpr GUID kEvents[] = {kSensorEventDataUpdated, kSensorEventStateChanged};
  *count = 0;
  *events = static_cast<GUID*>(CoTaskMemAlloc(sizeof(kEvents)));
  if (*events == nullptr) {
    TRACE(EventsNotMade);
    return E_OUTOFMEMORY;
  }
  std::copy(std::begin(kEvents), std::end(kEvents), *events);
  *count = static_cast<ULONG>(std::size(kEvents));
  return S_OK;
}

HRESULT MakeValues(ComPtr<IPortableDeviceValues>& values) {
  RETURN_IF_FAILED(MakeContainer(clsid::kPortableDeviceValues, values), ValuesNotMade);
  return S_OK;
}

// A container that `fill` succeeded with, or null.
template <class Fill>
HRESULT GiveValues(IUnknown* input, IPortableDeviceValues** values, Fill&& fill) {
  if (input == nullptr || values == nullptr) return RefuseNull();
  *values = nullptr;
  ComPtr<IPortableDeviceValues> made;
  HRESULT result = MakeValues(made);
  if (SUCCEEDED(result)) result = Guarded([&] { return fill(made.Get()); });
  if (SUCCEEDED(result)) *values = made.Detach();
  return result;
}

}  // namespace

HRESULT SensorDriver::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualGUID(iid, iidOf<IUnknown>) && !IsEqualGUID(iid, iidOf<ISensorDriver>)) {
    return E_NOINTERFACE;
  }
  *object = static_cast<ISensorDriver*>(this);
  AddRef();
  return S_OK;
}

ULONG SensorDriver::AddRef() noexcept {
  return core_.AddRef();
}
ULONG SensorDriver::Release() noexcept {
  return core_.Release();
}

HRESULT SensorDriver::OnGetSupportedDataFields(
    LPWSTR sensorId, IPortableDeviceKeyCollection** keyCollection) noexcept {
  TRACE(SupportedDataFieldsEntered);
  const HRESULT result = GiveKeys(keyCollection, MakeSupportedDataFields);
  TRACE(SupportedDataFieldsLeft, result);
  return result;
}

HRESULT SensorDriver::OnGetSupportedEvents(LPWSTR sensorId, GUID** events, ULONG* count) noexcept {
  TRACE(SupportedEventsEntered);
  const HRESULT result = GiveEvents(events, count);
  TRACE(SupportedEventsLeft, result);
  return result;
}

HRESULT SensorDriver::OnGetSupportedProperties(
    LPWSTR sensorId, IPortableDeviceKeyCollection** keyCollection) noexcept {
  TRACE(SupportedPropertiesEntered);
  const HRESULT result = GiveKeys(keyCollection, MakeSupportedProperties);
  TRACE(SupportedPropertiesLeft, result);
  return result;
}

HRESULT SensorDriver::OnGetProperties(IWDFFile* client, LPWSTR sensorId,
                                      IPortableDeviceKeyCollection* properties,
                                      IPortableDeviceValues** values) noexcept {
  TRACE(GetPropertiesEntered);
  const HRESULT result = GiveValues(properties, values, [&](IPortableDeviceValues* made) {
    return ReadProperties(core_, properties, made);
  });
  TRACE(GetPropertiesLeft, result);
  return result;
}

HRESULT SensorDriver::OnSetProperties(IWDFFile* client, LPWSTR sensorId,
                                      IPortableDeviceValues* values,
                                      IPortableDeviceValues** results) noexcept {
  TRACE(SetPropertiesEntered, client);
  const HRESULT result = GiveValues(values, results, [&](IPortableDeviceValues* made) {
    return WriteProperties(core_, client, values, made);
  });
  TRACE(SetPropertiesLeft, result);
  return result;
}

HRESULT SensorDriver::OnGetSupportedSensorObjects(
    IPortableDeviceValuesCollection** objects) noexcept {
  TRACE(SensorObjectsEntered);
  const HRESULT result = objects == nullptr ? RefuseNull() : GiveSensorObjects(objects);
  TRACE(SensorObjectsLeft, result);
  return result;
}

HRESULT SensorDriver::GiveSensorObjects(IPortableDeviceValuesCollection** objects) {
  *objects = nullptr;
  WCHAR noId[] = L"";
  ComPtr<IPortableDeviceValuesCollection> collection;
  RETURN_IF_FAILED(MakeContainer(clsid::kPortableDeviceValuesCollection, collection),
                   ObjectsNotMade);
  ComPtr<IPortableDeviceKeyCollection> advertised;
  HRESULT result = OnGetSupportedProperties(noId, advertised.Put());
  if (FAILED(result)) return result;
  ComPtr<IPortableDeviceValues> values;
  result = OnGetProperties(nullptr, noId, advertised.Get(), values.Put());
  if (FAILED(result)) return result;
  result = collection->Add(values.Get());
  RETURN_IF_FAILED(result, ObjectsNotMade);
  *objects = collection.Detach();
  return result;
}

HRESULT SensorDriver::OnGetDataFields(IWDFFile* client, LPWSTR sensorId,
                                      IPortableDeviceKeyCollection* fields,
                                      IPortableDeviceValues** values) noexcept {
  TRACE(GetDataFieldsEntered);
  const HRESULT result =
      fields == nullptr || values == nullptr ? RefuseNull() : GiveFields(fields, values);
  TRACE(GetDataFieldsLeft, result);
  return result;
}

HRESULT SensorDriver::GiveFields(IPortableDeviceKeyCollection* fields,
                                 IPortableDeviceValues** values) {
  *values = nullptr;
  ComPtr<IPortableDeviceValues> made;
  if (const HRESULT result = MakeValues(made); FAILED(result)) return result;
  const HRESULT result = Guarded([&] { return ReadFields(fields, made); });
  *values = made.Detach();  // also on a failure
  return result;
}

SensorDriver::Freshness SensorDriver::AwaitFreshData() {
  const SensorStateMachine& machine = core_.Machine();
  if (machine.IsDataFresh()) return Freshness::kFresh;
  core_.PostSensorEvent(EV_DATA_REQUESTED);
  const HANDLE handles[] = {machine.DataFreshHandle(), machine.NotReadyHandle()};
  switch (WaitForMultipleObjects(2, handles, FALSE, kReadWaitMs)) {
    case WAIT_OBJECT_0:
      return Freshness::kFresh;
    case WAIT_OBJECT_0 + 1:
      return Freshness::kNotReady;
    default:
      return Freshness::kTimedOut;
  }
}

HRESULT SensorDriver::ReadFields(IPortableDeviceKeyCollection* fields,
                                 const ComPtr<IPortableDeviceValues>& values) {
  const Freshness freshness = AwaitFreshData();
  const StoredFix fix = core_.Fixes().LastFix();
  if (freshness != Freshness::kFresh && !fix.valid) {
    TRACE(NoFix);
    return E_FAIL;
  }
  if (freshness == Freshness::kTimedOut) core_.PostSensorEvent(EV_FIX_LOST);
  if (!IsOnEarth(fix.record)) {
    TRACE(CoordinatesOutOfRange, Microdegrees(fix.record.latitude),
          Microdegrees(fix.record.longitude));
    return freshness == Freshness::kNotReady ? S_OK : E_UNEXPECTED;
  }
  return BuildDataValues(fields, values, fix.record);
}

HRESULT SensorDriver::OnClientConnect(IWDFFile* client, LPWSTR sensorId) noexcept {
  TRACE(ClientConnectEntered, client);
  const ScopedLock lock(clientLock_);
  const HRESULT result = Guarded([&] {
    const ComPtr<ModemControl> modem = core_.Modem();
    if (modem && modem->Clients().Connect(client) == ClientTable::Connection::kFirst) {
      core_.PostSensorEvent(EV_FIRST_CLIENT_CONNECTED);
    }
    return S_OK;
  });
  TRACE(ClientConnectLeft, result);
  return result;
}

HRESULT SensorDriver::OnClientDisconnect(IWDFFile* client, LPWSTR sensorId) noexcept {
  TRACE(ClientDisconnectEntered, client);
  const ScopedLock lock(clientLock_);
  const ComPtr<ModemControl> modem = core_.Modem();
  const bool last = !modem || modem->Clients().Disconnect(client);
  core_.PostSensorEvent(EV_REFRESH_REPORTING);
  if (last) core_.PostSensorEvent(EV_LAST_CLIENT_DISCONNECTED);
  TRACE(ClientDisconnectLeft, S_OK);
  return S_OK;
}

HRESULT SensorDriver::OnClientSubscribeToEvents(IWDFFile* client, LPWSTR sensorId) noexcept {
  return SetSubscribed(client, true);
}

HRESULT SensorDriver::OnClientUnsubscribeFromEvents(IWDFFile* client, LPWSTR sensorId) noexcept {
  return SetSubscribed(client, false);
}

HRESULT SensorDriver::SetSubscribed(IWDFFile* client, bool subscribed) {
  TRACE(SubscriptionEntered, client, ULONG{subscribed});
  const ComPtr<ModemControl> modem = core_.Modem();
  ClientTable::SubscriptionChange change = {ClientTable::Subscription::kUnknownClient, false,
                                            false};
  if (modem) change = modem->Clients().SetSubscribed(client, subscribed);
  if (change.result == ClientTable::Subscription::kUnknownClient) {
    TRACE(UnknownClient, client);
  } else if (change.result == ClientTable::Subscription::kChanged) {
    if (change.hasInterval) {
      core_.PostSensorEvent(EV_REFRESH_REPORTING);
    } else if (subscribed && change.isOnlyClient) {
      core_.PostSensorEvent(EV_DATA_REQUESTED);
    }
  }
  TRACE(SubscriptionLeft, S_OK);
  return S_OK;
}

HRESULT SensorDriver::OnProcessWmi(IUnknown* params, IUnknown* results) noexcept {
  TRACE(ProcessWmiEntered);
  TRACE(ProcessWmiLeft, S_OK);
  return S_OK;
}

}  // namespace stelvane
