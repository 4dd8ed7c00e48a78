// sweep: lets every call that can fail do so, in every scenario, and looks at what the driver makes
// of it.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "tests/sweep/Deaths.h"
#include "tests/sweep/Options.h"
#include "tests/sweep/Run.h"
#include "workbench/console/Program.h"

namespace bench {

namespace {

constexpr std::size_t kFindingsShown = 3;  // of a run

bool IsFailure(const Mishap& mishap) {
  return mishap.kind == MishapKind::kCall || mishap.kind == MishapKind::kImport;
}

struct Totals {
  std::size_t runs = 0;
  std::size_t happened = 0;
  std::size_t mishaps = 0;     // calls that failed
  std::size_t prescribed = 0;  // of these
  std::size_t bad = 0;
  std::map<std::string, std::size_t> unprescribed{};  // how often, by where it failed
};

void Add(Totals& totals, const Totals& here) {
  totals.runs += here.runs;
  totals.happened += here.happened;
  totals.mishaps += here.mishaps;
  totals.prescribed += here.prescribed;
  totals.bad += here.bad;
  for (const auto& [where, count] : here.unprescribed) totals.unprescribed[where] += count;
}

void ShowFindings(const Scenario& scenario, const Mishap& mishap,
                  const std::vector<std::string>& findings) {
  const std::string name(scenario.name);
  std::printf("  FINDING --scenario %s --mishap \"%s\"\n", name.c_str(),
              MishapText(mishap).c_str());
  for (std::size_t i = 0; i < std::min(findings.size(), kFindingsShown); ++i) {
    std::printf("    %s\n", findings[i].c_str());
  }
}

void Sweep(const Scenario& scenario, const SweepOptions& options, Totals& totals) {
  const auto began = std::chrono::steady_clock::now();
  const RunResult counted = RunOnce(scenario, {});
  if (!counted.findings.empty()) {
    ShowFindings(scenario, {}, counted.findings);
    ++totals.bad;
    return;
  }
  const std::vector<Mishap> mishaps = AllMishaps(counted);
  const std::string name(scenario.name);
  if (options.list) {
    std::printf("%-16s %6zu runs   %s\n", name.c_str(), mishaps.size(),
                std::string(scenario.what).c_str());
    return;
  }
  Totals here;
  for (const Mishap& mishap : mishaps) {
    if (options.mishap && MishapText(mishap) != *options.mishap) continue;
    const RunResult result = RunOnce(scenario, mishap);
    ++here.runs;
    if (result.happened) ++here.happened;
    if (result.happened && IsFailure(mishap)) ++here.mishaps;
    if (result.prescribed) {
      ++here.prescribed;
    } else if (!result.where.empty()) {
      ++here.unprescribed[result.where];
    }
    if (result.findings.empty()) continue;
    ++here.bad;
    ShowFindings(scenario, mishap, result.findings);
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
  std::printf(
      "%-16s %6zu runs, the mishap came about in %zu, %zu with findings, %.0f s\n"
      "%-16s %zu of %zu failing calls have a prescribed result\n",
      name.c_str(), here.runs, here.happened, here.bad, took.count(), "", here.prescribed,
      here.mishaps);
  std::fflush(stdout);
  Add(totals, here);
}

int Main(const SweepOptions& options) {
  Totals totals;
  for (const Scenario& scenario : Scenarios()) {
    if (!options.scenarios.empty() &&
        std::ranges::find(options.scenarios, scenario.name) == options.scenarios.end()) {
      continue;
    }
    Sweep(scenario, options, totals);
  }
  if (options.list) return 0;
  if (options.mishap && totals.runs == 0) {
    std::fprintf(stderr, "sweep: no scenario has the mishap \"%s\"\n", options.mishap->c_str());
    return 2;
  }
  std::printf("in all %zu runs, the mishap came about in %zu, %zu with findings\n", totals.runs,
              totals.happened, totals.bad);
  std::printf("%zu of %zu failing calls have a prescribed result\n", totals.prescribed,
              totals.mishaps);
  if (options.unprescribed) {
    for (const auto& [where, count] : totals.unprescribed) {
      std::printf("  %5zu %s\n", count, where.c_str());
    }
  }
  return totals.bad == 0 ? 0 : 1;
}

}  // namespace

}  // namespace bench

int main() {
  const auto read = bench::ReadSweepOptions(bench::ProgramArguments());
  if (!read) {
    std::fprintf(stderr, "sweep: %s\n", read.error.c_str());
    return 2;
  }
  if (read.value->help) {
    std::fputs(bench::SweepHelpText().c_str(), stdout);
    return 0;
  }
  bench::WatchForDeaths();
  return bench::Main(*read.value);
}
