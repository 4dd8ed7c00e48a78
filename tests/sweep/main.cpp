// sweep: lets every call that can fail do so, in every scenario, and looks at what the driver makes
// of it.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/sweep/Prescribed.h"
#include "tests/sweep/Results.h"
#include "tests/sweep/Scenarios.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/console/Program.h"

namespace {

using namespace bench;

constexpr const char* kHelp =
    "sweep [options]: runs each scenario once for each call in it that can fail, with that call\n"
    "failing, and once with it and all later ones of its kind failing; then the device is pulled\n"
    "out, and stopped, at each call of the framework. Every run has to end with the device "
    "stopped,\n"
    "nothing left behind and no rule broken, and what a call failed in has to return what is\n"
    "prescribed.\n"
    "\n"
    "  --scenario NAME     this one only (may be repeated)\n"
    "  --mishap TEXT       this mishap only, as a finding names it, and say what happens\n"
    "  --unprescribed      say which failing calls have no prescribed result\n"
    "  --list              print the scenarios and how many runs each takes\n"
    "  --help              print this text\n"
    "\n"
    "Exit code: 0 no findings, 1 findings, 2 a bad option, 3 a run that did not end or crashed.\n";

constexpr auto kLongestRun = std::chrono::seconds(60);  // real time; a run takes milliseconds
constexpr std::size_t kFindingsShown = 3;               // of a run

struct Options {
  std::vector<std::string> scenarios;
  std::optional<std::string> mishap;
  bool list = false;
  bool unprescribed = false;
  bool help = false;
};

// ---- What is running, for whoever has to say what hung or crashed.

std::mutex nowMutex;
std::string now;
std::atomic<std::uint64_t> runs{0};

void Announce(const Scenario& scenario, const Mishap& mishap) {
  const std::lock_guard lock(nowMutex);
  now = std::string(scenario.name) + ": " + MishapText(mishap);
  ++runs;
}

[[noreturn]] void Die(const char* how) {
  std::printf("%s in %s\n", how, now.c_str());
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), 3);
  std::abort();
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
  char text[80];
  std::snprintf(text, sizeof text, "CRASH 0x%08lx at %p",
                static_cast<unsigned long>(exception->ExceptionRecord->ExceptionCode),
                exception->ExceptionRecord->ExceptionAddress);
  Die(text);
}

void OnAbort(int) {
  Die("ABORT");
}

void WatchForHangs() {
  std::thread([] {
    for (std::uint64_t last = 0;;) {
      std::this_thread::sleep_for(kLongestRun);
      if (last == runs && last != 0) Die("HANG");
      last = runs;
    }
  }).detach();
}

// ---- Runs.

struct Result {
  std::vector<std::string> findings;
  bool happened = false;
  bool prescribed = false;  // whether the mishap has a prescribed result
  std::string where;        // a call failed
  std::vector<Trial::Count> counts;
  std::uint64_t calls = 0;
};

void JudgeResults(const CallRecord& record, Result& result) {
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

Result RunOnce(const Scenario& scenario, const Mishap& mishap) {
  Announce(scenario, mishap);
  Result result;
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

std::vector<Mishap> AllMishaps(const Result& counted) {
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

void Sweep(const Scenario& scenario, const Options& options, Totals& totals) {
  const auto began = std::chrono::steady_clock::now();
  const Result counted = RunOnce(scenario, {});
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
    const Result result = RunOnce(scenario, mishap);
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

// ---- The command line.

/// What is wrong, or nothing.
std::string ReadOptions(const std::vector<std::string>& arguments, Options& options) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--list") {
      options.list = true;
    } else if (argument == "--unprescribed") {
      options.unprescribed = true;
    } else if (argument == "--scenario" || argument == "--mishap") {
      if (++i == arguments.size()) return argument + " needs a value";
      if (argument == "--mishap") {
        options.mishap = arguments[i];
      } else if (std::ranges::find(Scenarios(), arguments[i], &Scenario::name) ==
                 Scenarios().end()) {
        return "there is no scenario \"" + arguments[i] + "\"; --list names them";
      } else {
        options.scenarios.push_back(arguments[i]);
      }
    } else {
      return "no such option: \"" + argument + "\"; try --help";
    }
  }
  return {};
}

}  // namespace

int main() {
  Options options;
  if (const std::string wrong = ReadOptions(ProgramArguments(), options); !wrong.empty()) {
    std::fprintf(stderr, "sweep: %s\n", wrong.c_str());
    return 2;
  }
  if (options.help) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  SetUnhandledExceptionFilter(&OnCrash);
  std::signal(SIGABRT, &OnAbort);
  WatchForHangs();
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
