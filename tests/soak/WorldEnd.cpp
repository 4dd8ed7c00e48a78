// How a run ends: everything is put right and works again, and nothing is left behind.
#include <algorithm>
#include <string>

#include "tests/soak/Limits.h"
#include "tests/soak/Tables.h"
#include "tests/soak/World.h"
#include "workbench/framework/Rules.h"

namespace soak {

namespace {

constexpr Millis kVisitorsLinger = 2 * limit::kRadioSwitch;
constexpr int kRounds = 8;
constexpr Millis kRound = 90'000;
constexpr std::size_t kReportsWanted = 3;
constexpr Millis kAfterwards = 1500;  // in which clients go on asking a device that is gone

}  // namespace

void World::WaitForVisitors() {
  clock_.WaitUntil(clock_.Now() + kVisitorsLinger, [this] {
    return std::ranges::all_of(visitors_, [](const auto& visitor) { return visitor->Idle(); }) &&
           std::ranges::all_of(hosts_, [](const auto& host) { return host->Idle(); });
  });
}

void World::Calm() {
  using bench::ModemAction;
  PowerUp();
  if (ended_) return;
  for (const ModemAction action :
       {ModemAction::kObey, ModemAction::kSilent, ModemAction::kLoseFix, ModemAction::kCut,
        ModemAction::kJoin, ModemAction::kStallControl}) {
    Inject(action);
  }
  Inject(ModemAction::kEchoOn);
  for (const auto& visitor : visitors_) visitor->Leave(true);
  WaitForVisitors();
  clock_.SleepFor(kRound);
  watch_.Note([](Millis now, Watch& watch) { watch.uses.Quiet(now); });
  if (ReportsComeBack()) return;
  watch_.Note([](Millis now, Watch& watch) {
    watch.breaches.Add("recovery", now, "nothing is wrong any more and no reports come");
  });
}

// A request that was refused once is asked for again only when a client changes its mind.
bool World::ReportsComeBack() {
  Visitor& visitor = *visitors_.front();
  visitor.Connect();
  visitor.Subscribe(true);
  for (int round = 0; round < kRounds; ++round) {
    visitor.Write({kDriverSet, 6}, bench::Variant::Bool(true));
    SwitchRadio(0);
    WaitForVisitors();
    visitor.Read();
    visitor.SetInterval(round % 2 == 0 ? 2000 : 3000);
    WaitForVisitors();
    const std::size_t before = watch_.Reports();
    const Millis until = clock_.Now() + kRound;
    if (rig_->sensors().WaitForEvents(before + kReportsWanted, until)) return true;
  }
  return false;
}

void World::End(bool pulledOut) {
  ended_ = true;
  doors_.Close();
  watch_.Note([](Millis, Watch& watch) { watch.uses.Ending(); });
  const int id = watch_.Asked("the end", limit::kEnd);
  if (pulledOut) {
    rig_->host().SurpriseRemoval();
    for (const auto& visitor : visitors_) visitor->GetEverything();
    clock_.SleepFor(kAfterwards);
  }
  rig_->ReleaseDriver();
  watch_.Answered(id, "the end");
  visitors_.clear();
  for (auto& host : hosts_) host.reset();
}

void World::LookBack() {
  watch_.Note([](Millis now, Watch& watch) { watch.answers.Ended(now); });
  rig_->Shutdown();
  for (const std::string& finding : rig_->Findings()) {
    // A read may keep a suspension waiting; how long an answer takes is a rule of ours.
    if (finding.starts_with(bench::rule::kSlowAnswer)) continue;
    watch_.Note([&](Millis now, Watch& watch) { watch.breaches.Add("left-behind", now, finding); });
  }
}

}  // namespace soak
