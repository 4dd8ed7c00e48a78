// Category, type, and every property that the sensor advertises, with its exact variant type.

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

constexpr GUID kCategoryLocation = {
    0xbfa794e4, 0xf964, 0x4fdb, {0x90, 0xf6, 0x51, 0x05, 0x6b, 0xfe, 0x4b, 0x44}};
constexpr GUID kTypeLocationGps = {
    0xed4ca589, 0x327a, 0x4ff9, {0xa5, 0x60, 0x91, 0xda, 0x4b, 0x48, 0x27, 0x5e}};
constexpr PROPERTYKEY kCategory = {keys::kFunctionalObjectSet, 2};
constexpr PROPERTYKEY kType = CommonKey(2);

struct Property {
  PROPERTYKEY key;
  const char* name;
  VARTYPE type;
};
constexpr Property kProperties[] = {
    {ObjectKey(2), "object id", VT_LPWSTR},
    {ObjectKey(5), "object's persistent id", VT_LPWSTR},
    {ObjectKey(3), "parent's id", VT_LPWSTR},
    {ObjectKey(4), "object name", VT_LPWSTR},
    {ObjectKey(6), "object format", VT_CLSID},
    {ObjectKey(7), "content type", VT_CLSID},
    {ObjectKey(26), "can be deleted", VT_BOOL},
    {kCategory, "category", VT_CLSID},
    {kType, "type", VT_CLSID},
    {CommonKey(3), "state", VT_UI4},
    {CommonKey(5), "persistent unique id", VT_CLSID},
    {CommonKey(6), "manufacturer", VT_LPWSTR},
    {CommonKey(7), "model", VT_LPWSTR},
    {CommonKey(8), "serial number", VT_LPWSTR},
    {CommonKey(9), "friendly name", VT_LPWSTR},
    {CommonKey(12), "minimum report interval", VT_UI4},
    {CommonKey(13), "current report interval", VT_UI4},
    {CommonKey(19), "desired accuracy", VT_UI4},
    {CommonKey(23), "radio state", VT_UI4},
    {CommonKey(24), "previous radio state", VT_UI4},
    {kClearAssistanceData, "clear assistance data", VT_UI4},
};

Faults ReadsAs(Stand& stand, const PROPERTYKEY& key, const Variant& expected) {
  Variant value;
  const HRESULT result = stand.Connect()->GetProperty(key, &value);
  return Unless(result == S_OK && value == expected, "it reads as something else");
}

Faults HasType(Stand& stand, const Property& property) {
  Variant value;
  const HRESULT result = stand.Connect()->GetProperty(property.key, &value);
  return Unless(result == S_OK, "it cannot be read") +
         JudgeType(property.name, property.type, value.Type());
}

Faults AdvertisesAll(Stand& stand) {
  const SensorAnswer answer = stand.Connect()->SupportedProperties();
  Faults faults = Unless(answer.keys.size() == std::size(kProperties),
                         std::to_string(answer.keys.size()) + " keys are advertised");
  for (const Property& property : kProperties) {
    bool found = false;
    for (const PROPERTYKEY& key : answer.keys) found = found || SameKey(key, property.key);
    if (!found) faults.push_back(std::string(property.name) + " is not advertised");
  }
  return faults;
}

Faults AllInOneCall(Stand& stand) {
  const Client client = stand.Connect();
  const SensorAnswer answer = client->GetProperties(client->SupportedProperties().keys);
  Faults faults = Unless(answer.result == S_OK && answer.values, "they cannot be read together");
  if (!answer.values) return faults;
  for (const KeyValue& value : *answer.values) {
    if (value.value.Type() == VT_ERROR) faults.push_back(KeyText(value.key) + " is an error");
  }
  return faults;
}

Faults UnknownReads(Stand& stand) {
  Variant value;
  const HRESULT result = stand.Connect()->GetProperty(kUnknownKey, &value);
  return Unless(result == S_FALSE, "the call does not answer S_FALSE") +
         Unless(value == Variant::Error(kNotFound), "its value is not the error NOT FOUND");
}

Faults UnknownIsWritten(Stand& stand) {
  const SetResult result = stand.Connect()->SetProperty(kUnknownKey, Variant::Ui4(1));
  return Unless(result.call == S_FALSE, "the call does not answer S_FALSE") +
         Unless(result.refusal == kNotFound, "its result is not the error NOT FOUND");
}

}  // namespace

Checks PropertyChecks() {
  Checks checks = {
      {"category", "the sensor is a location sensor",
       [](Stand& stand) { return ReadsAs(stand, kCategory, Variant::Guid(kCategoryLocation)); }},
      {"type", "of the satellite kind",
       [](Stand& stand) { return ReadsAs(stand, kType, Variant::Guid(kTypeLocationGps)); }},
      {"advertised properties", "all 21, and no others", AdvertisesAll},
      {"properties together", "all advertised ones read in one call", AllInOneCall},
  };
  for (const Property& property : kProperties) {
    checks.push_back({std::string("property: ") + property.name,
                      "reads as " + TypeName(property.type),
                      [&property](Stand& stand) { return HasType(stand, property); }});
  }
  checks.push_back({"unknown property, read", "answered as defined: NOT FOUND", UnknownReads});
  checks.push_back(
      {"unknown property, written", "answered as defined: NOT FOUND", UnknownIsWritten});
  return checks;
}

}  // namespace bench::acceptance
