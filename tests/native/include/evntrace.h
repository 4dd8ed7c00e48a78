// Event tracing, see native::UseTraceSession.
#pragma once

#include <wmistr.h>

using TRACEHANDLE = ULONG64;
using WMIDPREQUEST = ULONG(WINAPI*)(WMIDPREQUESTCODE request, void* context, ULONG* size,
                                    void* buffer);

struct TRACE_GUID_REGISTRATION {
  LPCGUID Guid;
  HANDLE RegHandle;
};
using PTRACE_GUID_REGISTRATION = TRACE_GUID_REGISTRATION*;

inline constexpr ULONG TRACE_MESSAGE_SEQUENCE = 1;
inline constexpr ULONG TRACE_MESSAGE_GUID = 2;
inline constexpr ULONG TRACE_MESSAGE_TIMESTAMP = 8;
inline constexpr ULONG TRACE_MESSAGE_SYSTEMINFO = 32;
inline constexpr UCHAR TRACE_LEVEL_CRITICAL = 1;
inline constexpr UCHAR TRACE_LEVEL_ERROR = 2;
inline constexpr UCHAR TRACE_LEVEL_WARNING = 3;
inline constexpr UCHAR TRACE_LEVEL_INFORMATION = 4;
inline constexpr UCHAR TRACE_LEVEL_VERBOSE = 5;

ULONG RegisterTraceGuidsW(WMIDPREQUEST callback, void* context, LPCGUID control, ULONG count,
                          PTRACE_GUID_REGISTRATION guids, LPCWSTR imagePath, LPCWSTR resourceName,
                          TRACEHANDLE* registration);
ULONG UnregisterTraceGuids(TRACEHANDLE registration);
TRACEHANDLE GetTraceLoggerHandle(void* buffer);
UCHAR GetTraceEnableLevel(TRACEHANDLE logger);
ULONG GetTraceEnableFlags(TRACEHANDLE logger);
/// The arguments are pairs of address and size up to a null address; all bytes are read.
ULONG TraceMessage(TRACEHANDLE logger, ULONG flags, LPCGUID guid, UINT number, ...);
