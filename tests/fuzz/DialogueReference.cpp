#include "tests/fuzz/DialogueReference.h"

#include "tests/fuzz/NumberReference.h"
#include "tests/fuzz/ProfileReference.h"
#include "tests/fuzz/ReportReference.h"

namespace reference {

namespace {

constexpr HRESULT kNoResult = static_cast<HRESULT>(0xA0000001L);
constexpr HRESULT kError = static_cast<HRESULT>(0xA0000002L);

bool Begins(const std::string& line, const char* with) {
  return line.rfind(with, 0) == 0;
}

class Dialogue {
 public:
  explicit Dialogue(std::string_view script) : script_(script) {}

  Seen Play() {
    while (!script_.Ended()) {
      const bool command = script_.OnCommand();
      const std::string item(script_.Next());
      if (command) {
        Send(fuzz::DialogueScript::ReadCommand(item));
      } else {
        Take(item);
      }
      seen_.requestIds.push_back(requestId_);
      seen_.engineSwitchOn.push_back(engineSwitchOn_);
      seen_.imsi.push_back(imsi_);
    }
    return seen_;
  }

 private:
  /// One item that is not a command.
  void Take(const std::string& item) {
    switch (item.empty() ? 0 : item[0]) {
      case '~':
        break;
      case '<':
        if (item == "<f") writeStatus_ = E_FAIL;
        if (item == "<s") writeStatus_ = S_FALSE;
        break;
      case '!':
        outstanding_ = !outstanding_;
        break;
      case '#':
        stopping_ = !stopping_;
        break;
      case '%':
        opens_ = !opens_;
        break;
      case '^':
        open_ = false;
        break;
      case '?':
        Complete(item.substr(1), "");
        break;
      case '=':
        Line(item.substr(1));
        break;
      default:
        Line(item);
    }
  }

  void Send(const fuzz::Command& command) {
    if (command.holdPower) ++uses_;
    pending_ = command.prefix;
    if (command.name) pending_ += "+" + std::string(*command.name);
    if (command.name && command.arguments) pending_ += "=" + std::string(*command.arguments);
    seen_.results.push_back(Attempts());
    const bool accepted = command.name && *command.name == "XLCSLSR" && responseOk_;
    if (command.holdPower && !accepted) --uses_;
    seen_.engineUses.push_back(uses_);
  }

  HRESULT Attempts() {
    if (!open_) open_ = opens_;
    if (!open_) return E_FAIL;
    for (int attempt = 1; attempt <= 7; ++attempt) {
      if (stopping_) return kError;
      completed_ = false;
      const HRESULT status = Write();
      if (FAILED(status)) return status;
      if (completed_) return responseOk_ ? status : kError;
      if (attempt == 3) {
        open_ = opens_;
        if (!open_) break;
      }
    }
    return kNoResult;
  }

  HRESULT Write() {
    seen_.writes.push_back(pending_ + "\r\n");
    writeStatus_ = S_OK;
    while (!script_.Ended() && !script_.OnCommand()) {
      const std::string item(script_.Next());
      if (item == "~") break;
      Take(item);
    }
    return writeStatus_;
  }

  void Complete(const std::string& line, const std::string& echo) {
    const bool ours = echo == pending_ || (echo.empty() && Begins(pending_, "ATE1"));
    if (!ours) return;
    responseOk_ = line.find("ERROR") == std::string::npos;
    completed_ = true;
  }

  void Line(const std::string& line) {
    if (line.empty()) return;
    if (Begins(line, "AT")) lastEcho_ = line;
    if (Begins(line, "@")) {
      swallowNextOk_ = true;
    } else if (Begins(line, "$") && reportParsed_) {
      Sentence(line);
    } else if (Begins(line, "AT+XLSRSTOP=0")) {
      stopPending_ = true;
      swallowNextOk_ = true;
    } else if (Begins(line, "+XLCSLSR: request id")) {
      requestId_ = ReadUnsigned(line.substr(20));
    } else if (Begins(line, "OK") || line.find("ERROR") != std::string::npos) {
      FinalResult(line);
    } else if (Begins(line, "+USB: ")) {
      seen_.profile = {};
      ReadProfile(line, seen_.profile);
    } else if (Begins(line, "+XLCSLSR: ")) {
      Report(line);
    } else if (Begins(line, "+XLSRSTOP")) {
      if (stopPending_) Complete(line, lastEcho_);
      stopPending_ = false;
    } else if (Begins(line, "+XLCSSWITCH : ")) {
      if (Begins(line, "+XLCSSWITCH : 0")) engineSwitchOn_ = false;
    } else if (lastEcho_ == "AT+CIMI") {
      Identity(line);
    }
  }

  void Sentence(const std::string& line) {
    if (!outstanding_) {
      swallowNextOk_ = true;
      return;
    }
    sentences_ += line + "\n";
    sentencesCollected_ = true;
  }

  void FinalResult(const std::string& line) {
    if (sentencesCollected_) {
      seen_.fixes.push_back(sentences_);
      sentences_.clear();
      outstanding_ = sentencesCollected_ = reportParsed_ = false;
    } else if (swallowNextOk_ && Begins(line, "OK")) {
      swallowNextOk_ = false;
    } else if (Begins(line, "+XLCSLSR: ")) {
      ++seen_.locationErrors;
    } else {
      Complete(line, lastEcho_);
    }
  }

  void Report(const std::string& line) {
    swallowNextOk_ = true;
    stelvane::FixRecord fix;
    if (ReadReport(line, fix) != 0) return;
    sentences_.clear();
    seen_.reports.push_back(fix);
    reportParsed_ = true;
  }

  void Identity(const std::string& line) {
    std::string digits;
    for (const char c : line) {
      if (c >= '0' && c <= '9') digits += c;
    }
    if (digits.size() == 14 || digits.size() == 15) imsi_ = digits;
  }

  fuzz::DialogueScript script_;
  Seen seen_;

  // the modem's side of the channel
  bool open_ = false;
  bool opens_ = true;
  bool stopping_ = false;
  bool outstanding_ = false;
  HRESULT writeStatus_ = S_OK;

  // what is remembered from line to line
  std::string lastEcho_ = "AT";
  bool swallowNextOk_ = false;
  bool stopPending_ = false;
  bool reportParsed_ = false;
  bool sentencesCollected_ = false;
  std::string sentences_;

  // the command in flight and what was read
  std::string pending_;
  bool responseOk_ = false;
  bool completed_ = false;
  std::int32_t uses_ = 0;
  std::uint32_t requestId_ = 0;
  bool engineSwitchOn_ = true;
  std::string imsi_;
};

}  // namespace

Seen PlayDialogue(std::string_view script) {
  return Dialogue(script).Play();
}

}  // namespace reference
