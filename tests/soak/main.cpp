// Random runs of the driver: see docs/soak.md.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "tests/soak/Generate.h"
#include "tests/soak/Options.h"
#include "tests/soak/Reduce.h"
#include "tests/soak/Watchdog.h"
#include "tests/soak/World.h"
#include "workbench/console/Program.h"
#include "workbench/modem/TextFile.h"

namespace soak {

namespace {

constexpr int kReductionRuns = 150;

Result RunPlan(const Plan& plan, bool show = false) {
  const Watchdog watchdog(PlanText(plan));
  World world(plan, show);
  return world.Run();
}

void ShowBreaches(const std::vector<Breach>& breaches) {
  for (const Breach& breach : breaches) {
    std::printf("  %.3f %s: %s\n", static_cast<double>(breach.at) / 1000, breach.rule.c_str(),
                breach.what.c_str());
  }
}

// A shorter plan has to break the same rule.
void ShowReplay(const Options& options, const Plan& plan, const Result& result) {
  std::printf("seed %llu: %zu breaches\n", static_cast<unsigned long long>(plan.seed),
              result.breaches.size());
  ShowBreaches(result.breaches);
  if (options.replay.empty()) {
    std::printf("again: soak --seed %llu --hours %g\n", static_cast<unsigned long long>(plan.seed),
                static_cast<double>(options.length) / 3'600'000);
  }
  const std::string rule = result.breaches.front().rule;
  const auto fails = [&rule](const Plan& shorter) {
    const auto again = RunPlan(shorter).breaches;
    return std::ranges::find(again, rule, &Breach::rule) != again.end();
  };
  const Plan shorter = options.reduce ? Reduce(plan, fails, kReductionRuns) : plan;
  std::printf("replay of \"%s\", for --replay:\n%s", rule.c_str(), PlanText(shorter).c_str());
}

void ShowSum(const Tally& sum) {
  std::printf(
      "in all %zu seeds, %.2f simulated days: %zu decisions, %zu requests, %zu commands, %zu "
      "fixes, "
      "%zu reports, %zu states; %zu violations\n",
      sum.seeds, static_cast<double>(sum.simulated) / 86'400'000, sum.decisions, sum.requests,
      sum.commands, sum.fixes, sum.reports, sum.states, sum.breaches);
  for (const auto& [what, time] : sum.longest) {
    std::printf("  longest answer to \"%s\": %lld ms\n", what.c_str(),
                static_cast<long long>(time));
  }
}

bool Run(const Options& options, const Plan& plan, Tally& sum) {
  const Result result = RunPlan(plan, options.show);
  sum.Add(result.tally);
  if (result.breaches.empty()) return true;
  ShowReplay(options, plan, result);
  std::fflush(stdout);
  return false;
}

int Main(const Options& options) {
  Tally sum;
  bool good = true;
  if (!options.replay.empty()) {
    const auto text = bench::ReadWholeFile(options.replay);
    if (!text) throw std::runtime_error(text.error);
    const auto plan = ReadPlan(*text.value, options.replay);
    if (!plan) throw std::runtime_error(plan.error);
    good = Run(options, *plan.value, sum);
  } else {
    const auto wanted = [&](std::uint64_t done) {
      return options.total > 0 && !options.list ? sum.simulated < options.total
                                                : done < options.seeds;
    };
    for (std::uint64_t i = 0; wanted(i); ++i) {
      const Plan plan = MakePlan(options.firstSeed + i, options.length);
      if (options.list) {
        std::fputs(PlanText(plan).c_str(), stdout);
      } else {
        good = Run(options, plan, sum) && good;
      }
    }
    if (options.list) return 0;
  }
  ShowSum(sum);
  return good ? 0 : 1;
}

}  // namespace

}  // namespace soak

int main() {
  const auto options = soak::ReadOptions(bench::ProgramArguments());
  if (!options) {
    std::fprintf(stderr, "soak: %s\n", options.error.c_str());
    return 2;
  }
  if (options.value->help) {
    std::fputs(soak::HelpText().c_str(), stdout);
    return 0;
  }
  try {
    return soak::Main(*options.value);
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 2;
  }
}
