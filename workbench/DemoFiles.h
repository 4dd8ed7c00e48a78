// Everything that the demo reads before it starts.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "workbench/Options.h"
#include "workbench/RunFolder.h"
#include "workbench/modem/TrackSource.h"

namespace bench {

struct DemoFiles {
  ModemOptions modem;
  std::shared_ptr<const TrackSource> track;
  std::string trackText;                  // one line about it
  std::optional<std::string> suplConfig;  // nothing: none is installed
  std::filesystem::path dll;
  FileOwner transcript;                  // null: nobody wants one
  std::optional<RunFolder> runFolder{};  // likewise
  TraceFormats traceFormats{};           // empty unless a trace is recorded
};

/// Fails with one line for a person.
Outcome<DemoFiles> ReadDemoFiles(const DemoOptions& options);

}  // namespace bench
