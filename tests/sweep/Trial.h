// One run of a scenario, in which one thing goes wrong.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/sweep/XmlCalls.h"
#include "workbench/rig/Rig.h"

namespace bench {

enum class MishapKind {
  kNone,     // the run that counts the calls
  kCall,     // a call of the framework, the class extension, a container or the XML parser fails
  kImport,   // a Windows or C library function that the DLL imports fails
  kRemoval,  // at that call, counted over all of the first kind, the device is pulled out
  kRelease,  // at that call the device begins to be stopped
};

struct Mishap {
  MishapKind kind = MishapKind::kNone;
  std::string name{};     // of the call; empty for the last two kinds
  std::uint64_t nth = 0;  // from 1
  bool andAllAfter = false;
};

/// "call IWDFIoRequest::Send 3", "import malloc 17 and all after".
std::string MishapText(const Mishap& mishap);

/// What a scenario works with. Each of its steps returns false once there is no sense in going on:
/// the device does not run, or runs no more.
class Trial {
 public:
  /// Loads the DLL with the mishap planned. Throws std::runtime_error when that does not work.
  /// Clock and record outlive the trial.
  Trial(Clock& clock, CallRecord& calls, RigOptions options, const Mishap& mishap);
  ~Trial();

  bool Start();
  /// Lets time pass.
  bool Pass(Millis time);
  /// A client that subscribes; what fails on the way is answered, that is all that is asked.
  bool Connect(ULONG interval);
  bool DisconnectAll();
  /// A read of all data fields that may wait for a fix.
  bool Read();
  bool SwitchRadio(ULONG state);
  bool PowerDownAndUp();
  bool Unplug();

  /// How many calls of the first kind there were.
  std::uint64_t Calls() const { return calls_; }

  Rig& rig() { return *rig_; }
  ClientSession& client() { return *clients_.back(); }
  bool hasClient() const { return !clients_.empty(); }

  /// Stops the device, unloads the DLL and says what was left behind or broken; with the planned
  /// failure still in force, as long as it lasts. Called once, last.
  std::vector<std::string> End();
  /// Whether the mishap came about.
  bool Happened() const { return happened_; }

  /// The calls that may fail, with how often they came; to be asked after End.
  struct Count {
    MishapKind kind;
    std::string name;
    std::uint64_t calls;
  };
  std::vector<Count> Counts();

 private:
  void Listen(RigOptions& options, CallRecord& calls) const;
  void OnCall();
  void PullOut();
  bool GoesOn() const { return !stopping_; }

  const Mishap mishap_;
  Clock& clock_;
  std::atomic<bool> stopping_{false};
  std::atomic<bool> ending_{false};
  std::atomic<bool> happened_{false};
  std::atomic<std::uint64_t> calls_{0};
  std::unique_ptr<Rig> rig_;
  std::unique_ptr<XmlCalls> xml_;
  std::vector<std::unique_ptr<ClientSession>> clients_;
  Thread removal_;
};

}  // namespace bench
