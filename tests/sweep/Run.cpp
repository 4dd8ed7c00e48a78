#include "tests/sweep/Run.h"

#include <exception>
#include <utility>

#include "tests/sweep/Deaths.h"
#include "tests/sweep/Prescribed.h"
#include "tests/sweep/Results.h"
#include "workbench/clock/VirtualClock.h"

namespace bench {

namespace {

void JudgeResults(const CallRecord& record, RunResult& result) {
  const std::vector<CallEntry> calls = record.Calls();
  result.where = WhereItFailed(calls);
  for (const Struck& struck : StruckOperations(calls)) {
    const Verdict verdict = Judge(calls, struck);
    result.prescribed = result.prescribed || verdict.prescribed;
    if (!verdict.finding.empty()) result.findings.push_back(verdict.finding);
  }
  for (std::string& finding : JudgeAfterRemoval(calls)) {
    result.findings.push_back(std::move(finding));
  }
}

}  // namespace

RunResult RunOnce(const Scenario& scenario, const Mishap& mishap) {
  Announce(std::string(scenario.name) + ": " + MishapText(mishap));
  RunResult result;
  VirtualClock clock;
  CallRecord calls(clock);
  try {
    Trial trial(clock, calls, scenario.options(), mishap);
    if (scenario.prepare != nullptr) scenario.prepare(trial);
    scenario.run(trial);
    result.findings = trial.End();
    std::erase_if(result.findings,
                  [&mishap](const std::string& finding) { return IsPrescribed(mishap, finding); });
    result.happened = trial.Happened();
    result.counts = trial.Counts();
    result.calls = trial.Calls();
  } catch (const std::exception& error) {
    // The driver may refuse to be loaded, or to make its object, while something fails in that.
    result.happened = mishap.kind == MishapKind::kImport;
    if (!result.happened) result.findings.emplace_back(error.what());
  }
  JudgeResults(calls, result);
  return result;
}

std::vector<Mishap> AllMishaps(const RunResult& counted) {
  std::vector<Mishap> all;
  for (const Trial::Count& count : counted.counts) {
    for (std::uint64_t nth = 1; nth <= count.calls; ++nth) {
      all.push_back({count.kind, count.name, nth, false});
      all.push_back({count.kind, count.name, nth, true});
    }
  }
  for (std::uint64_t nth = 1; nth <= counted.calls; ++nth) {
    all.push_back({MishapKind::kRemoval, {}, nth, false});
    all.push_back({MishapKind::kRelease, {}, nth, false});
  }
  return all;
}

}  // namespace bench
