// The system's side of event tracing: one provider, one listener.
#include <windows.h>

#include <evntrace.h>

#include <atomic>
#include <cstdarg>
#include <cstddef>

#include "tests/native/Native.h"

namespace {

constexpr TRACEHANDLE kRegistration = 0x7001;
constexpr TRACEHANDLE kLogger = 0x7002;

std::atomic<WMIDPREQUEST> provider{nullptr};
std::atomic<UCHAR> enabledLevel{0};
std::atomic<ULONG> enabledFlags{0};
std::atomic<std::size_t> messages{0};
// The sum of all bytes traced: reading them is what lets a sanitizer check each argument.
std::atomic<unsigned> checksum{0};

bool Request(WMIDPREQUESTCODE code) {
  const WMIDPREQUEST callback = provider;
  if (callback == nullptr) return false;
  ULONG size = 0;
  return callback(code, nullptr, &size, &size) == ERROR_SUCCESS;
}

}  // namespace

bool native::EnableTracing(UCHAR level, ULONG flags) {
  enabledLevel = level;
  enabledFlags = flags;
  return Request(WMI_ENABLE_EVENTS);
}

void native::DisableTracing() {
  Request(WMI_DISABLE_EVENTS);
}

std::size_t native::TracedMessages() {
  return messages;
}

ULONG RegisterTraceGuidsW(WMIDPREQUEST callback, void* /*context*/, LPCGUID /*control*/,
                          ULONG /*count*/, PTRACE_GUID_REGISTRATION /*guids*/,
                          LPCWSTR /*imagePath*/, LPCWSTR /*resourceName*/,
                          TRACEHANDLE* registration) {
  provider = callback;
  *registration = kRegistration;
  return ERROR_SUCCESS;
}

ULONG UnregisterTraceGuids(TRACEHANDLE /*registration*/) {
  provider = nullptr;
  return ERROR_SUCCESS;
}

TRACEHANDLE GetTraceLoggerHandle(void* /*buffer*/) {
  return kLogger;
}
UCHAR GetTraceEnableLevel(TRACEHANDLE /*logger*/) {
  return enabledLevel;
}
ULONG GetTraceEnableFlags(TRACEHANDLE /*logger*/) {
  return enabledFlags;
}

ULONG TraceMessage(TRACEHANDLE /*logger*/, ULONG /*flags*/, LPCGUID guid, UINT number, ...) {
  unsigned sum = guid->Data1 + number;
  va_list arguments;
  va_start(arguments, number);
  while (const auto* bytes = va_arg(arguments, const UCHAR*)) {
    const SIZE_T size = va_arg(arguments, SIZE_T);
    for (SIZE_T i = 0; i < size; ++i) sum += bytes[i];
  }
  va_end(arguments);
  checksum += sum;
  ++messages;
  return ERROR_SUCCESS;
}
