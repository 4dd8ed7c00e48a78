// Sends one AT command and waits for the modem's final result.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "at/AtChannel.h"
#include "at/ModemListener.h"

namespace stelvane {

/// The text of a command line without its terminator: `prefix`, then "+" and `name` when a name is
/// given, then "=" and `arguments` when these are given too. May throw std::bad_alloc.
std::string BuildCommandLine(std::string_view prefix, std::optional<std::string_view> name,
                             std::optional<std::string_view> arguments);

/// One command is outstanding at any time: SendCommand may be called on any thread and holds the
/// command lock throughout.
class CommandEngine {
 public:
  CommandEngine(AtChannel& channel, ModemListener& listener)
      : channel_(channel), listener_(listener) {}
  HRESULT Initialize();

  /// The write's own success status when the modem's final result held no "ERROR"; kNoFinalResult
  /// after the last silent attempt; kModemError on "ERROR" or when the core is stopping; E_FAIL
  /// when the channel cannot be opened; E_OUTOFMEMORY when the line cannot be put together; else
  /// the result of the write that failed. With `holdPower` an engine use is held around the
  /// command, and kept for an accepted location request.
  HRESULT SendCommand(std::string_view prefix, std::optional<std::string_view> name = std::nullopt,
                      std::optional<std::string_view> arguments = std::nullopt,
                      bool holdPower = true) noexcept EXCLUDES(commandLock_, responseLock_);

  /// Called by the dispatcher with a final result line and the last echo it saw. Completes the
  /// pending command when that echo is the command's.
  void CompletePendingCommand(std::string_view finalLine, std::string_view lastEchoLine)
      EXCLUDES(responseLock_);

 private:
  HRESULT RunAttempts(std::string_view line) REQUIRES(commandLock_);
  bool Reopen() REQUIRES(commandLock_);
  bool ResponseOk() EXCLUDES(responseLock_);
  void TraceModemError() EXCLUDES(responseLock_);

  AtChannel& channel_;
  ModemListener& listener_;
  CriticalSection commandLock_;

  Event responseEvent_;
  CriticalSection responseLock_;
  std::string pendingCommand_ GUARDED_BY(responseLock_);
  bool responseOk_ GUARDED_BY(responseLock_) = false;
  std::string errorText_ GUARDED_BY(responseLock_);
};

}  // namespace stelvane
