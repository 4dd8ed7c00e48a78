#include "workbench/DemoFiles.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "workbench/SuplText.h"
#include "workbench/modem/DriveTrack.h"
#include "workbench/modem/NmeaTrack.h"
#include "workbench/modem/TextFile.h"
#include "workbench/rig/Rig.h"

namespace bench {

namespace {

constexpr Millis kLogStart = 250;  // from a request to its first fix: a log is all reception

std::filesystem::path Path(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

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
  files.suplConfig = kDemoSuplConfig;
  if (options.config.empty()) return {};
  auto text = ReadWholeFile(options.config);
  if (!text) return text.error;
  files.suplConfig = std::move(*text);
  return {};
}

std::string FindDll(const DemoOptions& options, DemoFiles& files) {
  files.dll = options.dll.empty() ? ProgramFolder() / "Stelvane.dll"
                                  : std::filesystem::absolute(Path(options.dll));
  std::error_code error;
  if (std::filesystem::is_regular_file(files.dll, error)) return {};
  return files.dll.string() + ": no such driver";
}

std::string OpenTranscript(const DemoOptions& options, DemoFiles& files) {
  if (options.transcript.empty()) return {};
  files.transcript.reset(_wfopen(Path(options.transcript).c_str(), L"wb"));
  if (files.transcript) return {};
  return options.transcript + ": cannot be written: " + std::strerror(errno);
}

}  // namespace

Outcome<DemoFiles> ReadDemoFiles(const DemoOptions& options) {
  DemoFiles files;
  files.modem.reportForm = options.form;
  files.modem.reportShape = options.shape;
  if (!options.sim.empty()) files.modem.imsi = options.sim;
  if (options.radioOff) files.modem.engineOn = false;
  for (const auto read : {ReadTrack, ReadScript, ReadConfig, FindDll, OpenTranscript}) {
    if (std::string why = read(options, files); !why.empty()) {
      return NoValue<DemoFiles>(std::move(why));
    }
  }
  return {.value = std::move(files), .error = {}};
}

}  // namespace bench
