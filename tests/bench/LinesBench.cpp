// Line cutting: bytes a second, over the sizes of the blocks that the stream comes in.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "at/LineAssembler.h"
#include "tests/bench/DriveText.h"

namespace stelvane {
namespace {

constexpr int kSeconds = 60;

void CutInBlocks(benchmark::State& state, std::string_view stream) {
  const auto size = static_cast<std::size_t>(state.range(0));
  LineAssembler assembler;
  std::size_t lines = 0;
  for (auto _ : state) {
    for (std::string_view rest = stream; !rest.empty();
         rest.remove_prefix(std::min(size, rest.size()))) {
      const std::string_view block = rest.substr(0, size);
      assembler.Feed(block.data(), block.size(), [&lines](std::string_view line) {
        benchmark::DoNotOptimize(line.data());
        ++lines;
      });
    }
  }
  if (lines == 0) state.SkipWithError("no line was cut");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.size()));
}

void CutDrive(benchmark::State& state) {
  static const std::string stream = bench::DriveText(kSeconds);
  CutInBlocks(state, stream);
}
// A byte; the packets of a full-speed and of a high-speed bulk pipe; what the reader asks for.
BENCHMARK(CutDrive)->ArgName("block")->Arg(1)->Arg(64)->Arg(512)->Arg(4096);

// A modem that sends no line feed for long: the waiting bytes must not be searched again.
void CutOneLongLine(benchmark::State& state) {
  static const std::string stream = std::string(1 << 20, 'x') + "\r\n";
  CutInBlocks(state, stream);
}
BENCHMARK(CutOneLongLine)->ArgName("block")->Arg(1)->Arg(64)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace stelvane
