// Clients that come, go and write properties, against the reference: each write's result and error
// values, the events posted, every client's settings, and what all properties read as afterwards.
// Input: steps of a byte each (kStepCount) with a client (a byte); a write goes on with the number
// of error values that are taken, the number of values, and these: key, type, and 8 bytes or a
// text.
#include "sensor/Properties.h"

#include <iterator>

#include "platform/SensorKeys.h"
#include "sensor/SensorCore.h"
#include "tests/fuzz/EagerClock.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/PropertyReference.h"
#include "tests/fuzz/RecordedEvents.h"
#include "tests/native/Native.h"

namespace {

using fuzz::BagContent;
using fuzz::Input;
using stelvane::ClientEntry;
using stelvane::ComPtr;
using stelvane::SensorCore;

enum Step : std::uint8_t {
  kConnect,
  kDisconnect,
  kSubscribe,
  kUnsubscribe,
  kWrite,
  kStepCount = 8
};
constexpr unsigned kClients = 4;
constexpr unsigned kMostSteps = 64;

constexpr GUID kSets[] = {keys::kSensorCommonSet,
                          reference::kDriverSet,
                          reference::kAssistanceSet,
                          keys::kObjectSet,
                          keys::kFunctionalObjectSet,
                          keys::kLocationSet,
                          GUID{}};
constexpr PROPERTYKEY kWritable[] = {{keys::kSensorCommonSet, 13}, {keys::kSensorCommonSet, 19},
                                     {reference::kDriverSet, 2},   {reference::kDriverSet, 3},
                                     {reference::kDriverSet, 4},   {reference::kDriverSet, 5},
                                     {reference::kDriverSet, 6},   {reference::kAssistanceSet, 2}};
constexpr VARTYPE kTypes[] = {
    VT_UI4,   VT_BOOL, VT_LPWSTR,  VT_EMPTY,    VT_NULL,           VT_I4,   VT_UI2,
    VT_UI8,   VT_R8,   VT_LPSTR,   VT_BSTR,     VT_CLSID,          VT_BLOB, VT_I2,
    VT_ERROR, VT_UI1,  VT_UNKNOWN, VT_FILETIME, VT_VECTOR | VT_UI1};

PROPERTYKEY ReadKey(Input& input) {
  const std::uint8_t choice = input.Number();
  if (choice < std::size(kWritable)) return kWritable[choice];
  return {kSets[choice % std::size(kSets)], input.Number()};
}

VARTYPE ReadType(Input& input) {
  const std::uint8_t choice = input.Number();
  return choice < std::size(kTypes) ? kTypes[choice] : input.Number<VARTYPE>();
}

fuzz::BagValue ReadValue(Input& input) {
  fuzz::BagValue value = {.type = ReadType(input)};
  if (value.type == VT_LPWSTR || value.type == VT_LPSTR || value.type == VT_BSTR) {
    const std::uint8_t length = input.Number();
    value.isNull = length == 0xFF;
    for (const char c : input.Text(length % 64)) {
      if (c == 0) break;
      value.text += static_cast<char16_t>(static_cast<unsigned char>(c));
    }
  } else {
    value.bits = input.Number<std::uint64_t>();
  }
  return value;
}

BagContent ReadContent(Input& input) {
  BagContent content;
  for (unsigned left = input.Number() % 5; left > 0; --left) {
    const PROPERTYKEY key = ReadKey(input);
    content.emplace_back(key, ReadValue(input));
  }
  return content;
}

bool SameKey(const PROPERTYKEY& a, const PROPERTYKEY& b) {
  return a.pid == b.pid && IsEqualGUID(a.fmtid, b.fmtid);
}

std::string ShowKey(const PROPERTYKEY& key) {
  char text[32];
  std::snprintf(text, sizeof text, "%08x... %u", key.fmtid.Data1, key.pid);
  return text;
}

void RequireSameAnswers(const char* what, const fuzz::BagAnswers& driver,
                        const fuzz::BagAnswers& expected) {
  fuzz::RequireSame(what, driver.size(), expected.size());
  for (std::size_t i = 0; i < driver.size(); ++i) {
    const PROPERTYKEY& key = expected[i].first;
    if (SameKey(driver[i].first, key) && driver[i].second == expected[i].second) continue;
    fuzz::Fail(std::string(what) + " " + std::to_string(i) + ": the driver has for key " +
               ShowKey(driver[i].first) + " " + fuzz::Show(driver[i].second) +
               ", the reference for key " + ShowKey(key) + " " + fuzz::Show(expected[i].second));
  }
}

void CompareWrite(SensorCore& core, reference::Sensor& sensor, IWDFFile* client, Input& input) {
  const unsigned takenErrors = input.Number() % 16;
  const BagContent content = ReadContent(input);
  fuzz::PropertyBag values(content);
  fuzz::PropertyBag results;
  results.TakeErrors(takenErrors);
  const HRESULT result = WriteProperties(core, client, &values, &results);
  const reference::Sensor::Written expected = sensor.Write(client, content, takenErrors);
  fuzz::RequireSame("result of the write", result, expected.result);
  RequireSameAnswers("errors of the write", results.Answers(), expected.errors);
}

/// Every property there is, and some that there are not.
const std::vector<PROPERTYKEY>& AllKeys() {
  static const std::vector<PROPERTYKEY> all = [] {
    std::vector<PROPERTYKEY> made;
    const auto add = [&made](const GUID& set, std::initializer_list<DWORD> pids) {
      for (const DWORD pid : pids) made.push_back({set, pid});
    };
    add(GUID{}, {0, 1});
    add(keys::kLocationSet, {2});
    add(keys::kObjectSet, {2, 3, 4, 5, 6, 7, 26, 27});
    add(keys::kFunctionalObjectSet, {2, 3});
    add(keys::kSensorCommonSet, {2, 3, 4, 5, 6, 7, 8, 9, 12, 13, 19, 23, 24});
    add(reference::kDriverSet, {1, 2, 3, 4, 5, 6});
    add(reference::kAssistanceSet, {2, 3});
    return made;
  }();
  return all;
}

void CompareReading(SensorCore& core, const reference::Sensor& sensor) {
  fuzz::KeyList list(AllKeys());
  fuzz::PropertyBag values;
  values.TakeErrors(static_cast<unsigned>(AllKeys().size()));
  fuzz::RequireSame("result of the reading", ReadProperties(core, &list, &values), S_FALSE);
  fuzz::BagAnswers expected;
  for (const PROPERTYKEY& key : AllKeys()) {
    if (std::string answer = sensor.Answer(key); !answer.empty()) {
      expected.emplace_back(key, std::move(answer));
    }
  }
  RequireSameAnswers("property", values.Answers(), expected);
}

void CompareClients(stelvane::ClientTable& table, const std::vector<ClientEntry>& expected) {
  std::vector<ClientEntry> clients;
  table.Walk([&clients](const ClientEntry& entry) {
    clients.push_back(entry);
    return true;
  });
  fuzz::RequireSame("connected clients", clients.size(), expected.size());
  for (std::size_t i = 0; i < clients.size(); ++i) {
    fuzz::RequireSame("order of clients", clients[i].client == expected[i].client, true);
    fuzz::RequireSame("report interval", clients[i].reportInterval, expected[i].reportInterval);
    fuzz::RequireSame("desired accuracy", clients[i].desiredAccuracy, expected[i].desiredAccuracy);
    fuzz::RequireSame("subscribed", clients[i].subscribed, expected[i].subscribed);
  }
}

void TakeStep(SensorCore& core, reference::Sensor& sensor, Input& input) {
  static const char places[kClients] = {};
  const std::uint8_t step = input.Number() % kStepCount;
  // Known by its address, which nobody follows.
  auto* const client =
      reinterpret_cast<IWDFFile*>(const_cast<char*>(&places[input.Number() % kClients]));
  ISensorDriver& driver = *core.DriverFace();
  switch (step) {
    case kConnect:
      driver.OnClientConnect(client, nullptr);
      return sensor.Connect(client);
    case kDisconnect:
      driver.OnClientDisconnect(client, nullptr);
      return sensor.Disconnect(client);
    case kSubscribe:
      driver.OnClientSubscribeToEvents(client, nullptr);
      return sensor.SetSubscribed(client, true);
    case kUnsubscribe:
      driver.OnClientUnsubscribeFromEvents(client, nullptr);
      return sensor.SetSubscribed(client, false);
    default:
      CompareWrite(core, sensor, client, input);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::EagerClock clock;
  native::UseClock(&clock);
  ComPtr<SensorCore> core;
  if (CreateObject(core) != S_OK) fuzz::Fail("the sensor core is not made");
  core->Start(nullptr);  // goes no further than the device's values
  fuzz::PostedEvents().clear();

  reference::Sensor sensor;
  Input input(data, size);
  for (unsigned steps = 0; !input.Empty() && steps < kMostSteps; ++steps) {
    TakeStep(*core.Get(), sensor, input);
  }
  fuzz::RequireSameValues("event posted", fuzz::PostedEvents(), sensor.Events());
  CompareClients(core->Modem()->Clients(), sensor.Clients());
  CompareReading(*core.Get(), sensor);
  core->Stop();
  return 0;
}
