// A recorded trace: trace.bin in a run folder.
//
// All numbers are little endian. The file begins with the eight characters "STELTRC1" and the UTC
// time of the run's start (64 bits, 100 ns units since 1601). Each message follows as: time since
// the start in ms (64 bits), thread (32), message flags (32), message number (16), message GUID (16
// bytes, as Windows lays it out), length of the arguments in bytes (32), the arguments.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/modem/Outcome.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

struct RecordedTrace {
  std::uint64_t startUtc = 0;  // 100 ns units since 1601
  std::vector<TraceRecord> records{};
  std::string damage{};  // why the file's end could not be read; empty when it was read whole
};

std::string TraceFileHead(std::uint64_t startUtc);
std::string TraceFileRecord(const TraceRecord& record);

/// Reads the bytes of a file. What stands before a damaged place is kept; a file that is no
/// recorded trace at all has no value. The error does not name the file.
Outcome<RecordedTrace> ParseTraceFile(std::string_view bytes);

}  // namespace bench
