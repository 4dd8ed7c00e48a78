// What a Sensor API client asks of the class extension, and how it travels through the device's
// I/O queue. The encoding is private to the two.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/sensorapi/PortableDeviceValues.h"

namespace bench {

/// The portable-device control codes that carry requests.
inline constexpr ULONG kMessageRead = 0x00404108;
inline constexpr ULONG kMessageReadWrite = 0x0040C108;

enum class SensorOperation : std::uint8_t {
  kConnect,
  kSubscribe,
  kUnsubscribe,
  kGetProperties,           // keys -> values
  kSetProperties,           // values -> values (results)
  kGetDataFields,           // keys -> values
  kGetSupportedProperties,  // -> keys
  kGetSupportedDataFields,  // -> keys
  kGetSupportedEvents,      // -> events
};

struct SensorRequest {
  SensorOperation operation = SensorOperation::kConnect;
  std::vector<PROPERTYKEY> keys = {};
  KeyValues values = {};
};

struct SensorAnswer {
  /// What the driver's callback returned, or why it was not called.
  HRESULT result = S_OK;
  /// Nothing when the driver gave no value set.
  std::optional<KeyValues> values = {};
  std::vector<PROPERTYKEY> keys = {};
  std::vector<GUID> events = {};
};

/// VT_UNKNOWN values do not travel: they throw std::invalid_argument.
std::string Encode(const SensorRequest& request);
std::string Encode(const SensorAnswer& answer);
/// Nothing when the bytes are not a whole message.
std::optional<SensorRequest> DecodeRequest(std::string_view bytes);
std::optional<SensorAnswer> DecodeAnswer(std::string_view bytes);

}  // namespace bench
