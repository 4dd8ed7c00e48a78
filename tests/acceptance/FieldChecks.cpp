// Every data field with its exact variant type, in events and in reads.

#include <utility>

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

constexpr Millis kFieldInterval = 1000;
constexpr VARTYPE kBytes = VT_VECTOR | VT_UI1;

struct Field {
  PROPERTYKEY key;
  const char* name;
  VARTYPE type;
  bool mayBeAbsent = false;
};
constexpr Field kFields[] = {
    {LocationKey(2), "latitude", VT_R8},
    {LocationKey(3), "longitude", VT_R8},
    {LocationKey(22), "error radius", VT_R8},
    {keys::kTimestamp, "timestamp", VT_FILETIME},
    {LocationKey(29), "altitude error", VT_R8, true},
    {LocationKey(5), "altitude", VT_R8, true},
    {LocationKey(10), "fix quality", VT_I4},
    {LocationKey(11), "fix type", VT_I4},
    {LocationKey(32), "operation mode", VT_I4},
    {LocationKey(31), "selection mode", VT_I4},
    {LocationKey(33), "status", VT_I4},
    {LocationKey(13), "horizontal dilution", VT_R8},
    {LocationKey(38), "NMEA sentences", VT_LPWSTR},
    {LocationKey(12), "position dilution", VT_R8},
    {LocationKey(17), "satellites in view", VT_I4},
    {LocationKey(20), "azimuths", kBytes},
    {LocationKey(19), "elevations", kBytes},
    {LocationKey(39), "satellite ids", kBytes},
    {LocationKey(18), "satellite PRNs", kBytes},
    {LocationKey(21), "signal-to-noise ratios", kBytes},
    {LocationKey(6), "speed", VT_R8, true},
    {LocationKey(7), "true heading", VT_R8, true},
    {LocationKey(14), "vertical dilution", VT_R8, true},
};

VARTYPE TypeIn(const SensorAnswer& answer, const PROPERTYKEY& key) {
  const Variant* const value = answer.values ? FindValue(*answer.values, key) : nullptr;
  return value == nullptr ? VARTYPE{VT_ILLEGAL} : value->Type();
}

Faults InEventAndRead(Stand& stand, const Field& field, VARTYPE expected) {
  const Client client = stand.Subscriber(kFieldInterval);
  if (!stand.WaitForNextReport(*client, kFieldInterval)) return {"there is no report"};
  const Report event = client->Reports().back();
  const SensorAnswer read = client->ReadData({field.key});
  return JudgeType("in the event it", expected,
                   event.TypeOf(field.key).value_or(VARTYPE{VT_ILLEGAL})) +
         JudgeType("in the read it", expected, TypeIn(read, field.key));
}

// The value is known to the receiver, and then it is not.
Faults HasType(Stand& stand, const Field& field) {
  Faults known = InEventAndRead(stand, field, field.type);
  if (!field.mayBeAbsent) return known;
  stand.sky().extras = false;
  stand.Pass(kFieldInterval);
  const Faults absent = InEventAndRead(stand, field, VT_EMPTY);
  stand.sky().extras = true;
  stand.Pass(kFieldInterval);
  return std::move(known) + absent;
}

Faults OffersAll(Stand& stand) {
  const SensorAnswer answer = stand.Connect()->SupportedDataFields();
  Faults faults = Unless(answer.keys.size() == std::size(kFields),
                         std::to_string(answer.keys.size()) + " fields are offered");
  for (std::size_t i = 0; i < answer.keys.size() && i < std::size(kFields); ++i) {
    if (!SameKey(answer.keys[i], kFields[i].key)) {
      faults.push_back(std::string(kFields[i].name) + " is not in its place");
    }
  }
  return faults;
}

}  // namespace

Checks FieldChecks() {
  Checks checks = {{"data fields", "all 23, in their order", OffersAll}};
  for (const Field& field : kFields) {
    checks.push_back({std::string("data: ") + field.name,
                      TypeName(field.type) + (field.mayBeAbsent ? ", or empty while unknown" : ""),
                      [&field](Stand& stand) { return HasType(stand, field); }});
  }
  return checks;
}

}  // namespace bench::acceptance
