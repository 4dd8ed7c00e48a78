// Every request of a client has an answer, and an error says which key.

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

constexpr Millis kRequestInterval = 1000;
constexpr PROPERTYKEY kLatitude = LocationKey(2);

Faults EachOperation(Stand& stand) {
  const Client client = stand.Connect();
  Faults faults;
  const auto expect = [&faults](const char* operation, HRESULT result) {
    if (result != S_OK) faults.push_back(std::string(operation) + " does not succeed");
  };
  expect("the properties' list", client->SupportedProperties().result);
  expect("the data fields' list", client->SupportedDataFields().result);
  const SensorAnswer events = client->SupportedEvents();
  expect("the events' list", events.result);
  faults = faults + Unless(events.events.size() == 2, "there are not two events");
  expect("a setting", client->SetReportInterval(kRequestInterval).call);
  expect("a subscription", client->Subscribe());
  if (!stand.WaitForNextReport(*client, kRequestInterval))
    faults.emplace_back("there is no report");
  expect("a read of properties", client->GetProperties(client->SupportedProperties().keys).result);
  expect("a read of data", client->ReadData(client->SupportedDataFields().keys).result);
  expect("the end of the subscription", client->Unsubscribe());
  return faults + Unless(stand.rig().host().OpenRequests() == 0, "a request is left open");
}

Faults MixedProperties(Stand& stand) {
  const SensorAnswer answer =
      stand.Connect()->GetProperties({CommonKey(12), kUnknownKey, CommonKey(3)});
  if (!answer.values) return {"there is no answer"};
  const Variant* const known = FindValue(*answer.values, CommonKey(12));
  const Variant* const unknown = FindValue(*answer.values, kUnknownKey);
  return Unless(answer.result == S_FALSE, "the call does not answer S_FALSE") +
         Unless(answer.values->size() == 3, "not every key is answered") +
         Unless(known != nullptr && *known == Variant::Ui4(1000), "a good key suffers") +
         Unless(unknown != nullptr && *unknown == Variant::Error(kNotFound),
                "the unknown key has no error");
}

Faults RefusedSettings(Stand& stand) {
  const Client client = stand.Connect();
  Faults faults;
  const auto expect = [&](const PROPERTYKEY& key, const Variant& value, HRESULT refusal) {
    const SetResult result = client->SetProperty(key, value);
    if (result.refusal != refusal) faults.push_back(KeyText(key) + " carries no error of its own");
  };
  expect(CommonKey(13), Variant::Ui4(999), E_INVALIDARG);
  expect(CommonKey(19), Variant::R8(1), E_INVALIDARG);
  expect(CommonKey(12), Variant::Ui4(2000), kNotFound);
  expect(CommonKey(3), Variant::Ui4(0), kNotFound);
  expect(kUnknownKey, Variant::Ui4(0), kNotFound);
  return faults;
}

Faults MixedData(Stand& stand) {
  const Client client = stand.Subscriber(kRequestInterval);
  if (!stand.WaitForNextReport(*client, kRequestInterval)) return {"there is no report"};
  const SensorAnswer answer = client->ReadData({kUnknownKey, kLatitude});
  if (!answer.values) return {"there is no answer"};
  return Unless(answer.result == S_OK, "the call does not succeed") +
         Unless(FindValue(*answer.values, kLatitude) != nullptr, "a good key suffers") +
         Unless(FindValue(*answer.values, kUnknownKey) == nullptr, "the unknown key is answered");
}

Faults ReadOnItsWayAtTheEnd(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  stand.sky().reception = false;
  Client client = stand.Connect();
  HRESULT result = S_OK;
  {
    const Thread reader(stand.clock(), [&] { result = client->ReadData({kLatitude}).result; });
    stand.Settle();
    stand.rig().host().Stop();
  }
  const std::size_t open = stand.rig().host().OpenRequests();
  client.reset();
  stand.sky().reception = true;
  const HRESULT back = stand.Restart();
  return Unless(FAILED(result), "the read does not fail") +
         Unless(open == 0, "a request is left open") +
         Unless(SUCCEEDED(back), "the device does not come back");
}

Faults ComesBack(Stand& stand) {
  {
    const Client client = stand.Subscriber(kRequestInterval);
    if (!stand.WaitForNextReport(*client, kRequestInterval)) return {"there is no report before"};
  }
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const Client client = stand.Subscriber(kRequestInterval);
  if (!stand.WaitForNextReport(*client, kRequestInterval)) return {"there is no report afterwards"};
  return JudgePositions(client->Reports());
}

}  // namespace

Checks RequestChecks() {
  return {
      {"requests", "each has an answer", EachOperation},
      {"properties, one unknown", "the error says which key", MixedProperties},
      {"settings, refused", "the error says which key", RefusedSettings},
      {"data, one field unknown", "the error says which key", MixedData,
       "the unknown field is left out, without an error"},
      {"a read while the device is disabled", "has an answer", ReadOnItsWayAtTheEnd},
      {"disable and enable", "the sensor comes back and delivers", ComesBack},
  };
}

}  // namespace bench::acceptance
