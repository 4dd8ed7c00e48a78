// The line dispatcher with everything that it routes to: engine, answers, listener.
#include <benchmark/benchmark.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "at/LineAssembler.h"
#include "at/LineDispatcher.h"
#include "tests/bench/DriveText.h"
#include "workbench/modem/ReportWriter.h"

namespace stelvane {
namespace {

constexpr int kSecond = 30;

/// A dispatcher and what belongs to it; no command is under way.
class Dispatching final : public ModemListener {
 public:
  Dispatching() {
    if (FAILED(CreateObject(channel_)) || FAILED(answers_.Initialize()) ||
        FAILED(engine_.emplace(*channel_.Get(), *this).Initialize())) {
      throw std::runtime_error("the channel or the engine is not made");
    }
    dispatcher_.emplace(*engine_, answers_, *this);
  }

  void Dispatch(std::string_view line) { dispatcher_->DispatchLine(line); }
  std::size_t Fixes() const { return fixes_; }

 private:
  bool IsStopping() override { return false; }
  bool IsLocationRequestOutstanding() override { return true; }
  void OnLocationRequestStarting() override {}
  void OnLocationRequestAccepted(bool /*periodic*/) override {}
  void OnLocationRequestRefused() override {}
  void OnLocationRequestStopped() override {}
  void OnReportParsed(FixRecord fix) override { lastFix_ = std::move(fix); }
  void OnFixComplete(std::string sentences) override {
    lastFix_.nmeaSentence = std::move(sentences);
    ++fixes_;
  }
  void OnLocationError() override {}
  void OnEngineSwitchRead(bool /*on*/) override {}

  ComPtr<AtChannel> channel_;
  ModemAnswers answers_;
  std::optional<CommandEngine> engine_;
  std::optional<LineDispatcher> dispatcher_;
  FixRecord lastFix_;
  std::size_t fixes_ = 0;
};

void DispatchOneLine(benchmark::State& state, const std::string& line) {
  Dispatching driver;
  for (auto _ : state) driver.Dispatch(line);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(DispatchOneLine, echo, "AT+XLCSLSR=1,1,,,,,1,,,2,,");
BENCHMARK_CAPTURE(DispatchOneLine, result, "OK");
BENCHMARK_CAPTURE(DispatchOneLine, request_id, "+XLCSLSR: request id 7");
BENCHMARK_CAPTURE(DispatchOneLine, for_nobody, "+CREG: 1,\"00A1\",\"01F2C3D4\",7");
BENCHMARK_CAPTURE(DispatchOneLine, report, bench::WriteReport(bench::DriveFix(kSecond), 2));

// All lines of a fix, up to the publication.
void DispatchOneFix(benchmark::State& state) {
  std::vector<std::string> lines;
  LineAssembler assembler;
  const std::string text = bench::FixText(bench::DriveFix(kSecond)) + "\r\n";
  assembler.Feed(text.data(), text.size(),
                 [&lines](std::string_view line) { lines.emplace_back(line); });
  Dispatching driver;
  for (auto _ : state) {
    for (const std::string& line : lines) driver.Dispatch(line);
  }
  if (driver.Fixes() == 0) state.SkipWithError("no fix was published");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(lines.size()));
  state.counters["lines"] = static_cast<double>(lines.size());
}
BENCHMARK(DispatchOneFix);

}  // namespace
}  // namespace stelvane
