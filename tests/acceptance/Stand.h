// The shipping DLL on the workbench, as the checks work with it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/acceptance/DriverShare.h"
#include "tests/acceptance/SteeredTrack.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/rig/Rig.h"

namespace bench::acceptance {

using Client = std::unique_ptr<ClientSession>;

/// One load of the driver, with one device. A check leaves it as it found it: nobody connected, the
/// radio on, reception on. The thread that makes it is the one that uses it.
class Stand {
 public:
  /// Loads the DLL and starts the device; throws std::runtime_error with one line for a person.
  explicit Stand(ModemFaults faults = {});

  /// Disables the device and enables it again; clients must have gone.
  HRESULT Restart();
  /// Pulls the device out, which clients may find out for themselves, and plugs it in again, for
  /// which they must have gone.
  void PullOut() { rig_->host().SurpriseRemoval(); }
  HRESULT PlugIn();
  /// Standby and back.
  HRESULT Sleep(Millis duration);
  HRESULT SwitchRadio(bool on);

  /// A connected client that works through the device's queue.
  Client Connect();
  /// A client with that report interval that has subscribed.
  Client Subscriber(Millis interval);
  /// Waits until the client has its next report; false when none comes within a time that is long
  /// for this interval.
  bool WaitForNextReport(const ClientSession& client, Millis interval);
  void Pass(Millis duration) { clock_.SleepFor(duration); }
  /// Until nobody has anything left to do at this moment.
  void Settle() { Pass(100); }

  /// How often the modem received that command.
  std::size_t Received(const std::string& command);
  /// The modem says a line out of nowhere.
  void Say(std::string_view line);
  SensorState State();

  /// Unloads the driver; what was broken or left behind.
  std::vector<std::string> Close();

  VirtualClock& clock() { return clock_; }
  Rig& rig() { return *rig_; }
  Sky& sky() { return *sky_; }
  const DriverShare& share() const { return share_; }

 private:
  HRESULT Add();

  VirtualClock clock_;
  std::shared_ptr<Sky> sky_ = std::make_shared<Sky>();
  DriverShare share_;
  std::unique_ptr<Rig> rig_;
};

}  // namespace bench::acceptance
