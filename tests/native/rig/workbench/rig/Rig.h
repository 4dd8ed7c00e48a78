// The whole workbench around the driver's sources, compiled into the test program: the same face as
// the rig around the DLL, so that the same tests run on both.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/ComPtr.h"
#include "workbench/clock/Clock.h"
#include "workbench/framework/CallRecord.h"
#include "workbench/framework/Host.h"
#include "workbench/framework/Ledger.h"
#include "workbench/imports/Redirector.h"
#include "workbench/modem/Modem.h"
#include "workbench/sensorapi/ClientSession.h"
#include "workbench/sensorapi/ComRegistration.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

struct RigOptions {
  ModemOptions modem = {};
  /// Null: the built-in drive.
  std::unique_ptr<TrackSource> track;
  std::vector<ModemObserver*> observers;
  /// In the modem's place, when given.
  std::unique_ptr<UsbLink> link;
  DevicePlan device = {};
  SensorService::Options sensorService = {};
  std::vector<ApiClass> withheldClasses;
  /// Null: the device's description cannot be read.
  const WCHAR* deviceDescription = L"Workbench GNSS function";
  std::uint64_t startTicks = 3'600'000;  // ms since the simulated system's start
  /// UTC at time 0; nothing: the track's.
  std::optional<SYSTEMTIME> startUtc;
};

/// Puts the kernel on the clock given and the driver's module into its loaded state. One at a time;
/// the constructing thread loads, starts and stops.
class Rig {
 public:
  explicit Rig(Clock& clock, RigOptions options = {});
  /// Ends what still runs.
  ~Rig();
  Rig(const Rig&) = delete;
  Rig& operator=(const Rig&) = delete;

  HRESULT Start();
  void ReleaseDriver();
  void Shutdown();
  /// Broken rules, leaks and handles still open; to be asked after Shutdown.
  std::vector<std::string> Findings();

  std::unique_ptr<ClientSession> NewClient() { return std::make_unique<ClientSession>(sensors_); }

  Clock& clock() { return clock_; }
  Host& host() { return *host_; }
  Modem& modem() { return *modem_; }
  SensorService& sensors() { return sensors_; }
  ComRegistration& classes() { return classes_; }
  Redirector& redirector() { return redirector_; }
  IClassFactory& factory() { return *factory_.Get(); }
  Ledger& ledger() { return ledger_; }
  CallRecord& calls() { return calls_; }

 private:
  /// Steers the kernel while it lives, so that it outlives all that waits.
  struct Kernel {
    Kernel(Clock& clock, TraceSession& session);
    ~Kernel();
  };

  Clock& clock_;
  Redirector redirector_;
  const Kernel kernel_;
  Ledger ledger_;
  CallRecord calls_;
  SensorService sensors_;
  ComRegistration classes_;
  std::unique_ptr<Modem> modem_;
  std::unique_ptr<UsbLink> otherLink_;
  stelvane::ComPtr<IClassFactory> factory_;
  std::unique_ptr<Host> host_;
  bool loaded_ = false;
  bool released_ = false;
  bool canUnload_ = false;
};

/// The driver's class.
inline constexpr CLSID kDriverClass = {
    0xceeb6d87, 0x3f96, 0x4cc8, {0x9f, 0x46, 0x36, 0x99, 0x39, 0x17, 0x1d, 0xc7}};

}  // namespace bench
