// Gives the modem the SUPL server of the SIM's network.
#pragma once

#include <string>

#include "at/CommandEngine.h"
#include "at/ModemAnswers.h"
#include "modem/SuplRecord.h"

namespace stelvane {

/// Runs on the worker thread, in bring-up, before a start and on EV_INIT_SUPL, and never fails its
/// caller.
class SuplProvisioning {
 public:
  SuplProvisioning(AtChannel& channel, CommandEngine& engine, ModemAnswers& answers)
      : channel_(channel), engine_(engine), answers_(answers) {}

  /// Reads the SIM's identity and, when it is not the one provisioned last, writes the operator's
  /// settings. Not negative in any case.
  HRESULT ConfigureSupl() noexcept;

 private:
  HRESULT ReadSimAndConfigure();
  HRESULT WriteSettings(HRESULT result);

  AtChannel& channel_;
  CommandEngine& engine_;
  ModemAnswers& answers_;
  SuplRecord record_;
  // The identity for which provisioning last completed; named like the record's members.
  std::string m_strProvisionedImsi;  // NOLINT(readability-identifier-naming)
};

/// The whole "XLCSSLP" command of a record. E_INVALIDARG when a type that needs an address has
/// none, E_FAIL for an unknown or empty type; both are reported, and `command` is empty then.
HRESULT BuildSlpCommand(const SuplRecord& record, std::string& command);

/// The two commands that follow it: the terminal information and the record's SUPL version.
std::string TerminalCommand();
std::string VersionCommand(const SuplRecord& record);

}  // namespace stelvane
