#include "at/CommandEngine.h"

#include <new>

#include "at/CommandEngine.trace.h"

namespace stelvane {

namespace {

constexpr DWORD kResponseTimeoutMs = 1000;
constexpr unsigned kReopenAfterAttempt = 2;  // attempts count from 0
constexpr unsigned kLastAttempt = 6;
constexpr std::string_view kLocationRequest = "XLCSLSR";
constexpr std::string_view kEchoOnCommand = "ATE1";

}  // namespace

std::string BuildCommandLine(std::string_view prefix, std::optional<std::string_view> name,
                             std::optional<std::string_view> arguments) {
  std::string line(prefix);
  if (!name) return line;
  line.append("+").append(*name);
  if (arguments) line.append("=").append(*arguments);
  return line;
}

HRESULT CommandEngine::Initialize() {
  HRESULT result = commandLock_.Initialize();
  if (SUCCEEDED(result)) result = responseLock_.Initialize();
  if (SUCCEEDED(result)) result = responseEvent_.Create(Event::Reset::kManual, false);
  return result;
}

HRESULT CommandEngine::SendCommand(std::string_view prefix, std::optional<std::string_view> name,
                                   std::optional<std::string_view> arguments,
                                   bool holdPower) noexcept {
  if (holdPower) channel_.AcquireEngineUse(true);
  const ScopedLock lock(commandLock_);
  HRESULT result = E_OUTOFMEMORY;
  try {
    std::string line = BuildCommandLine(prefix, name, arguments);
    TRACE(CommandStarts, line.c_str());
    {
      const ScopedLock response(responseLock_);
      pendingCommand_ = line;
    }
    line.append("\r\n");
    result = RunAttempts(line);
  } catch (const std::bad_alloc&) {
    TRACE(CommandOutOfMemory);
  }
  // An accepted location request keeps the device held until the request is stopped. The flag is
  // read as it stands: a request that timed out right after a successful command keeps it too.
  const bool keepHeld = name == kLocationRequest && ResponseOk();
  if (holdPower && !keepHeld) channel_.ReleaseEngineUse();
  TRACE(CommandEnds, result);
  return result;
}

HRESULT CommandEngine::RunAttempts(std::string_view line) {
  if (!channel_.IsOpen()) {
    const HRESULT opened = channel_.OpenModemPort();
    if (!channel_.IsOpen()) {
      TRACE(ChannelClosed, opened);
      return E_FAIL;
    }
  }
  for (unsigned attempt = 0;; ++attempt) {
    if (listener_.IsStopping()) {
      TRACE(NotSentWhileStopping);
      return kModemError;
    }
    const HRESULT written = channel_.WriteLine(line, responseEvent_);
    if (FAILED(written)) return written;
    if (responseEvent_.Wait(kResponseTimeoutMs)) {
      if (ResponseOk()) return written;
      TraceModemError();
      return kModemError;
    }
    TRACE(AttemptSilent, ULONG{attempt});
    if (attempt == kLastAttempt) return kNoFinalResult;
    if (attempt == kReopenAfterAttempt && !Reopen()) return kNoFinalResult;
  }
}

bool CommandEngine::Reopen() {
  channel_.ClosePort();
  const HRESULT result = channel_.OpenModemPort();
  if (FAILED(result)) TRACE(ReopenFailed, result);
  return SUCCEEDED(result);
}

void CommandEngine::CompletePendingCommand(std::string_view finalLine,
                                           std::string_view lastEchoLine) {
  const ScopedLock lock(responseLock_);
  // The command that turns echo on is not echoed itself.
  const bool ours = lastEchoLine == pendingCommand_ ||
                    (lastEchoLine.empty() && pendingCommand_.starts_with(kEchoOnCommand));
  if (!ours) {
    TRACE(ForeignResult, std::string(finalLine).c_str(), pendingCommand_.c_str());
    return;
  }
  responseOk_ = finalLine.find("ERROR") == std::string_view::npos;
  if (responseOk_) {
    errorText_.clear();
  } else {
    errorText_ = finalLine;
  }
  responseEvent_.Set();
}

bool CommandEngine::ResponseOk() {
  const ScopedLock lock(responseLock_);
  return responseOk_;
}

void CommandEngine::TraceModemError() {
  const ScopedLock lock(responseLock_);
  TRACE(ModemRefused, errorText_.c_str());
}

}  // namespace stelvane
