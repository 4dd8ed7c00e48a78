// A sensor core without a worker and without a device. Its source defines EventQueue and the
// reading of the device's values in the place of sensor/EventQueue.cpp and sensor/DeviceValues.cpp.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace fuzz {

/// What was posted to any queue since it was cleared last, in order.
std::vector<std::uint32_t>& PostedEvents();

/// The device's values; reading them ends with a failure, so that a start goes no further.
inline constexpr std::string_view kManufacturer = "maker";
inline constexpr std::string_view kModel = "model";
inline constexpr std::string_view kFriendlyName = "name";
inline constexpr std::string_view kSerialNumber = "serial";

}  // namespace fuzz
