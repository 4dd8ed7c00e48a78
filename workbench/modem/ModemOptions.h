// How the simulated modem is set up.
#pragma once

#include <cstdint>
#include <string>

#include "workbench/clock/Clock.h"
#include "workbench/modem/ModemFaults.h"

namespace bench {

/// The USB configuration in the modem's memory, as text.
struct UsbProfile {
  std::string profile = "MBIM_GNSS";
  std::string options;
  std::string vendorId = "1234";
  std::string vendorName = "Example";
  std::string productId = "5678";
  std::string productName = "Example LTE modem";

  bool operator==(const UsbProfile&) const = default;
};

struct ModemOptions {
  Millis latency = 5;    // from a command's line end to its answer; the echo is at once
  bool echo = false;     // at power-on
  bool engineOn = true;  // the stored GNSS switch
  std::string imsi = "001010123456789";
  UsbProfile usbProfile{};

  int reportForm = 0;  // 0 to 3
  ReportShape reportShape = ReportShape::kOkThenSentences;
  bool blankBeforeHemisphere = true;  // "48.1173 N" rather than "48.1173N"

  Millis coldStart = 2000;        // from a location request to its first fix, nothing known yet
  Millis hotStart = 500;          // the same once there was a fix
  Millis fixTimeout = 120'000;    // without a fix for so long, a request is told ERROR; 0: never
  bool unknownStopFails = false;  // a stop with an id that is not running answers ERROR
  Millis restartTime = 3000;      // silence after AT+CFUN=1,1

  /// What a stalled control request returns: the HRESULT of "a device attached to the system is
  /// not functioning".
  std::int32_t stallStatus = static_cast<std::int32_t>(0x8007001F);

  ModemFaults faults{};
};

}  // namespace bench
