#include "workbench/trace/TraceFile.h"

#include <cstring>

namespace bench {

namespace {

constexpr std::string_view kMagic = "STELTRC1";
constexpr std::size_t kLargestArguments = 64 * 1024;  // the platform's largest event

template <class T>
void Append(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// Takes numbers from the front of the bytes.
class Cutter {
 public:
  explicit Cutter(std::string_view bytes) : bytes_(bytes) {}

  template <class T>
  T Take() {
    T value{};
    if (const std::string_view raw = Cut(sizeof value); !short_) {
      std::memcpy(&value, raw.data(), sizeof value);
    }
    return value;
  }

  std::string_view Cut(std::size_t size) {
    short_ = short_ || bytes_.size() < size;
    if (short_) return {};
    const std::string_view piece = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return piece;
  }

  bool IsEmpty() const { return bytes_.empty(); }
  bool WasShort() const { return short_; }

 private:
  std::string_view bytes_;
  bool short_ = false;
};

TraceRecord TakeHeader(Cutter& bytes) {
  TraceRecord record;
  record.time = bytes.Take<std::int64_t>();
  record.thread = bytes.Take<DWORD>();
  record.flags = bytes.Take<ULONG>();
  record.number = bytes.Take<USHORT>();
  record.message = bytes.Take<GUID>();
  return record;
}

}  // namespace

std::string TraceFileHead(std::uint64_t startUtc) {
  std::string bytes(kMagic);
  Append(bytes, startUtc);
  return bytes;
}

std::string TraceFileRecord(const TraceRecord& record) {
  std::string bytes;
  Append(bytes, std::int64_t{record.time});
  Append(bytes, record.thread);
  Append(bytes, record.flags);
  Append(bytes, record.number);
  Append(bytes, record.message);
  Append(bytes, static_cast<std::uint32_t>(record.arguments.size()));
  bytes.append(record.arguments.begin(), record.arguments.end());
  return bytes;
}

Outcome<RecordedTrace> ParseTraceFile(std::string_view bytes) {
  Cutter cutter(bytes);
  if (cutter.Cut(kMagic.size()) != kMagic) {
    return NoValue<RecordedTrace>("not a trace that the workbench recorded");
  }
  RecordedTrace trace;
  trace.startUtc = cutter.Take<std::uint64_t>();
  if (cutter.WasShort()) return NoValue<RecordedTrace>("the trace ends within its head");
  while (!cutter.IsEmpty()) {
    TraceRecord record = TakeHeader(cutter);
    const auto size = cutter.Take<std::uint32_t>();
    const std::string place = "message " + std::to_string(trace.records.size() + 1);
    if (!cutter.WasShort() && size > kLargestArguments) {
      trace.damage = place + " is " + std::to_string(size) + " bytes long, which no message is";
      break;
    }
    const std::string_view arguments = cutter.Cut(size);
    if (cutter.WasShort()) {
      trace.damage = "the trace ends within " + place;
      break;
    }
    record.arguments.assign(arguments.begin(), arguments.end());
    trace.records.push_back(std::move(record));
  }
  return {.value = std::move(trace), .error = {}};
}

}  // namespace bench
