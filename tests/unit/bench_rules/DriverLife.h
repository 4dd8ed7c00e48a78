// A well-behaved driver and its whole life on the framework, from the load to the unload of the
// module that its imports go through. A test spoils one thing of it and looks at what is found.
#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tests/unit/bench_framework/FakeDriver.h"
#include "tests/unit/bench_imports/ModuleFixture.h"
#include "workbench/rig/Verifier.h"

namespace bench {

class DriverLife : public Bench {
 public:
  DriverLife();
  ~DriverLife();

  /// Lives it. Every broken rule as "<rule>: <what happened>".
  std::vector<std::string> Run();

  // ---- What a wrong driver does otherwise.
  /// Done once, when the device is powered down for good and all its objects are still there.
  void AtFlush(std::function<void(IWDFDevice*)> wrong) { script.onFlush = std::move(wrong); }
  /// Calls that it may make under a lock.
  void Prescribe(std::span<const PrescribedCall> list) { WatchCalls(ledger, redirector_, list); }
  BOOL powerManaged = FALSE;
  UCHAR pendingReads = 1;

  // ---- What it does it with.
  FxDevice& device() { return *host->device(); }
  ComPtr<IWDFIoRequest> MakeRequest();
  ComPtr<IWDFIoTargetStateManagement> Reader() { return StateOf(pipe_); }
  /// What the driver imports.
  const ModuleCalls& Imports() { return *imports_; }
  DriverModule& module() { return *module_; }
  /// A thread of the driver that runs until the end of this.
  void LeaveAThread();

  CRITICAL_SECTION first = {};
  CRITICAL_SECTION second = {};

 private:
  HRESULT Prepare(IWDFDevice* device);
  void LiveFromAddToRemove();

  Redirector redirector_{clock};
  std::unique_ptr<DriverModule> module_;
  const ModuleCalls* imports_ = nullptr;
  ComPtr<IWDFIoQueue> queue_;
  ComPtr<IWDFUsbTargetPipe> pipe_;
  std::atomic<bool> threadMayEnd_{false};
  HANDLE thread_ = nullptr;
};

}  // namespace bench
