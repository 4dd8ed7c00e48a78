// What a run leaves behind for reading later.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "workbench/modem/Outcome.h"
#include "workbench/record/AtTranscript.h"
#include "workbench/trace/TraceFormats.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileOwner = std::unique_ptr<std::FILE, CloseFile>;

/// Opens a file to write; `path` is UTF-8. Fails with one line for a person.
Outcome<FileOwner> OpenToWrite(const std::string& path);

/// A folder with at.txt and, when a trace is recorded, trace.bin and trace.txt. Each file has one
/// writer at a time. A line is on the disk as soon as it was written, also if the run never ends.
class RunFolder {
 public:
  /// Makes the folder, if need be, and replaces the three files; `startUtc` in 100 ns units since
  /// 1601. Fails with one line for a person.
  static Outcome<RunFolder> Make(const std::string& path, bool trace, std::uint64_t startUtc);

  /// On the modem's thread.
  void OnLine(const AtLine& line);
  /// On the tracing thread, one message at a time.
  void OnTrace(const TraceRecord& record, const std::string& line);

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
  FileOwner at_;
  FileOwner traceBytes_;  // null, like the next: no trace is recorded
  FileOwner traceText_;
};

}  // namespace bench
