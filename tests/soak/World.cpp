#include "tests/soak/World.h"

#include <algorithm>
#include <utility>

#include "driver/IoControlCodes.h"
#include "tests/soak/Generate.h"
#include "tests/soak/Limits.h"
#include "tests/soak/Tables.h"
#include "workbench/SuplText.h"
#include "workbench/framework/Rules.h"

namespace soak {

namespace {

constexpr Millis kRequestsAfterTheEnd = 1500;
constexpr std::size_t kRadioState = sizeof(ULONG);

std::string Bytes(ULONG value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

bench::Variant ValueOf(const soak::Write& write) {
  switch (write.type) {
    case VT_LPWSTR:
      return bench::Variant::String(write.text);
    case VT_BOOL:
      return bench::Variant::Bool(write.number != 0);
    case VT_UI4:
      return bench::Variant::Ui4(write.number);
    default:
      return {};
  }
}

}  // namespace

World::World(const Plan& plan, bool show) : plan_(plan), watch_(clock_, show) {
  bench::RigOptions options;
  options.modem = ModemOf(plan.seed);
  options.startTicks = StartTicksOf(plan.seed);
  options.observers = {&watch_.Lines(), &watch_};
  rig_ = std::make_unique<bench::Rig>(clock_, std::move(options));
  rig_->calls().SetHook([this](const bench::CallEntry& entry) { watch_.OnCall(entry); });
  rig_->sensors().SetListener(&watch_);
  for (int i = 0; i < kClients; ++i) {
    visitors_.push_back(std::make_unique<Visitor>(*rig_, watch_, doors_, i));
  }
  for (auto& host : hosts_) host = std::make_unique<Errands>(clock_);
}

World::~World() {
  if (!ended_) End(false);
}

Result World::Run() {
  rig_->Start();
  for (const Decision& decision : plan_.decisions) {
    clock_.SleepUntil(decision.at);
    watch_.ShowDeed(DecisionText(decision));
    Do(decision);
    if (ended_) break;
  }
  if (!ended_) End(false);
  LookBack();
  Result result{.tally = watch_.Sum(), .breaches = watch_.Found()};
  result.tally.decisions = plan_.decisions.size();
  return result;
}

void World::Do(const Decision& decision) {
  if (DoAsClient(decision.deed, decision.numbers)) return;
  if (DoToModem(decision.deed, decision.numbers)) {
    // Pieces, SIMs and forms are no fault.
    const bool harmless = decision.deed == Deed::kCut || decision.deed == Deed::kShred ||
                          decision.deed == Deed::kSim || decision.deed == Deed::kForm;
    if (!harmless) watch_.Note([](Millis, Watch& watch) { watch.uses.Fault(); });
    return;
  }
  DoToHost(decision.deed, decision.numbers);
}

bool World::DoAsClient(Deed deed, const Numbers& numbers) {
  Visitor& visitor = *visitors_[static_cast<std::size_t>(numbers[0]) % visitors_.size()];
  switch (deed) {
    case Deed::kConnect:
      return visitor.Connect(), true;
    case Deed::kLeave:
    case Deed::kVanish:
      return visitor.Leave(deed == Deed::kLeave), true;
    case Deed::kSubscribe:
    case Deed::kUnsubscribe:
      return visitor.Subscribe(deed == Deed::kSubscribe), true;
    case Deed::kInterval:
      return visitor.SetInterval(numbers[1]), true;
    case Deed::kAccuracy:
      return visitor.Write(bench::kDesiredAccuracy,
                           bench::Variant::Ui4(static_cast<ULONG>(numbers[1]))),
             true;
    case Deed::kGet:
      return visitor.GetEverything(), true;
    case Deed::kSet:
      return Write(visitor, static_cast<std::size_t>(numbers[1])), true;
    case Deed::kRead:
      return visitor.Read(), true;
    case Deed::kLists:
      return visitor.AskForLists(), true;
    case Deed::kInitAgain:
      return visitor.Write({kDriverSet, 6}, bench::Variant::Bool(true)), true;
    case Deed::kClear:
      watch_.Note([](Millis, Watch& watch) { watch.uses.Fault(); });
      if (numbers[1] == 0) return visitor.Write({kDriverSet, 2}, bench::Variant::Bool(true)), true;
      return visitor.Write({kAssistanceSet, 2}, bench::Variant::Ui4(1)), true;
    default:
      return false;
  }
}

void World::Write(Visitor& visitor, std::size_t index) {
  const soak::Write& write = kWrites[index % std::size(kWrites)];
  visitor.Write(write.key, ValueOf(write));
}

bool World::DoToModem(Deed deed, const Numbers& numbers) {
  using bench::ModemAction;
  const std::int64_t number = numbers[0];
  const auto index = static_cast<std::size_t>(number);
  switch (deed) {
    case Deed::kSilent:
      return Inject(ModemAction::kSilent, number), true;
    case Deed::kLoseFix:
      return Inject(ModemAction::kLoseFix, number), true;
    case Deed::kGarbage:
      return Inject(ModemAction::kGarbage, number), true;
    case Deed::kStray:
      return Inject(ModemAction::kLine, 0,
                    std::string(kStrayLines[index % std::size(kStrayLines)])),
             true;
    case Deed::kSim:
      return Inject(ModemAction::kSim, 0, std::string(kSims[index % std::size(kSims)])), true;
    case Deed::kRestart:
      return Inject(ModemAction::kRestart), true;
    case Deed::kEcho:
      return Inject(number == 0 ? ModemAction::kEchoOff : ModemAction::kEchoOn), true;
    case Deed::kCut:
      return Inject(ModemAction::kCut, number), true;
    case Deed::kShred:
      return Inject(ModemAction::kCutRandom, number), true;
    case Deed::kJoin:
      return Inject(ModemAction::kJoin, number), true;
    case Deed::kStall:
      watch_.Note([](Millis, Watch& watch) { watch.wire.OpeningMayFail(); });
      return Inject(ModemAction::kStallControl, number), true;
    case Deed::kReact:
      return React(numbers), true;
    case Deed::kForm:
      return Inject(ModemAction::kForm, number % 4), true;
    case Deed::kShape:
      return Inject(ModemAction::kShape, number % 2), true;
    default:
      return false;
  }
}

void World::Inject(bench::ModemAction action, std::int64_t amount, std::string text) {
  rig_->modem().Inject(
      {.timed = {{.action = action, .amount = amount, .text = std::move(text)}}, .reactions = {}});
}

void World::React(const Numbers& numbers) {
  const auto command = kCommands[static_cast<std::size_t>(numbers[0]) % std::size(kCommands)];
  rig_->modem().Inject({.timed = {},
                        .reactions = {{.command = std::string(command),
                                       .reaction = static_cast<bench::Reaction>(numbers[1] % 7),
                                       .count = numbers[2],
                                       .delay = numbers[3]}}});
}

void World::DoToHost(Deed deed, const Numbers& numbers) {
  const auto number = static_cast<ULONG>(numbers[0]);
  switch (deed) {
    case Deed::kRadio:
      return SwitchRadio(numbers[0]);
    case Deed::kRadioQuery:
      return SendControl(
          "ask for the radio",
          number == 0 ? stelvane::kIoctlReadRadioState : stelvane::kIoctlReadPreviousRadioState, {},
          limit::kQuick);
    case Deed::kRadioStore:
      return SendControl("store a radio state", stelvane::kIoctlStorePreviousRadioState,
                         Bytes(number), limit::kRadioSwitch);
    case Deed::kOddRequest:
      return SendControl("an odd request", kOddCodes[number % std::size(kOddCodes)], "x",
                         limit::kRadioSwitch);
    case Deed::kSleep:
      return PowerDown();
    case Deed::kWake:
      return PowerUp();
    case Deed::kConfig:
      return WriteConfig(numbers[0]);
    case Deed::kCalm:
      return Calm();
    case Deed::kUnplug:
      return End(true);
    case Deed::kStop:
      return End(false);
    default:
      return;
  }
}

void World::SendControl(const std::string& what, ULONG code, const std::string& input,
                        Millis limit) {
  hosts_[nextHost_++ % hosts_.size()]->Do([this, what, code, input, limit] {
    const int id = watch_.Asked(what, limit);
    rig_->host().SendIoControl(code, input, kRadioState).Wait();
    watch_.Answered(id, what);
  });
}

void World::SwitchRadio(std::int64_t state) {
  watch_.Note([](Millis, Watch& watch) { watch.uses.Fault(); });
  hosts_[nextHost_++ % hosts_.size()]->Do([this, state] {
    const bool on = state == 0;
    watch_.Note([on](Millis now, Watch& watch) { watch.spacing.RadioSwitching(now, on); });
    const int id = watch_.Asked("switch the radio", limit::kRadioSwitch);
    const auto request = rig_->host().SendIoControl(stelvane::kIoctlSwitchRadio,
                                                    Bytes(static_cast<ULONG>(state)), 0);
    const bool done = request.Wait() && SUCCEEDED(request.Status());
    watch_.Answered(id, "switch the radio");
    watch_.Note([=](Millis now, Watch& watch) {
      if (!on) watch.spacing.RadioSwitching(now, false);
      if (on && done) watch.spacing.RadioSwitchedOn(now);
    });
  });
}

void World::PowerDown() {
  if (std::exchange(asleep_, true)) return;
  watch_.Note([](Millis, Watch& watch) {
    watch.uses.Fault();
    watch.uses.PowerDown();
    watch.wire.ReadingStops();
  });
  rig_->host().PowerDown();
}

void World::PowerUp() {
  if (!std::exchange(asleep_, false)) return;
  const auto note = [this] {
    watch_.Note([](Millis now, Watch& watch) {
      watch.wire.ReadingGoesOn(now);
      watch.spacing.PoweredUp(now);
      watch.uses.PowerUp(now);
    });
  };
  note();
  const HRESULT result = rig_->host().PowerUp();
  note();
  // As the framework does with a device that does not come up again.
  if (FAILED(result)) End(false);
}

void World::WriteConfig(std::int64_t which) {
  bench::SystemRoot& root = rig_->systemRoot();
  const auto index = static_cast<std::size_t>(which) % std::size(kConfigs);
  std::string text(bench::kDemoSuplConfig);
  switch (index) {
    case 0:
      return root.RemoveConfigFile();
    case 1:
      break;
    case 4:
      text.erase(text.find("<Supl_Address>"),
                 text.find("</Supl_Address>") + 15 - text.find("<Supl_Address>"));
      break;
    default:
      text = kConfigs[index];
  }
  root.WriteConfigFile(text);
}

}  // namespace soak
