// The whole workbench around one loaded driver DLL: host, class extension, modem and imports.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/ComPtr.h"
#include "workbench/clock/Clock.h"
#include "workbench/framework/CallRecord.h"
#include "workbench/framework/Host.h"
#include "workbench/framework/Ledger.h"
#include "workbench/imports/DriverModule.h"
#include "workbench/imports/Redirector.h"
#include "workbench/modem/Modem.h"
#include "workbench/rig/SystemRoot.h"
#include "workbench/sensorapi/ClientSession.h"
#include "workbench/sensorapi/ComRegistration.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

struct TraceOptions {
  UCHAR level = TRACE_LEVEL_VERBOSE;
  TraceSession::Listener listener;  // on the tracing thread, one message at a time
};

struct RigOptions {
  std::filesystem::path dll = "Stelvane.dll";  // as found from the program's own folder
  ModemOptions modem = {};
  /// Null: the built-in drive.
  std::unique_ptr<TrackSource> track;
  std::vector<ModemObserver*> observers;
  /// A record that outlives the rig; null: one of its own.
  CallRecord* calls = nullptr;
  /// In the modem's place, when given; the options above then matter to nobody but the clock.
  std::unique_ptr<UsbLink> link;
  DevicePlan device = {};
  SensorService::Options sensorService = {};
  std::vector<ApiClass> withheldClasses;
  /// Runs when all but the module is there, to plan what shall fail from its load on.
  std::function<void(Redirector&, CallRecord&)> beforeLoad;
  /// A listener of the driver's trace, from the module's load on.
  std::optional<TraceOptions> trace;
  /// Null: the device's description cannot be read.
  std::optional<std::wstring> deviceDescription = L"Workbench GNSS function";
  std::uint64_t startTicks = 3'600'000;  // ms since the simulated system's start
  /// UTC at time 0; nothing: the track's.
  std::optional<SYSTEMTIME> startUtc;
};

/// Loads the DLL and sets everything up; no callback has run yet. The constructing thread is the
/// one that loads, starts and stops; it must be a participant of the clock.
class Rig {
 public:
  /// Throws std::runtime_error with one line for a person.
  explicit Rig(Clock& clock, RigOptions options = {});
  /// Ends what still runs.
  ~Rig();
  Rig(const Rig&) = delete;
  Rig& operator=(const Rig&) = delete;

  /// Adds the device and starts it, as far as it goes.
  HRESULT Start();
  /// Stops the device, takes it away and lets go of the driver object; the module stays loaded.
  void ReleaseDriver();
  /// Stops the device, takes it away, lets go of the driver object and unloads the module, whose
  /// members below are gone then. Clients must have disconnected, or been destroyed.
  void Shutdown();
  /// Broken rules, leaks and books that do not balance, and a DllCanUnloadNow that was not S_OK
  /// before the module was unloaded; to be asked after Shutdown. Empty when all is well.
  std::vector<std::string> Findings();

  /// A new client; connected by its own Connect. The rig must outlive it.
  std::unique_ptr<ClientSession> NewClient() { return std::make_unique<ClientSession>(sensors_); }

  Clock& clock() { return clock_; }
  Host& host() { return *host_; }
  /// Not to be asked for when another link took the modem's place.
  Modem& modem() { return *modem_; }
  SensorService& sensors() { return sensors_; }
  ComRegistration& classes() { return classes_; }
  Redirector& redirector() { return redirector_; }
  DriverModule& module() { return *module_; }
  IClassFactory& factory() { return *factory_.Get(); }
  Ledger& ledger() { return ledger_; }
  CallRecord& calls() { return calls_; }
  /// Where the driver finds its SUPL configuration file.
  SystemRoot& systemRoot() { return systemRoot_; }

 private:
  void Load(const std::filesystem::path& dll);

  Clock& clock_;
  Ledger ledger_;
  const std::unique_ptr<CallRecord> ownCalls_;
  CallRecord& calls_;
  SensorService sensors_;
  ComRegistration classes_;
  Redirector redirector_;
  SystemRoot systemRoot_;
  std::unique_ptr<Modem> modem_;
  std::unique_ptr<UsbLink> otherLink_;
  std::unique_ptr<DriverModule> module_;
  stelvane::ComPtr<IClassFactory> factory_;
  std::unique_ptr<Host> host_;
  bool released_ = false;
  HRESULT canUnload_ = S_FALSE;
};

/// The driver's class.
inline constexpr CLSID kDriverClass = {
    0xceeb6d87, 0x3f96, 0x4cc8, {0x9f, 0x46, 0x36, 0x99, 0x39, 0x17, 0x1d, 0xc7}};

}  // namespace bench
