#include "workbench/RunFolder.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>

#include "workbench/modem/TextFile.h"
#include "workbench/trace/TraceFile.h"

namespace bench {

namespace {

void Write(const FileOwner& file, std::string_view bytes) {
  std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::fflush(file.get());
}

}  // namespace

Outcome<FileOwner> OpenToWrite(const std::string& path) {
  FileOwner file(_wfopen(FromUtf8(path).c_str(), L"wb"));
  if (!file) return NoValue<FileOwner>(path + ": cannot be written: " + std::strerror(errno));
  return {.value = std::move(file), .error = {}};
}

Outcome<RunFolder> RunFolder::Make(const std::string& path, bool trace, std::uint64_t startUtc) {
  std::error_code error;
  std::filesystem::create_directories(FromUtf8(path), error);
  if (error) return NoValue<RunFolder>(path + ": cannot be made: " + error.message());
  RunFolder folder;
  folder.path_ = path;
  struct Part {
    const char* name;
    FileOwner RunFolder::*file;
    bool ofTrace;
  };
  static constexpr Part kParts[] = {{"at.txt", &RunFolder::at_, false},
                                    {"trace.bin", &RunFolder::traceBytes_, true},
                                    {"trace.txt", &RunFolder::traceText_, true}};
  for (const auto& [name, file, ofTrace] : kParts) {
    const std::string place = path + "/" + name;
    if (ofTrace && !trace) {
      std::filesystem::remove(FromUtf8(place), error);  // an earlier run's would mislead
      continue;
    }
    auto opened = OpenToWrite(place);
    if (!opened) return NoValue<RunFolder>(std::move(opened.error));
    folder.*file = std::move(*opened);
  }
  if (trace) Write(folder.traceBytes_, TraceFileHead(startUtc));
  return {.value = std::move(folder), .error = {}};
}

void RunFolder::OnLine(const AtLine& line) {
  Write(at_, TranscriptText(line) + "\n");
}

void RunFolder::OnTrace(const TraceRecord& record, const std::string& line) {
  Write(traceBytes_, TraceFileRecord(record));
  Write(traceText_, line + "\n");
}

}  // namespace bench
