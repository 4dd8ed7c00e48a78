// The shipping DLL with a modem whose every line the test writes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/driver/ModemScript.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/rig/Rig.h"

namespace bench {

/// The codes that the command engine adds to those of the system.
inline constexpr auto kNoAnswer = static_cast<HRESULT>(0xA0000001);
inline constexpr auto kRefused = static_cast<HRESULT>(0xA0000002);
/// A stalled transfer.
inline constexpr auto kStalled = static_cast<HRESULT>(0x8007001F);

/// The driver's own settings.
PROPERTYKEY DriverKey(DWORD id);
PROPERTYKEY CommonKey(DWORD id);

/// Builds the workbench with a ModemScript in the modem's place; ends it, with nothing left
/// behind, when the test is over. The simulated day begins on 5 July 2014 at 09:03:07 UTC.
class ModemTest : public testing::Test {
 protected:
  ~ModemTest() override = default;
  void TearDown() override;

  /// Before Start; every test calls it once.
  void Build(RigOptions options = {});
  /// Starts the device and lets the bring-up run as far as it goes without waiting.
  void Start();
  /// For a start that fails: the device is taken away again.
  HRESULT StartAndLose();
  /// Build and Start, with the bring-up's commands forgotten.
  void StartQuietly();
  /// Lets everything happen that happens within that time.
  void Settle(Millis milliseconds = 1) { clock_.SleepFor(milliseconds); }

  /// Switches the radio through the private control code: one command, and its result.
  HRESULT SwitchRadio(ULONG state);
  static constexpr const char* kSwitchOn = "AT+XLCSSWITCH=1";
  static constexpr const char* kSwitchOff = "AT+XLCSSWITCH=0,1";
  /// The radio's state as the private control code reads it: 0 on, 1 off.
  ULONG RadioState();

  /// A connected client, disconnected at the end. In the state after a bring-up this starts a
  /// single fix.
  ClientSession& Connect();
  /// A client whose subscription has started a periodic request.
  ClientSession& SubscribeEvery(ULONG milliseconds);
  ULONG Number(ClientSession& client, const PROPERTYKEY& key);

  std::vector<std::string> Commands() { return modem_->Commands(); }
  std::size_t Calls(std::string_view call) { return rig_->calls().Count(call); }
  /// StopIdle calls less ResumeIdle calls.
  int IdleHolds();

  /// The bring-up's commands with no SUPL file and nothing wrong.
  static std::vector<std::string> BringUp();

  VirtualClock clock_;
  std::unique_ptr<Rig> rig_;
  ModemScript* modem_ = nullptr;  // the rig's
  std::vector<std::unique_ptr<ClientSession>> clients_;
};

/// "<form>,<lat>,<lon>,…" with one satellite: a report that parses, of a fix at that time of
/// 5 July 2014.
std::string ReportLine(std::string_view latitude, std::string_view time);
/// The report, its own "OK", one sentence, "OK".
std::string ReportThenOkThenSentence(std::string_view latitude, std::string_view time);

}  // namespace bench
