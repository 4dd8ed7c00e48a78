// Stands between one loaded driver DLL and Windows: observes and steers what the DLL asks for.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/imports/Audit.h"
#include "workbench/imports/Breaches.h"
#include "workbench/imports/FaultPlan.h"
#include "workbench/imports/ImportTable.h"
#include "workbench/imports/LockBook.h"
#include "workbench/imports/SimulatedDevices.h"
#include "workbench/imports/SimulatedRegistry.h"
#include "workbench/imports/TimeSteering.h"
#include "workbench/imports/TraceSession.h"

namespace bench {

/// What the redirected functions of one loaded module work on. The functions find it through one
/// global, so only one can exist at a time: a second constructor throws std::logic_error.
///
/// Give it to DriverModule, which attaches it before the DLL's DllMain. Destroy it after the module
/// and after every thread that the module started has ended.
class Redirector {
 public:
  explicit Redirector(Clock& clock);
  Redirector(const Redirector&) = delete;
  Redirector& operator=(const Redirector&) = delete;
  ~Redirector();

  /// The one that exists; only redirected functions call it.
  static Redirector& Current();

  TimeSteering& Time() { return time_; }
  SimulatedRegistry& Registry() { return registry_; }
  SimulatedDevices& Devices() { return devices_; }
  TraceSession& Tracing() { return tracing_; }
  Audit& Books() { return audit_; }
  LockBook& Locks() { return locks_; }
  Breaches& Broken() { return breaches_; }
  FaultPlan& Faults() { return faults_; }

  /// Calls of each function that is replaced in the module's table, with whether it can be made to
  /// fail; in a fixed order.
  std::vector<ImportCalls> Calls() const;

  /// Replaces the module's imports; called by DriverModule.
  void Attach(HMODULE module);
  /// Ends the replacement; `loaded` tells whether the module's memory is still there.
  void Detach(bool loaded);

  /// What a replaced slot held; only redirected functions call it.
  void* Original(std::size_t import) const { return originals_[import]; }
  /// Where in the module an address lies, as an offset from its base.
  std::uintptr_t OffsetOf(const void* address) const;

 private:
  TimeSteering time_;
  SimulatedRegistry registry_;
  SimulatedDevices devices_;
  TraceSession tracing_;
  Audit audit_;
  LockBook locks_;
  Breaches breaches_;
  FaultPlan faults_;
  ImportTable table_;
  HMODULE module_ = nullptr;
  std::vector<void*> originals_;
};

}  // namespace bench
