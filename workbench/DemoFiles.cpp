#include "workbench/DemoFiles.h"

#include <chrono>
#include <utility>

#include "workbench/SuplText.h"
#include "workbench/console/Program.h"
#include "workbench/modem/DriveTrack.h"
#include "workbench/modem/NmeaTrack.h"
#include "workbench/modem/TextFile.h"

namespace bench {

namespace {

constexpr Millis kLogStart = 250;  // from a request to its first fix: a log is all reception

// Each of these returns why it failed, or nothing.
std::string ReadTrack(const DemoOptions& options, DemoFiles& files) {
  if (options.nmea.empty()) {
    files.track = std::make_shared<DriveTrack>();
    files.trackText = "the built-in drive";
    return {};
  }
  auto track = NmeaTrack::Load(options.nmea);
  if (!track) return track.error;
  files.trackText = options.nmea + ": " + (*track)->Describe();
  files.track = std::move(*track);
  files.modem.coldStart = files.modem.hotStart = kLogStart;
  return {};
}

std::string ReadScript(const DemoOptions& options, DemoFiles& files) {
  if (options.script.empty()) return {};
  auto faults = LoadFaults(options.script);
  if (!faults) return faults.error;
  files.modem.faults = std::move(*faults);
  return {};
}

std::string ReadConfig(const DemoOptions& options, DemoFiles& files) {
  if (options.noConfig) return {};
  files.suplConfig = kDemoSuplConfig;
  if (options.config.empty()) return {};
  auto text = ReadWholeFile(options.config);
  if (!text) return text.error;
  files.suplConfig = std::move(*text);
  return {};
}

std::string FindDll(const DemoOptions& options, DemoFiles& files) {
  files.dll = options.dll.empty() ? ProgramFolder() / "Stelvane.dll"
                                  : std::filesystem::absolute(FromUtf8(options.dll));
  std::error_code error;
  if (std::filesystem::is_regular_file(files.dll, error)) return {};
  return files.dll.string() + ": no such driver";
}

std::string OpenTranscript(const DemoOptions& options, DemoFiles& files) {
  if (options.transcript.empty()) return {};
  auto file = OpenToWrite(options.transcript);
  if (file) files.transcript = std::move(*file);
  return file.error;
}

std::string ReadTraceFormats(const DemoOptions& options, DemoFiles& files) {
  if (!options.trace) return {};
  auto formats = TraceFormats::Load(ToUtf8(ProgramFolder() / "tmf"));
  if (formats) files.traceFormats = std::move(*formats);
  return formats.error;
}

// In 100 ns units since 1601, as the platform counts.
std::uint64_t PlatformTime(Utc time) {
  constexpr std::uint64_t kOf1970 = 116'444'736'000'000'000;
  const auto since1970 =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
  return kOf1970 + static_cast<std::uint64_t>(since1970.count()) * 10'000;
}

std::string MakeRunFolder(const DemoOptions& options, DemoFiles& files) {
  if (options.runFolder.empty() && !options.trace) return {};
  const std::string path =
      options.runFolder.empty() ? ToUtf8(ProgramFolder() / "run") : options.runFolder;
  auto folder =
      RunFolder::Make(path, options.trace.has_value(), PlatformTime(files.track->Start()));
  if (folder) files.runFolder = std::move(*folder);
  return folder.error;
}

}  // namespace

Outcome<DemoFiles> ReadDemoFiles(const DemoOptions& options) {
  DemoFiles files;
  files.modem.reportForm = options.form;
  files.modem.reportShape = options.shape;
  if (!options.sim.empty()) files.modem.imsi = options.sim;
  if (options.radioOff) files.modem.engineOn = false;
  for (const auto read : {ReadTrack, ReadScript, ReadConfig, FindDll, OpenTranscript,
                          ReadTraceFormats, MakeRunFolder}) {
    if (std::string why = read(options, files); !why.empty()) {
      return NoValue<DemoFiles>(std::move(why));
    }
  }
  return {.value = std::move(files), .error = {}};
}

}  // namespace bench
