// The system's side of event tracing: the program's own imports are redirected here.
#pragma once

#include <windows.h>

#include <wmistr.h>

#include <evntrace.h>

#include <cstdint>
#include <vector>

/// One call of TraceMessage; the argument bytes stand one after another, as in the event.
struct TracedMessage {
  TRACEHANDLE logger = 0;
  ULONG flags = 0;
  GUID guid = {};
  USHORT number = 0;
  std::vector<std::uint8_t> bytes;
};

/// What the tests tell the system to answer, and what it was asked. One test thread.
struct FakeTracing {
  ULONG registrationStatus = ERROR_SUCCESS;
  bool enableDuringRegistration = false;
  TRACEHANDLE logger = 0x1122334455667788;
  UCHAR level = 0;
  ULONG enableFlags = 0;

  WMIDPREQUEST control = nullptr;
  GUID controlGuid = {};
  ULONG guidCount = 0;
  bool gaveMofNames = false;
  int registrations = 0;
  std::vector<TRACEHANDLE> unregistered;
  std::vector<TracedMessage> messages;

  /// The handle that a successful registration gives.
  static constexpr TRACEHANDLE kRegistration = 0x8000000000000042;

  /// Calls the control callback as a listener with this level and these flags would.
  ULONG Enable(UCHAR newLevel, ULONG newFlags);
  ULONG Request(int code);
  std::vector<USHORT> Numbers() const;
};

/// The one that the redirected imports use; the first call redirects them.
FakeTracing& Tracing();
