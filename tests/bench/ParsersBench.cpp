// The parsers of what the modem sends: a line or a field at a time.
#include <benchmark/benchmark.h>

#include <string>

#include "at/LocationReportParser.h"
#include "at/UsbProfileParser.h"
#include "tests/bench/DriveText.h"
#include "workbench/modem/ReportWriter.h"

namespace stelvane {
namespace {

constexpr int kSecond = 30;

void ParseReport(benchmark::State& state) {
  const int form = static_cast<int>(state.range(0));
  const bench::GnssFix drive = bench::DriveFix(kSecond);
  const std::string line = bench::WriteReport(bench::AsReported(drive, form), form);
  for (auto _ : state) {
    FixRecord fix;
    if (ParseLocationReport(line, fix) != kReportParsed) {
      state.SkipWithError("the report was not parsed");
      break;
    }
    benchmark::DoNotOptimize(fix);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(line.size()));
  state.counters["satellites"] = static_cast<double>(drive.satellites.size());
}
BENCHMARK(ParseReport)->ArgName("form")->DenseRange(0, bench::kReportForms - 1);

void ParseOneCoordinate(benchmark::State& state) {
  std::string text = "48.1173042 N";
  for (auto _ : state) {
    benchmark::DoNotOptimize(text.data());
    double degrees = 0;
    if (!ParseCoordinate(text, degrees)) {
      state.SkipWithError("the hemisphere was not found");
      break;
    }
    benchmark::DoNotOptimize(degrees);
  }
}
BENCHMARK(ParseOneCoordinate);

void ParseProfile(benchmark::State& state) {
  const std::string line =
      "+USB: profile_str=\"MBIM_GNSS\";options_str=\"\";vendor_id=0x1234;vendor_name=\"Example\";"
      "product_id=0x5678;product_name=\"Example LTE modem\";";
  for (auto _ : state) {
    UsbProfile profile;
    if (ParseUsbProfile(line, profile) != kProfileParsed) {
      state.SkipWithError("a key was not found");
      break;
    }
    benchmark::DoNotOptimize(profile);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(line.size()));
}
BENCHMARK(ParseProfile);

}  // namespace
}  // namespace stelvane
