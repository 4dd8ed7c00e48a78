// What the simulated modem holds at one moment.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "workbench/modem/ModemObserver.h"
#include "workbench/modem/ModemOptions.h"

namespace bench {

/// SUPL settings as last written, as text.
struct SuplSettings {
  std::string addressType;
  std::string address;
  std::string port;
  std::string terminalInfo;
  std::string version;

  bool operator==(const SuplSettings&) const = default;
};

struct ModemSnapshot {
  bool echo = false;
  bool engineOn = true;       // the stored switch
  bool engineRunning = true;  // switched on and not shut down
  std::string imsi;
  std::string clock;  // the quoted text of AT+CCLK, empty when never set
  std::string qos;    // the parameters of AT+XLCSLQOS
  SuplSettings supl;
  UsbProfile usbProfile;        // in use for the next store
  UsbProfile storedUsbProfile;  // what a restart brings back

  std::uint32_t lastRequestId = 0;       // 0: no location request yet
  std::optional<std::uint32_t> running;  // the id of the request being served
  std::optional<Millis> interval;        // of the running request; nothing for a single fix

  std::size_t commands = 0;                         // lines received, retries counted
  std::map<std::string, std::size_t> commandLines;  // the same by their text
  std::size_t errorsSent = 0;                       // answers that were "ERROR"
  std::size_t fixesSent = 0;                        // stragglers included
  std::size_t stragglersSent = 0;
  std::size_t fixErrorsSent = 0;  // requests told that there is no fix
  std::optional<SentFix> lastFix;
  std::size_t restarts = 0;
  std::size_t controlRequests = 0;
  std::size_t stalledControlRequests = 0;
  std::size_t bytesIn = 0;
  std::size_t bytesOut = 0;
};

}  // namespace bench
