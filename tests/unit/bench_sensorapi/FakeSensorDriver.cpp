#include "tests/unit/bench_sensorapi/FakeSensorDriver.h"

#include <algorithm>

#include "platform/SensorKeys.h"

namespace bench {

std::vector<std::string> FakeSensorDriver::Log() const {
  const std::lock_guard lock(mutex_);
  return log_;
}

HRESULT FakeSensorDriver::Note(const std::string& callback, IWDFFile* client, LPWSTR sensor) {
  const std::lock_guard lock(mutex_);
  auto place = std::ranges::find(clients_, client);
  if (place == clients_.end()) place = clients_.insert(place, client);
  const auto number = place - clients_.begin() + 1;
  const bool known = Utf8(sensor) == sensorId;
  log_.push_back(callback + " " + std::to_string(number) + (known ? "" : " for another sensor"));
  const auto result = results.find(callback);
  return result == results.end() ? S_OK : result->second;
}

HRESULT FakeSensorDriver::Pick(const KeyValues& from, IPortableDeviceKeyCollection* keys,
                               IPortableDeviceValues** values) {
  auto picked = MakeApiObject<PortableDeviceValues>(world());
  DWORD count = 0;
  HRESULT result = keys->GetCount(&count);
  for (DWORD index = 0; index < count; ++index) {
    PROPERTYKEY key{};
    keys->GetAt(index, &key);
    if (const Variant* const value = FindValue(from, key); value != nullptr) {
      picked->SetValue(key, &value->Get());
    } else {
      picked->SetErrorValue(key, kNotFound);
      result = S_FALSE;
    }
  }
  *values = picked.Detach();
  return result;
}

HRESULT FakeSensorDriver::OnGetSupportedSensorObjects(IPortableDeviceValuesCollection** objects) {
  if (const auto planned = results.find("OnGetSupportedSensorObjects"); planned != results.end()) {
    return planned->second;
  }
  auto list = MakeApiObject<PortableDeviceValuesCollection>(world());
  auto object = MakeApiObject<PortableDeviceValues>(world());
  object->SetStringValue({keys::kObjectSet, 2}, Wide(sensorId).data());
  if (givesObjects) list->Add(object.Get());
  *objects = list.Detach();
  return S_OK;
}

HRESULT FakeSensorDriver::OnGetSupportedProperties(LPWSTR, IPortableDeviceKeyCollection** keys) {
  auto list = MakeApiObject<PortableDeviceKeyCollection>(world());
  for (const KeyValue& each : properties) list->Add(each.key);
  *keys = list.Detach();
  return S_OK;
}

HRESULT FakeSensorDriver::OnGetSupportedDataFields(LPWSTR, IPortableDeviceKeyCollection** keys) {
  auto list = MakeApiObject<PortableDeviceKeyCollection>(world());
  for (const KeyValue& each : data) list->Add(each.key);
  *keys = list.Detach();
  return S_OK;
}

HRESULT FakeSensorDriver::OnGetSupportedEvents(LPWSTR, GUID** events, ULONG* count) {
  *events = static_cast<GUID*>(CoTaskMemAlloc(2 * sizeof(GUID)));
  (*events)[0] = kSensorEventDataUpdated;
  (*events)[1] = kSensorEventStateChanged;
  *count = 2;
  return S_OK;
}

HRESULT FakeSensorDriver::OnGetProperties(IWDFFile* client, LPWSTR sensor,
                                          IPortableDeviceKeyCollection* keys,
                                          IPortableDeviceValues** values) {
  const HRESULT noted = Note("OnGetProperties", client, sensor);
  if (noted != S_OK) return noted;
  KeyValues now;
  {
    const std::lock_guard lock(mutex_);
    now = properties;
  }
  return Pick(now, keys, values);
}

HRESULT FakeSensorDriver::OnGetDataFields(IWDFFile* client, LPWSTR sensor,
                                          IPortableDeviceKeyCollection* keys,
                                          IPortableDeviceValues** values) {
  const HRESULT noted = Note("OnGetDataFields", client, sensor);
  if (noted != S_OK) return noted;
  world().clock.SleepFor(readDelay);
  return Pick(data, keys, values);
}

HRESULT FakeSensorDriver::OnSetProperties(IWDFFile* client, LPWSTR sensor,
                                          IPortableDeviceValues* values,
                                          IPortableDeviceValues** answers) {
  const HRESULT noted = Note("OnSetProperties", client, sensor);
  if (noted != S_OK) return noted;
  auto refusals = MakeApiObject<PortableDeviceValues>(world());
  HRESULT result = S_OK;
  DWORD count = 0;
  values->GetCount(&count);
  for (DWORD index = 0; index < count; ++index) {
    PROPERTYKEY key{};
    Variant value;
    values->GetAt(index, &key, value.Put());
    const std::lock_guard lock(mutex_);
    const auto known =
        std::ranges::find_if(properties, [&](const auto& each) { return SameKey(each.key, key); });
    if (known != properties.end()) {
      known->value = value;
    } else {
      refusals->SetErrorValue(key, kNotFound);
      result = S_FALSE;
    }
  }
  *answers = refusals.Detach();
  return result;
}

HRESULT FakeSensorDriver::OnClientConnect(IWDFFile* client, LPWSTR sensor) {
  return Note("OnClientConnect", client, sensor);
}

HRESULT FakeSensorDriver::OnClientDisconnect(IWDFFile* client, LPWSTR sensor) {
  return Note("OnClientDisconnect", client, sensor);
}

HRESULT FakeSensorDriver::OnClientSubscribeToEvents(IWDFFile* client, LPWSTR sensor) {
  return Note("OnClientSubscribeToEvents", client, sensor);
}

HRESULT FakeSensorDriver::OnClientUnsubscribeFromEvents(IWDFFile* client, LPWSTR sensor) {
  return Note("OnClientUnsubscribeFromEvents", client, sensor);
}

}  // namespace bench
