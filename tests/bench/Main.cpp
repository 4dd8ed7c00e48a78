#include <benchmark/benchmark.h>

#include <thread>

int main(int argc, char** argv) {
  // Locks and counted pointers are cheaper in a process that never had a second thread. The
  // driver's host always has some.
  std::thread([] {}).join();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
