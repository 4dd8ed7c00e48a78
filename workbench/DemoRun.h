// One run of the demo.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "workbench/Console.h"
#include "workbench/DemoFiles.h"
#include "workbench/GatedTrack.h"
#include "workbench/LiveView.h"
#include "workbench/Options.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/record/AtTranscript.h"
#include "workbench/record/Delivery.h"
#include "workbench/record/SentFixes.h"
#include "workbench/rig/Rig.h"

namespace bench {

/// The thread that makes it is the one that runs it.
class DemoRun {
 public:
  /// Throws std::runtime_error with one line for a person when the driver cannot be loaded.
  DemoRun(const DemoOptions& options, DemoFiles files);

  /// The exit code: 0 or 1.
  int Run();

 private:
  std::unique_ptr<Rig> MakeRig();
  void Announce() const;
  void HandOver();
  void Deliver();
  void ConnectClients();
  void OpenTrack();
  void Pass(Millis until);
  void SwitchRadioOn();
  void ChangeSim();
  void Unplug();
  void OnTrace(const TraceRecord& record);
  void ShowProgress();
  void CheckClients();
  void CheckSilence();
  bool Excused(Millis at) const;
  void Summarize(const ModemSnapshot& modem, const std::vector<std::string>& left);

  void Check(HRESULT result, const std::string& what);

  const DemoOptions& options_;
  DemoFiles files_;
  const Console console_;
  LiveView view_{console_};
  SentFixes fixes_;
  AtTranscript transcript_;
  VirtualClock clock_;
  GatedTrack* track_ = nullptr;  // the modem's
  std::unique_ptr<Rig> rig_;
  std::vector<std::unique_ptr<ClientSession>> clients_;

  bool showsAll_ = false;
  Millis interval_ = 0;  // in force
  Millis from_ = 0;      // since when fixes are expected
  Millis until_ = 0;
  Millis nextProgress_ = kForever;
  std::size_t events_ = 0;
  std::vector<std::string> clientLines_;
  std::vector<std::string> faults_;
  std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
};

}  // namespace bench
