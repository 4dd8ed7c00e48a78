#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace stelvane {

/// The modem's stored USB profile, each value as the modem wrote it.
struct UsbProfile {
  std::string profile;
  std::string options;
  std::string vendorId;
  std::string vendorName;
  std::string productId;
  std::string productName;
};

// Results of ParseUsbProfile.
inline constexpr std::uint8_t kProfileParsed = 0;
inline constexpr std::uint8_t kProfileKeyMissing = 1;

/// Turns a whole "+USB: " line into `record`, which must be fresh. At the first key that the line
/// lacks the reading stops: its field and all later ones stay empty.
std::uint8_t ParseUsbProfile(std::string_view line, UsbProfile& record);

}  // namespace stelvane
