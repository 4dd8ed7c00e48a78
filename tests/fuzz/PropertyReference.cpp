#include "tests/fuzz/PropertyReference.h"

#include <algorithm>

#include "platform/SensorKeys.h"
#include "sensor/Events.h"
#include "tests/fuzz/RecordedEvents.h"

namespace reference {

namespace {

using stelvane::ClientEntry;
using stelvane::ClientId;

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070490L);
constexpr HRESULT kErrorNotTaken = E_OUTOFMEMORY;

constexpr ULONG kStateError = 5;
constexpr GUID kFormatUnspecified = {
    0x30000000, 0xae6c, 0x4804, {0x98, 0xba, 0xc5, 0x7b, 0x46, 0x96, 0x5f, 0xe7}};
constexpr GUID kFunctionalObject = {
    0x99ed0160, 0x17ff, 0x4c44, {0x9d, 0x98, 0x1d, 0x7a, 0x6f, 0x94, 0x19, 0x21}};
constexpr GUID kLocationCategory = {
    0xbfa794e4, 0xf964, 0x4fdb, {0x90, 0xf6, 0x51, 0x05, 0x6b, 0xfe, 0x4b, 0x44}};
constexpr GUID kGpsType = {
    0xed4ca589, 0x327a, 0x4ff9, {0xa5, 0x60, 0x91, 0xda, 0x4b, 0x48, 0x27, 0x5e}};
constexpr GUID kUniqueId = {
    0x33f98580, 0x15df, 0x4ab0, {0x8f, 0x2d, 0x58, 0x42, 0xd5, 0xa2, 0x09, 0xc3}};

bool Is(const PROPERTYKEY& key, const GUID& set, DWORD pid) {
  return key.pid == pid && IsEqualGUID(key.fmtid, set);
}

/// What nobody writes in this test. The core has not come as far as making the sensor's id.
const fuzz::BagAnswers& ConstantAnswers() {
  static const fuzz::BagAnswers answers = {
      {{keys::kObjectSet, 2}, fuzz::ShowText("")},
      {{keys::kObjectSet, 3}, fuzz::ShowText("DEVICE")},
      {{keys::kObjectSet, 4}, fuzz::ShowText("Tavrel GNSS")},
      {{keys::kObjectSet, 5}, fuzz::ShowText("")},
      {{keys::kObjectSet, 6}, fuzz::ShowGuid(kFormatUnspecified)},
      {{keys::kObjectSet, 7}, fuzz::ShowGuid(kFunctionalObject)},
      {{keys::kObjectSet, 26}, fuzz::ShowBool(false)},
      {{keys::kFunctionalObjectSet, 2}, fuzz::ShowGuid(kLocationCategory)},
      {{keys::kSensorCommonSet, 2}, fuzz::ShowGuid(kGpsType)},
      {{keys::kSensorCommonSet, 3}, fuzz::ShowNumber(kStateError)},
      {{keys::kSensorCommonSet, 5}, fuzz::ShowGuid(kUniqueId)},
      {{keys::kSensorCommonSet, 6}, fuzz::ShowText(fuzz::kManufacturer)},
      {{keys::kSensorCommonSet, 7}, fuzz::ShowText(fuzz::kModel)},
      {{keys::kSensorCommonSet, 8}, fuzz::ShowText(fuzz::kSerialNumber)},
      {{keys::kSensorCommonSet, 9}, fuzz::ShowText(fuzz::kFriendlyName)},
      {{keys::kSensorCommonSet, 12}, fuzz::ShowNumber(1000)},
      {{keys::kSensorCommonSet, 19}, fuzz::ShowNumber(0)},
      {{keys::kSensorCommonSet, 23}, fuzz::ShowNumber(0)},
      {{keys::kSensorCommonSet, 24}, fuzz::ShowNumber(0)},
      {{kDriverSet, 2}, fuzz::ShowBool(false)},
      {{kDriverSet, 6}, fuzz::ShowBool(false)},
      {{kAssistanceSet, 2}, fuzz::ShowNumber(0)},
  };
  return answers;
}

std::uint32_t Low32(const fuzz::BagValue& value) {
  return static_cast<std::uint32_t>(value.bits);
}

}  // namespace

ClientEntry* Sensor::Find(ClientId client) {
  for (ClientEntry& entry : clients_) {
    if (entry.client == client) return &entry;
  }
  return nullptr;
}

void Sensor::Connect(ClientId client) {
  if (Find(client) != nullptr) return;
  clients_.push_back({.client = client});
  if (clients_.size() == 1) events_.push_back(stelvane::EV_FIRST_CLIENT_CONNECTED);
}

void Sensor::Disconnect(ClientId client) {
  std::erase_if(clients_, [client](const ClientEntry& entry) { return entry.client == client; });
  events_.push_back(stelvane::EV_REFRESH_REPORTING);
  if (clients_.empty()) events_.push_back(stelvane::EV_LAST_CLIENT_DISCONNECTED);
}

void Sensor::SetSubscribed(ClientId client, bool subscribed) {
  ClientEntry* const entry = Find(client);
  if (entry == nullptr || entry->subscribed == subscribed) return;
  entry->subscribed = subscribed;
  if (entry->reportInterval != 0xFFFFFFFF) {
    events_.push_back(stelvane::EV_REFRESH_REPORTING);
  } else if (subscribed && clients_.size() == 1) {
    events_.push_back(stelvane::EV_DATA_REQUESTED);
  }
}

Sensor::Written Sensor::Write(ClientId client, const fuzz::BagContent& values,
                              unsigned takenErrors) {
  Written written = {S_OK, {}};
  for (const auto& [key, value] : values) {
    const HRESULT result = WriteOne({client, key, value, takenErrors, written});
    if (FAILED(result)) {
      written.result = result;
      return written;
    }
  }
  if (!written.errors.empty()) written.result = S_FALSE;
  return written;
}

HRESULT Sensor::WriteOne(const Request& request) {
  const auto& [client, key, value, takenErrors, written] = request;
  const bool isNumber = value.type == VT_UI4;
  const bool isBool = value.type == VT_BOOL;
  const bool isTrue = isBool && static_cast<std::uint16_t>(value.bits) != 0;

  if (Is(key, keys::kSensorCommonSet, 13)) return WriteInterval(request);
  if (Is(key, kDriverSet, 3)) return WriteLeadTimes(request);
  if (Is(key, keys::kSensorCommonSet, 19)) {
    if (!isNumber) return Refuse(request, E_INVALIDARG);
    if (Find(client) == nullptr) return E_UNEXPECTED;
    Find(client)->desiredAccuracy = Low32(value);
  } else if (Is(key, kDriverSet, 2)) {
    if (!isBool) return Refuse(request, E_INVALIDARG);
    if (isTrue) events_.push_back(stelvane::EV_CLEAR_ASSISTANCE_DATA);
  } else if (Is(key, kAssistanceSet, 2)) {
    if (!isNumber) return Refuse(request, E_INVALIDARG);
    if (Low32(value) == 1) events_.push_back(stelvane::EV_CLEAR_ASSISTANCE_DATA);
  } else if (Is(key, kDriverSet, 4) || Is(key, kDriverSet, 5)) {
    if (!isNumber) return Refuse(request, E_INVALIDARG);
    (key.pid == 4 ? requestField1_ : requestField2_) = Low32(value);
  } else if (Is(key, kDriverSet, 6)) {
    if (!isBool) return Refuse(request, E_INVALIDARG);
    if (isTrue) events_.push_back(stelvane::EV_INIT);
  } else {
    return Refuse(request, kNotFound);
  }
  return S_OK;
}

HRESULT Sensor::WriteInterval(const Request& request) {
  if (request.value.type == VT_EMPTY) return Refuse(request, E_ACCESSDENIED);
  if (request.value.type != VT_UI4) return Refuse(request, E_INVALIDARG);
  const std::uint32_t milliseconds = Low32(request.value);
  if (milliseconds >= 1 && milliseconds <= 999) return Refuse(request, E_INVALIDARG);
  ClientEntry* const entry = Find(request.client);
  if (entry == nullptr) return E_UNEXPECTED;
  entry->reportInterval = milliseconds / 1000;
  events_.push_back(stelvane::EV_REFRESH_REPORTING);
  return S_OK;
}

HRESULT Sensor::WriteLeadTimes(const Request& request) {
  if (request.value.type != VT_LPWSTR || request.value.isNull) {
    return Refuse(request, E_INVALIDARG);
  }
  const LeadTimeOutcome outcome =
      StoreLeadTimes(request.value.text, request.takenErrors, leadTimes_);
  leadTimes_ = outcome.table;
  return Refuse(request, E_INVALIDARG, outcome.refusals);
}

/// Gives the key the error value so many times, or until that fails.
HRESULT Sensor::Refuse(const Request& request, HRESULT error, unsigned times) {
  for (; times > 0; --times) {
    if (request.takenErrors == 0) return kErrorNotTaken;
    --request.takenErrors;
    fuzz::BagAnswers& errors = request.written.errors;
    const auto known = std::find_if(errors.begin(), errors.end(), [&](const auto& it) {
      return Is(it.first, request.key.fmtid, request.key.pid);
    });
    if (known == errors.end()) {
      errors.emplace_back(request.key, fuzz::ShowError(error));
    } else {
      known->second = fuzz::ShowError(error);
    }
  }
  return S_OK;
}

std::uint32_t Sensor::Interval() const {
  std::uint32_t shortest = 0xFFFFFFFF;
  bool fastest = false;
  for (const ClientEntry& entry : clients_) {
    if (!entry.subscribed || entry.reportInterval == 0xFFFFFFFF) continue;
    if (entry.reportInterval == 0) fastest = true;
    if (entry.reportInterval != 0) shortest = std::min(shortest, entry.reportInterval);
  }
  if (shortest != 0xFFFFFFFF) return shortest * 1000;
  return fastest ? 1000 : 0;
}

std::string Sensor::Answer(const PROPERTYKEY& key) const {
  if (Is(key, GUID{}, 0)) return "";
  if (Is(key, keys::kSensorCommonSet, 13)) return fuzz::ShowNumber(Interval());
  if (Is(key, kDriverSet, 3)) return fuzz::ShowText(LeadTimeText(leadTimes_));
  if (Is(key, kDriverSet, 4)) return fuzz::ShowNumber(requestField1_);
  if (Is(key, kDriverSet, 5)) return fuzz::ShowNumber(requestField2_);
  for (const auto& [constantKey, answer] : ConstantAnswers()) {
    if (Is(key, constantKey.fmtid, constantKey.pid)) return answer;
  }
  return fuzz::ShowError(kNotFound);
}

}  // namespace reference
