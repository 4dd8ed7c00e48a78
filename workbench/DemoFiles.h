// Everything that the demo reads before it starts.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "workbench/Options.h"
#include "workbench/modem/TrackSource.h"

namespace bench {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

struct DemoFiles {
  ModemOptions modem;
  std::shared_ptr<const TrackSource> track;
  std::string trackText;  // one line about it
  std::string suplConfig;
  std::filesystem::path dll;
  std::unique_ptr<std::FILE, CloseFile> transcript;  // null: nobody wants one
};

/// Fails with one line for a person.
Outcome<DemoFiles> ReadDemoFiles(const DemoOptions& options);

}  // namespace bench
