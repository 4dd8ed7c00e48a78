// What the simulated device looks like to a driver: its USB function, registry and identity.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace bench {

enum class EndpointType { kControl = 0, kIsochronous = 1, kBulk = 2, kInterrupt = 3 };

struct EndpointPlan {
  std::uint8_t address = 0;  // bit 7 set: towards the host
  EndpointType type = EndpointType::kBulk;
  bool IsIn() const { return (address & 0x80) != 0; }
};

struct InterfacePlan {
  std::vector<EndpointPlan> endpoints;
  /// What the descriptor claims instead of the real number.
  std::optional<std::uint8_t> claimedEndpoints;
};

struct UsbPlan {
  std::vector<InterfacePlan> interfaces = {
      {.endpoints = {{0x81, EndpointType::kInterrupt}}, .claimedEndpoints = {}},
      {.endpoints = {{0x82, EndpointType::kBulk}, {0x02, EndpointType::kBulk}},
       .claimedEndpoints = {}},
  };
};

/// A registry value: a string, a number, or bytes.
using RegistryValue = std::variant<std::u16string, std::uint32_t, std::vector<std::uint8_t>>;
using RegistryKey = std::map<std::u16string, RegistryValue>;

struct DevicePlan {
  std::u16string instanceId = u"USB\\VID_0000&PID_0000&MI_02\\1";
  UsbPlan usb;
  /// By subkey; the empty name stands for the null subkey.
  std::map<std::u16string, RegistryKey> registry = {{u"", DefaultValues()},
                                                    {u"\\", DefaultValues()}};
  /// Idle control fails until the device entered the working state once.
  bool stopIdleNeedsD0 = true;

  static RegistryKey DefaultValues() {
    return {{u"DevManufacturer", u"Tavrel"},
            {u"DevModel", u"GNSS 1"},
            {u"DevFriendlyName", u"Tavrel GNSS sensor"},
            {u"DevSerialNumber", u"0001"}};
  }
};

}  // namespace bench
