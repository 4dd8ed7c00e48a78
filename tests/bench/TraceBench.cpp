// What a trace site costs, without and with somebody who wants its message.
#include "tests/unit/trace/TraceTest.trace.h"

#include <benchmark/benchmark.h>

#include <optional>

#include "tests/native/Native.h"
#include "workbench/clock/RealClock.h"
#include "workbench/imports/TraceSession.h"

namespace stelvane::trace {
namespace {

constexpr ULONG kAllFlags = ~ULONG{0};

/// The registered provider, and a session that listens up to `level`; nothing: nobody listens.
class Listening {
 public:
  explicit Listening(std::optional<Level> level) {
    session_.SetListener([this](const bench::TraceRecord&) { ++messages_; });
    native::UseTraceSession(&session_);
    RegisterTracing();
    if (level) session_.Enable(static_cast<UCHAR>(*level), kAllFlags);
  }
  ~Listening() {
    session_.Disable();
    UnregisterTracing();
    native::UseTraceSession(nullptr);
  }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;

  bool Heard() const { return messages_ != 0; }

 private:
  bench::RealClock clock_;
  bench::TraceSession session_{clock_};
  std::size_t messages_ = 0;
};

// A site of the level "verbose" with two texts and a number.
void TraceSite(benchmark::State& state, std::optional<Level> listensUpTo) {
  const Listening listening(listensUpTo);
  for (auto _ : state) {
    TRACE(Built, "Jul  3 2014", "12:00:00", 7U);
    benchmark::ClobberMemory();
  }
  const bool wanted = listensUpTo == Level::kVerbose;
  if (listening.Heard() != wanted) state.SkipWithError("the listener heard too much or nothing");
}
BENCHMARK_CAPTURE(TraceSite, nobody_listens, std::nullopt);
BENCHMARK_CAPTURE(TraceSite, errors_are_wanted, Level::kError);
BENCHMARK_CAPTURE(TraceSite, all_is_wanted, Level::kVerbose);

}  // namespace
}  // namespace stelvane::trace
