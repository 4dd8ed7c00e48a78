// tracedecode: makes text of a trace that the workbench recorded.
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "workbench/console/Program.h"
#include "workbench/modem/TextFile.h"
#include "workbench/trace/MessageText.h"
#include "workbench/trace/TraceFile.h"
#include "workbench/trace/TraceLevel.h"

namespace {

using bench::NoValue;
using bench::Outcome;

constexpr const char* kHelp =
    "tracedecode TRACE [options]: shows a trace that the workbench recorded (trace.bin in a run\n"
    "folder) as text, a message a line: UTC time, thread, level, source file, function, message.\n"
    "\n"
    "  --tmf FOLDER   where the trace format (.tmf) files are (default: tmf beside this program)\n"
    "  --level LEVEL  leave out what is less grave: critical, error, warning, information or\n"
    "                 verbose (1 to 5)\n"
    "  --help         print this text\n"
    "\n"
    "Exit code: 0 all was shown, 1 a message could not be decoded or the trace is damaged, 2 a "
    "bad\n"
    "option or file.\n";

constexpr int kWhole = 0;
constexpr int kDamaged = 1;
constexpr int kBad = 2;

struct Options {
  std::string trace;
  std::string tmf;
  unsigned char level = bench::kTraceLevels.size();
  bool help = false;
};

Outcome<Options> ReadOptions(const std::vector<std::string>& arguments) {
  Options options{.trace = {}, .tmf = bench::ToUtf8(bench::ProgramFolder() / "tmf")};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h") {
      options.help = true;
      return {.value = options, .error = {}};
    }
    if (argument == "--tmf" || argument == "--level") {
      if (++i == arguments.size()) return NoValue<Options>(argument + " needs a value");
      const std::string& value = arguments[i];
      const auto level = bench::ToTraceLevel(value);
      if (argument == "--tmf") {
        options.tmf = value;
      } else if (level) {
        options.level = *level;
      } else {
        return NoValue<Options>("--level takes " + std::string(bench::kTraceLevelHelp) +
                                ", not \"" + value + "\"");
      }
    } else if (argument.starts_with("-")) {
      return NoValue<Options>("no such option: \"" + argument + "\"; try --help");
    } else if (!options.trace.empty()) {
      return NoValue<Options>("one trace at a time, not \"" + argument + "\" too");
    } else {
      options.trace = argument;
    }
  }
  if (options.trace.empty()) return NoValue<Options>("no trace given; try --help");
  return {.value = options, .error = {}};
}

// "2026-11-21 10:00:00.123"; `time` in 100 ns units since 1601.
std::string UtcText(std::uint64_t time) {
  const FILETIME file = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
  SYSTEMTIME utc = {};
  FileTimeToSystemTime(&file, &utc);
  char text[64];
  std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u", utc.wYear, utc.wMonth,
                utc.wDay, utc.wHour, utc.wMinute, utc.wSecond, utc.wMilliseconds);
  return text;
}

bool IsWanted(const bench::MessageText& message, unsigned char level) {
  const auto known = bench::ToTraceLevel(message.level);
  return !known || *known <= level;
}

int Show(const bench::RecordedTrace& trace, const bench::TraceFormats& formats,
         const Options& options) {
  std::size_t undecoded = 0;
  for (const bench::TraceRecord& record : trace.records) {
    const bench::MessageText message = bench::DecodeMessage(formats, record);
    if (!message.decoded) ++undecoded;
    if (!IsWanted(message, options.level)) continue;
    const std::uint64_t time = trace.startUtc + static_cast<std::uint64_t>(record.time) * 10'000;
    std::printf("%s %04lx  %s\n", UtcText(time).c_str(), record.thread,
                bench::MessageLine(message).c_str());
  }
  std::fflush(stdout);
  if (undecoded > 0) {
    std::fprintf(stderr, "tracedecode: %zu of %zu messages could not be decoded with %s\n",
                 undecoded, trace.records.size(), options.tmf.c_str());
  }
  if (!trace.damage.empty()) {
    std::fprintf(stderr, "tracedecode: %s: %s\n", options.trace.c_str(), trace.damage.c_str());
  }
  return undecoded > 0 || !trace.damage.empty() ? kDamaged : kWhole;
}

int Complain(const std::string& why) {
  std::fprintf(stderr, "tracedecode: %s\n", why.c_str());
  return kBad;
}

}  // namespace

int main() {
  const auto options = ReadOptions(bench::ProgramArguments());
  if (!options) return Complain(options.error);
  if (options.value->help) {
    std::fputs(kHelp, stdout);
    return kWhole;
  }
  const auto bytes = bench::ReadWholeFile(options.value->trace);
  if (!bytes) return Complain(bytes.error);
  const auto trace = bench::ParseTraceFile(*bytes.value);
  if (!trace) return Complain(options.value->trace + ": " + trace.error);
  const auto formats = bench::TraceFormats::Load(options.value->tmf);
  if (!formats) return Complain(formats.error);
  return Show(*trace.value, *formats.value, *options.value);
}
