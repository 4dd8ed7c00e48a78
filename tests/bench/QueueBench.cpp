// The queue before the state machine: events put in and taken out by one thread.
#include <benchmark/benchmark.h>

#include "sensor/EventQueue.h"
#include "sensor/Events.h"

namespace stelvane {
namespace {

// So many events wait before the first is taken. A fix looks through those behind it.
void PostAndPop(benchmark::State& state) {
  const std::int64_t count = state.range(0);
  EventQueue queue;
  if (FAILED(queue.Initialize())) state.SkipWithError("the queue is not made");
  for (auto _ : state) {
    for (std::int64_t i = 0; i < count; ++i) queue.Post(EV_DATA_ARRIVED);
    for (std::int64_t i = 0; i < count; ++i) {
      if (queue.Pop() != EV_DATA_ARRIVED) {
        state.SkipWithError("an event was lost");
        return;
      }
    }
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(PostAndPop)->ArgName("waiting")->Arg(1)->Arg(16)->Arg(256);

}  // namespace
}  // namespace stelvane
