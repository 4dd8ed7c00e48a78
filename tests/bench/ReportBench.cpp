// The road of a fix: from the moment in which the modem flushes the block with the report to the
// moment in which the report lies with the subscribed client. The reader's thread and the worker
// are woken on the way. Simulated time stands still; the machine's is measured.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/bench/DriveText.h"
#include "tests/driver/SensorModem.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/rig/Rig.h"

namespace bench {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr ULONG kInterval = 1000;  // ms; so each fix of the drive is reported
constexpr int kReports = 2000;
constexpr const char* kPeriodicRequest = "AT+XLCSLSR=1,1,,,,,1,,,2,,";
// Simulated. The dispatcher remembers what the benchmarks before this one did, and may take an
// answer of the bring-up for a late one; then the command is written again after a time-out.
constexpr Millis kStartTime = 60'000;
constexpr Millis kPatience = 1000;
constexpr UCHAR kEverything = 5;

/// A driver in its rig with one subscribed client, and a modem that says what it is told to.
class Road final : private SensorListener {
 public:
  explicit Road(bool traced) {
    if (traced) {
      TraceSession& session = rig_.redirector().Tracing();
      session.SetListener([this](const TraceRecord&) { ++messages_; });
      session.Enable(kEverything, ~ULONG{0});
    }
    rig_.sensors().SetListener(this);
    if (FAILED(rig_.Start()) || FAILED(client_->Connect()) ||
        !client_->SetReportInterval(kInterval).Accepted() || FAILED(client_->Subscribe())) {
      throw std::runtime_error("the driver does not start");
    }
    while (!PeriodicRequestRuns()) {
      if (clock_.Now() > kStartTime) throw std::runtime_error("the driver asks for no fixes");
      Settle();
    }
    Settle();
    Travel();  // the first report also makes the sensor ready
  }

  /// Trace messages so far.
  std::size_t Messages() const { return messages_; }

  /// Sends the next second's fix down the road.
  Microseconds Travel() {
    const std::string block = FixText(DriveFix(++second_));
    const auto sent = SteadyClock::now();
    modem_->Say(block);
    if (!client_->WaitForReports(static_cast<std::size_t>(second_), clock_.Now() + kPatience)) {
      throw std::runtime_error("a report did not reach the client");
    }
    const Microseconds taken = delivered_ - sent;
    Settle();
    return taken;
  }

 private:
  /// Until nobody has anything left to do at this moment.
  void Settle() { clock_.SleepFor(1); }
  bool PeriodicRequestRuns() const {
    return std::ranges::any_of(modem_->Commands(), [](const SensorModem::Command& command) {
      return command.line == kPeriodicRequest;
    });
  }
  RigOptions Options() {
    RigOptions options;
    auto modem = std::make_unique<SensorModem>(clock_);
    modem_ = modem.get();
    options.link = std::move(modem);
    options.sensorService.checkReports = false;
    return options;
  }
  void OnReport(const PostedEvent& /*event*/) override { delivered_ = SteadyClock::now(); }

  std::atomic<std::size_t> messages_{0};
  VirtualClock clock_;
  SensorModem* modem_ = nullptr;
  Rig rig_{clock_, Options()};
  std::unique_ptr<ClientSession> client_ = rig_.NewClient();
  int second_ = 0;
  SteadyClock::time_point delivered_;
};

void ReportToClient(benchmark::State& state, bool traced) {
  Road road(traced);
  const std::size_t before = road.Messages();
  std::vector<double> taken;
  for (auto _ : state) {
    const Microseconds one = road.Travel();
    taken.push_back(one.count());
    state.SetIterationTime(std::chrono::duration<double>(one).count());
  }
  const std::size_t messages = road.Messages() - before;
  if ((messages != 0) != traced) state.SkipWithError("the listener heard too much or nothing");
  std::ranges::sort(taken);
  state.counters["messages"] = static_cast<double>(messages) / static_cast<double>(taken.size());
  state.counters["median_us"] = taken[taken.size() / 2];
  state.counters["p99_us"] = taken[taken.size() * 99 / 100];
}
BENCHMARK_CAPTURE(ReportToClient, untraced, false)
    ->UseManualTime()
    ->Iterations(kReports)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ReportToClient, traced, true)
    ->UseManualTime()
    ->Iterations(kReports)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
