// The modem's side of the dialogue: commands, their answers, and reports.
#include <utility>

#include "workbench/modem/ModemCore.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string Line(std::string_view text) {
  return std::string(kLineEnd).append(text).append(kLineEnd);
}

bool Is(const std::optional<CommandFault>& fault, Reaction reaction) {
  return fault && fault->reaction == reaction;
}

}  // namespace

void Modem::Core::TakeInput(Millis now) {
  for (const char c : std::exchange(inbox_, {})) {
    if (c != '\r' && c != '\n') {
      line_ += c;
    } else if (!line_.empty()) {
      LineArrived(now, std::exchange(line_, {}));
    }
  }
}

void Modem::Core::LineArrived(Millis now, std::string line) {
  ++state_.commands;
  ++state_.commandLines[line];
  happenings_.emplace_back(CommandSeen{now, line});
  if (Deaf(now)) return;
  lines_.push_back(std::move(line));
  StartNextCommand(now);
}

// One command at a time: those that arrive meanwhile are neither echoed nor obeyed before it has
// its answer.
void Modem::Core::StartNextCommand(Millis now) {
  while (!busy_ && !lines_.empty()) {
    const std::string line = std::move(lines_.front());
    lines_.pop_front();
    const auto fault = commandFaults_.Take(line);
    if (Is(fault, Reaction::kSilence)) continue;
    if (state_.echo && !Is(fault, Reaction::kNoEcho)) Say(now, line + std::string(kLineEnd));
    busy_ = true;
    agenda_.Add(now + options_.latency, Job::kCommand,
                [this, line, fault](Millis due) { Execute(due, line, fault); });
  }
}

void Modem::Core::Execute(Millis due, const std::string& line,
                          const std::optional<CommandFault>& fault) {
  AtAnswer answer{.ok = false, .information = {}};
  if (!Is(fault, Reaction::kError)) {
    AtContext context{.now = due, .options = options_, .state = state_, .engine = engine_};
    answer = Obey(line, context);
  }
  if (echoStuckOff_) state_.echo = false;
  const std::string text = AnswerText(answer, fault);
  if (Is(fault, Reaction::kLate)) {
    agenda_.Add(due + fault->delay, Job::kCommand,
                [this, text, restart = answer.restart, fault](Millis later) {
                  Finish(later, text, restart, fault);
                });
  } else {
    Finish(due, text, answer.restart, fault);
  }
}

void Modem::Core::Finish(Millis due, const std::string& text, bool restart,
                         const std::optional<CommandFault>& fault) {
  Say(due, text);
  if (Is(fault, Reaction::kStraggle)) {
    agenda_.Add(due + fault->delay, Job::kStraggler,
                [this](Millis later) { SendStraggler(later); });
  }
  busy_ = false;
  if (restart) Restart(due);
  StartNextCommand(due);
}

std::string Modem::Core::AnswerText(const AtAnswer& answer,
                                    const std::optional<CommandFault>& fault) {
  std::string text;
  if (!answer.information.empty()) text += Line(answer.information);
  text += Line(answer.ok ? "OK" : "ERROR");
  if (!answer.ok) ++state_.errorsSent;
  if (Is(fault, Reaction::kTwice)) text += text;
  if (Is(fault, Reaction::kGarbage)) text = Line(Garbage(kGarbageLength)) + text;
  return text;
}

void Modem::Core::SendReport(Millis due, std::uint32_t id, bool single, bool straggler,
                             const GnssFix& fix) {
  if (Deaf(due)) return;
  SentFix sent{.at = due,
               .requestId = id,
               .single = single,
               .straggler = straggler,
               .fix = AsReported(fix, reportForm_)};
  std::string text = Line(WriteReport(sent.fix, reportForm_, options_.blankBeforeHemisphere));
  if (reportShape_ == ReportShape::kOkThenSentences) text += Line("OK");
  for (const std::string& sentence : sent.fix.sentences) text.append(sentence).append(kLineEnd);
  text += Line("OK");

  ++state_.fixesSent;
  if (straggler) ++state_.stragglersSent;
  state_.lastFix = sent;
  happenings_.emplace_back(std::move(sent));
  Say(due, text);
}

void Modem::Core::SendFixError(Millis due) {
  ++state_.fixErrorsSent;
  Say(due, Line("+XLCSLSR: ERROR: no position"));
}

void Modem::Core::SendStraggler(Millis due) {
  if (const auto fix = engine_.Look(due)) SendReport(due, engine_.LastId(), false, true, *fix);
}

void Modem::Core::Inject(ModemFaults faults) {
  const Millis now = clock_.Now();
  {
    const std::lock_guard lock(mutex_);
    Plan(now, std::move(faults));
    // At once, as far as it is due: the caller's next call meets the modem as it asked for.
    agenda_.RunUntil(now);
  }
  Wake();
}

void Modem::Core::Plan(Millis from, ModemFaults faults) {
  for (TimedFault& fault : faults.timed) {
    agenda_.Add(from + fault.at, Job::kFault,
                [this, fault = std::move(fault)](Millis due) { Apply(due, fault); });
  }
  commandFaults_.Add(std::move(faults.reactions));
}

void Modem::Core::Apply(Millis due, const TimedFault& fault) {
  const auto amount = static_cast<std::size_t>(fault.amount);
  switch (fault.action) {
    case ModemAction::kSilent:
      silentUntil_ = due + fault.amount;
      lines_.clear();
      return;
    case ModemAction::kLoseFix:
      return engine_.LoseFixUntil(due + fault.amount);
    case ModemAction::kGarbage:
      return Say(due, Line(Garbage(amount)));
    case ModemAction::kLine:
      return Say(due, Line(fault.text));
    case ModemAction::kSim:
      state_.imsi = fault.text;
      return;
    case ModemAction::kRestart:
      return Restart(due);
    case ModemAction::kEchoOff:
      state_.echo = false;
      echoStuckOff_ = true;
      return;
    case ModemAction::kEchoOn:
      state_.echo = true;
      echoStuckOff_ = false;
      return;
    case ModemAction::kCut:
      return port_.Cut(amount);
    case ModemAction::kCutRandom:
      return port_.CutAtRandom(static_cast<std::uint32_t>(fault.amount));
    case ModemAction::kJoin:
      return port_.Join(fault.amount);
    case ModemAction::kStallControl:
      stalls_ = fault.amount;
      return;
    case ModemAction::kObey:
      return commandFaults_.Clear();
    case ModemAction::kForm:
      reportForm_ = static_cast<int>(fault.amount);
      return;
    case ModemAction::kShape:
      reportShape_ = static_cast<ReportShape>(fault.amount);
      return;
  }
}

void Modem::Core::Restart(Millis due) {
  ++state_.restarts;
  state_.echo = options_.echo;
  state_.usbProfile = state_.storedUsbProfile;
  state_.engineRunning = state_.engineOn;
  engine_.Halt();
  engine_.ForgetAssistanceData();
  for (const Job job : {Job::kCommand, Job::kStraggler, Job::kBoot}) agenda_.Cancel(job);
  line_.clear();
  lines_.clear();
  busy_ = false;
  booting_ = true;
  agenda_.Add(due + options_.restartTime, Job::kBoot, [this](Millis) { booting_ = false; });
}

// No byte of it is a line end or begins anything that a host could know.
std::string Modem::Core::Garbage(std::size_t bytes) {
  std::string garbage(bytes, '\0');
  for (char& c : garbage) c = static_cast<char>(0x80 + noise_() % 0x80);
  return garbage;
}

}  // namespace bench
