// The dialogue on the AT port as it is described: what each line of the modem does, and what
// becomes of a command.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "at/FixRecord.h"
#include "at/UsbProfileParser.h"
#include "tests/fuzz/DialogueScript.h"

namespace reference {

/// What can be seen of a dialogue from outside, of the driver and of the reference alike.
struct Seen {
  std::vector<std::string> writes;
  std::vector<HRESULT> results;          // of the commands
  std::vector<std::int32_t> engineUses;  // after each command
  std::vector<stelvane::FixRecord> reports;
  std::vector<std::string> fixes;  // their sentences
  std::size_t locationErrors = 0;
  std::vector<std::uint32_t> requestIds;  // after each item, as the two below
  std::vector<bool> engineSwitchOn;
  std::vector<std::string> imsi;
  stelvane::UsbProfile profile;
};

/// Plays a script; the last echo seen before it was "AT".
Seen PlayDialogue(std::string_view script);

}  // namespace reference
