// The system's side of event tracing: what the session in use makes of it.
#include <windows.h>

#include <wmistr.h>

#include <evntrace.h>

#include <atomic>
#include <cstdarg>

#include "tests/native/Native.h"
#include "workbench/imports/TraceSession.h"

namespace {

constexpr TRACEHANDLE kUnheard = 1;  // the registration of a provider that no session knows

std::atomic<bench::TraceSession*> session{nullptr};

}  // namespace

void native::UseTraceSession(bench::TraceSession* inUse) {
  session = inUse;
}

ULONG RegisterTraceGuidsW(WMIDPREQUEST callback, void* context, LPCGUID control, ULONG count,
                          PTRACE_GUID_REGISTRATION guids, LPCWSTR /*imagePath*/,
                          LPCWSTR /*resourceName*/, TRACEHANDLE* registration) {
  if (bench::TraceSession* const it = session) {
    return it->Register(callback, context, control, count, guids, registration);
  }
  *registration = kUnheard;
  return ERROR_SUCCESS;
}

ULONG UnregisterTraceGuids(TRACEHANDLE registration) {
  bench::TraceSession* const it = session;
  return it != nullptr && registration != kUnheard ? it->Unregister(registration)
                                                   : ULONG{ERROR_SUCCESS};
}

TRACEHANDLE GetTraceLoggerHandle(void* buffer) {
  const bench::TraceSession* const it = session;
  return it != nullptr ? it->LoggerHandle(buffer) : 0;
}

UCHAR GetTraceEnableLevel(TRACEHANDLE logger) {
  const bench::TraceSession* const it = session;
  return it != nullptr ? it->EnableLevel(logger) : UCHAR{0};
}

ULONG GetTraceEnableFlags(TRACEHANDLE logger) {
  const bench::TraceSession* const it = session;
  return it != nullptr ? it->EnableFlags(logger) : 0;
}

ULONG TraceMessage(TRACEHANDLE logger, ULONG flags, LPCGUID guid, UINT number, ...) {
  bench::TraceSession* const it = session;
  if (it == nullptr) return static_cast<ULONG>(ERROR_INVALID_HANDLE);
  va_list arguments;
  va_start(arguments, number);
  const ULONG result = it->Message(logger, flags, guid, static_cast<USHORT>(number), arguments);
  va_end(arguments);
  return result;
}
