// A listener for the driver DLL's event tracing.
#pragma once

#include <windows.h>

#include <wmistr.h>

#include <evntrace.h>

#include <atomic>
#include <cstdarg>
#include <functional>
#include <mutex>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

/// The one trace session of the workbench, and the providers that the DLL has registered with it.
/// Any thread may call it.
class TraceSession {
 public:
  using Listener = std::function<void(const TraceRecord&)>;

  explicit TraceSession(Clock& clock) : clock_(clock) {}

  /// Starts listening: calls the control callback of every provider, on this thread; a provider
  /// that registers later is called from within its registration. Returns the result of the last
  /// callback, or 0.
  ULONG Enable(UCHAR level, ULONG flags);
  /// Stops listening, likewise.
  ULONG Disable();
  /// Calls the control callbacks with any request code, changing nothing here.
  ULONG Control(ULONG request);

  /// Hands each message to `listener` (on the emitting thread, one at a time) instead of keeping
  /// it.
  void SetListener(Listener listener);
  /// The messages kept so far; they are kept no longer.
  std::vector<TraceRecord> TakeMessages();
  /// Control GUIDs of the providers that are registered now.
  std::vector<GUID> Providers() const;

  /// As the trace functions of Windows of the same names.
  ULONG Register(WMIDPREQUEST callback, void* context, const GUID* control, ULONG count,
                 TRACE_GUID_REGISTRATION* guids, TRACEHANDLE* registration);
  ULONG Unregister(TRACEHANDLE registration);
  TRACEHANDLE LoggerHandle(const void* buffer) const;
  UCHAR EnableLevel(TRACEHANDLE logger) const;
  ULONG EnableFlags(TRACEHANDLE logger) const;
  ULONG Message(TRACEHANDLE logger, ULONG flags, const GUID* message, USHORT number,
                va_list arguments);

 private:
  struct Provider {
    TRACEHANDLE handle;
    GUID control;
    WMIDPREQUEST callback;
    void* context;
  };
  ULONG Call(const Provider& provider, ULONG request) const;

  Clock& clock_;
  mutable std::mutex mutex_;
  std::vector<Provider> providers_;
  TRACEHANDLE lastHandle_ = 0;
  std::atomic<bool> enabled_{false};
  std::atomic<UCHAR> level_{0};
  std::atomic<ULONG> flags_{0};
  std::mutex messageMutex_;
  Listener listener_;
  std::vector<TraceRecord> messages_;
};

}  // namespace bench
