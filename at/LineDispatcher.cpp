#include "at/LineDispatcher.h"

#include <new>
#include <utility>

#include "at/LineDispatcher.trace.h"
#include "at/LocationReportParser.h"
#include "at/Numbers.h"

namespace stelvane {

namespace {

constexpr std::string_view kStopEcho = "AT+XLSRSTOP=0";
constexpr std::string_view kIdentityCommand = "AT+CIMI";
constexpr std::string_view kRequestId = "+XLCSLSR: request id";
constexpr std::string_view kReport = "+XLCSLSR: ";
constexpr std::string_view kStopAnswer = "+XLSRSTOP";
constexpr std::string_view kSwitchReport = "+XLCSSWITCH : ";  // the blank before the colon counts
constexpr std::string_view kUsbAnswer = "+USB: ";
constexpr std::size_t kShortImsi = 14;
constexpr std::size_t kLongImsi = 15;

bool HoldsError(std::string_view line) {
  return line.find("ERROR") != std::string_view::npos;
}

struct DispatcherState {
  std::string lastEchoLine;    // the last line that began with "AT"
  std::string lastReportLine;  // emptied when a report carried "ERROR"
  bool swallowNextOk = false;  // the next "OK" belongs to an exchange nobody waits for
  bool stopPending = false;    // "+XLSRSTOP" completes the pending command
  bool reportParsed = false;   // sentences of a parsed report may follow
  bool nmeaCollected = false;  // at least one sentence has been collected
};

constinit SlimLock stateLock;
constinit DispatcherState state GUARDED_BY(stateLock);

}  // namespace

// The end of static objects does not do for this: the C library notes it at the load, and may have
// no memory for the note.
void LineDispatcher::ForgetLines() noexcept {
  const ScopedLock lock(stateLock);
  std::exchange(state, DispatcherState());
}

void LineDispatcher::DispatchLine(std::string_view line) noexcept {
  if (line.empty()) return;
  const ScopedLock lock(stateLock);
  try {
    TRACE(LineReceived, std::string(line).c_str());
    Route(line);
  } catch (const std::bad_alloc&) {
    TRACE(LineDropped);
  }
}

// The order of the tests decides; the first one that applies ends the routing.
void LineDispatcher::Route(std::string_view line) REQUIRES(stateLock) {
  if (line.starts_with("AT")) state.lastEchoLine = line;

  if (line.starts_with("@")) {
    TRACE(SwallowsNextOk, std::string(line).c_str());
    state.swallowNextOk = true;
  } else if (line.starts_with("$") && state.reportParsed) {
    OnSentence(line);
  } else if (line.starts_with(kStopEcho)) {
    state.stopPending = true;
    state.swallowNextOk = true;
  } else if (line.starts_with(kRequestId)) {
    answers_.requestId = ParseUnsigned(line.substr(kRequestId.size()));
    TRACE(RequestIdRead, answers_.requestId.load());
  } else if (line.starts_with("OK") || HoldsError(line)) {
    OnFinalResult(line);
  } else if (line.starts_with(kUsbAnswer)) {
    UsbProfile profile;
    ParseUsbProfile(line, profile);  // what was found is kept, whatever is missing
    answers_.SetProfile(std::move(profile));
  } else if (line.starts_with(kReport)) {
    OnReport(line);
  } else if (line.starts_with(kStopAnswer)) {
    if (!state.stopPending) return;
    engine_.CompletePendingCommand(line, state.lastEchoLine);
    state.stopPending = false;
  } else if (line.starts_with(kSwitchReport)) {
    OnSwitchReport(line.substr(kSwitchReport.size()));
  } else if (state.lastEchoLine == kIdentityCommand) {
    OnIdentityLine(line);
  }
}

void LineDispatcher::OnSentence(std::string_view line) REQUIRES(stateLock) {
  if (!listener_.IsLocationRequestOutstanding()) {
    state.swallowNextOk = true;
    return;
  }
  nmeaBuffer_.append(line).append("\n");
  state.nmeaCollected = true;
}

void LineDispatcher::OnFinalResult(std::string_view line) REQUIRES(stateLock) {
  if (state.nmeaCollected) {
    PublishFix();
  } else if (state.swallowNextOk && line.starts_with("OK")) {
    state.swallowNextOk = false;
  } else if (line.starts_with(kReport)) {
    TRACE(LocationErrorReceived, std::string(line).c_str());
    state.lastReportLine.clear();
    listener_.OnLocationError();
  } else {
    engine_.CompletePendingCommand(line, state.lastEchoLine);
  }
}

void LineDispatcher::PublishFix() REQUIRES(stateLock) {
  TRACE(FixPublished);
  state.nmeaCollected = false;
  state.reportParsed = false;
  listener_.OnFixComplete(std::exchange(nmeaBuffer_, {}));
}

void LineDispatcher::OnReport(std::string_view line) REQUIRES(stateLock) {
  state.lastReportLine = line;
  // A report's own "OK" may follow at once. When the modem sends none before the sentences, the
  // flag stays and takes the "OK" of the next command, which is then written twice; this is meant.
  state.swallowNextOk = true;
  FixRecord fix;
  try {
    if (const std::uint8_t result = ParseLocationReport(line, fix); result != kReportParsed) {
      TRACE(ReportRejected, ULONG{result}, state.lastReportLine.c_str());
      return;
    }
  } catch (const std::bad_alloc&) {
    TRACE(ReportDropped, state.lastReportLine.c_str());
    return;
  }
  nmeaBuffer_.clear();
  listener_.OnReportParsed(std::move(fix));
  state.reportParsed = true;
}

void LineDispatcher::OnSwitchReport(std::string_view value) {
  if (!value.starts_with("0")) return;
  TRACE(EngineSwitchedOff);
  answers_.engineSwitchOn = false;
}

void LineDispatcher::OnIdentityLine(std::string_view line) {
  std::string digits;
  for (const char character : line) {
    if (character >= '0' && character <= '9') digits.push_back(character);
  }
  if (digits.empty()) return;
  if (digits.size() != kShortImsi && digits.size() != kLongImsi) {
    TRACE(IdentityRejected, std::string(line).c_str());
    return;
  }
  answers_.SetImsi(std::move(digits));
}

}  // namespace stelvane
