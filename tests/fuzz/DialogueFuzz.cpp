// The dialogue on the AT port, the line dispatcher and the command engine together, against the
// reference: what is written, what each command comes to, and what the sensor core is told. Input:
// a script (DialogueScript.h).
#include "tests/fuzz/DialogueReference.h"

#include "at/LineDispatcher.h"
#include "tests/fuzz/EagerClock.h"
#include "tests/fuzz/FixComparison.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/ScriptedChannel.h"
#include "tests/native/Native.h"

namespace {

using reference::Seen;
using stelvane::ComPtr;

/// The driver's side: plays the script on the real objects.
class Player final : public fuzz::ChannelScript, public stelvane::ModemListener {
 public:
  explicit Player(std::string_view script) : script_(script) {}

  Seen Play() {
    fuzz::UseScript(*this);
    if (CreateObject(channel_) != S_OK || answers_.Initialize() != S_OK ||
        engine_.emplace(*channel_.Get(), *this).Initialize() != S_OK) {
      fuzz::Fail("the channel or the engine is not made");
    }
    dispatcher_.emplace(*engine_, answers_, *this);
    ForgetEarlierDialogues();
    while (!script_.Ended()) {
      const bool command = script_.OnCommand();
      const std::string_view item = script_.Next();
      if (command) {
        Send(fuzz::DialogueScript::ReadCommand(item));
      } else {
        Take(item);
      }
      seen_.requestIds.push_back(answers_.requestId);
      seen_.engineSwitchOn.push_back(answers_.engineSwitchOn);
      seen_.imsi.push_back(answers_.Imsi());
    }
    seen_.profile = answers_.Profile();
    return std::move(seen_);
  }

 private:
  /// What the dispatcher remembers is kept for the whole module: lines bring it to what the
  /// reference begins with. A report's sentences are ended, an OK is swallowed, a stop completes.
  void ForgetEarlierDialogues() {
    outstanding_ = true;
    for (const char* const line : {"AT", "$", "OK", "OK", "+XLSRSTOP"}) {
      dispatcher_->DispatchLine(line);
    }
    outstanding_ = false;
    seen_ = {};
  }

  void Take(std::string_view item) {
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
        fuzz::CloseScriptedPort();
        break;
      case '?':
        engine_->CompletePendingCommand(item.substr(1), "");
        break;
      case '=':
        dispatcher_->DispatchLine(item.substr(1));
        break;
      default:
        dispatcher_->DispatchLine(item);
    }
  }

  void Send(const fuzz::Command& command) {
    seen_.results.push_back(
        engine_->SendCommand(command.prefix, command.name, command.arguments, command.holdPower));
    seen_.engineUses.push_back(channel_->EngineUseCount());
  }

  bool Opens() override { return opens_; }
  HRESULT Write(std::string_view line) override {
    seen_.writes.emplace_back(line);
    writeStatus_ = S_OK;
    while (!script_.Ended() && !script_.OnCommand()) {
      const std::string_view item = script_.Next();
      if (item == "~") break;
      Take(item);
    }
    return writeStatus_;
  }

  bool IsStopping() override { return stopping_; }
  bool IsLocationRequestOutstanding() override { return outstanding_; }
  void OnLocationRequestStarting() override {}
  void OnLocationRequestAccepted(bool /*periodic*/) override {}
  void OnLocationRequestRefused() override {}
  void OnLocationRequestStopped() override {}
  void OnReportParsed(stelvane::FixRecord fix) override { seen_.reports.push_back(std::move(fix)); }
  void OnFixComplete(std::string sentences) override {
    outstanding_ = false;
    seen_.fixes.push_back(std::move(sentences));
  }
  void OnLocationError() override { ++seen_.locationErrors; }
  void OnEngineSwitchRead(bool /*on*/) override {}

  fuzz::DialogueScript script_;
  Seen seen_;
  bool opens_ = true;
  bool stopping_ = false;
  bool outstanding_ = false;
  HRESULT writeStatus_ = S_OK;

  ComPtr<stelvane::AtChannel> channel_;
  stelvane::ModemAnswers answers_;
  std::optional<stelvane::CommandEngine> engine_;
  std::optional<stelvane::LineDispatcher> dispatcher_;
};

void RequireSameProfile(const stelvane::UsbProfile& driver, const stelvane::UsbProfile& expected) {
  fuzz::RequireSame("profile", driver.profile, expected.profile);
  fuzz::RequireSame("options", driver.options, expected.options);
  fuzz::RequireSame("vendorId", driver.vendorId, expected.vendorId);
  fuzz::RequireSame("vendorName", driver.vendorName, expected.vendorName);
  fuzz::RequireSame("productId", driver.productId, expected.productId);
  fuzz::RequireSame("productName", driver.productName, expected.productName);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::EagerClock clock;
  native::UseClock(&clock);
  const std::string_view script(reinterpret_cast<const char*>(data), size);
  const Seen driver = Player(script).Play();
  const Seen expected = reference::PlayDialogue(script);

  fuzz::RequireSameValues("write", driver.writes, expected.writes);
  fuzz::RequireSameValues("result of command", driver.results, expected.results);
  fuzz::RequireSameValues("engine uses after command", driver.engineUses, expected.engineUses);
  fuzz::RequireSame("reports parsed", driver.reports.size(), expected.reports.size());
  for (std::size_t i = 0; i < driver.reports.size(); ++i) {
    fuzz::RequireSameFix(driver.reports[i], expected.reports[i]);
  }
  fuzz::RequireSameValues("sentences of fix", driver.fixes, expected.fixes);
  fuzz::RequireSame("location errors", driver.locationErrors, expected.locationErrors);
  fuzz::RequireSameValues("request id after item", driver.requestIds, expected.requestIds);
  fuzz::RequireSameValues("engine switch after item", driver.engineSwitchOn,
                          expected.engineSwitchOn);
  fuzz::RequireSameValues("identity after item", driver.imsi, expected.imsi);
  RequireSameProfile(driver.profile, expected.profile);
  return 0;
}
