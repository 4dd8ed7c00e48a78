#include "driver/Trace.h"

#include <atomic>

namespace stelvane::trace {
namespace {

constexpr GUID kControlGuid = {
    0xf4acaab5, 0xc82f, 0x4f79, {0xbf, 0x37, 0xc0, 0x4f, 0x93, 0xc0, 0x13, 0x89}};

/// What the system told us about the listener. Written by the control callback on a system thread
/// while any thread traces: a site that reads half of a change traces one message too few, or
/// hands one to a session that is gone, which the system refuses.
struct ControlBlock {
  std::atomic<TRACEHANDLE> registration{0};
  std::atomic<TRACEHANDLE> logger{0};
  std::atomic<UCHAR> level{0};
  std::atomic<ULONG> flags{0};

  void Set(TRACEHANDLE newLogger, UCHAR newLevel, ULONG newFlags) noexcept {
    logger.store(newLogger, std::memory_order_relaxed);
    level.store(newLevel, std::memory_order_relaxed);
    flags.store(newFlags, std::memory_order_relaxed);
  }
};

constinit ControlBlock control;

ULONG WINAPI OnControl(WMIDPREQUESTCODE request, void* /*context*/, ULONG* /*size*/,
                       void* buffer) noexcept {
  switch (request) {
    case WMI_ENABLE_EVENTS: {
      const TRACEHANDLE logger = GetTraceLoggerHandle(buffer);
      control.Set(logger, GetTraceEnableLevel(logger), GetTraceEnableFlags(logger));
      return ERROR_SUCCESS;
    }
    case WMI_DISABLE_EVENTS:
      control.Set(0, 0, 0);
      return ERROR_SUCCESS;
    default:
      return ERROR_INVALID_PARAMETER;
  }
}

}  // namespace

void RegisterTracing() noexcept {
  TRACE_GUID_REGISTRATION messages = {&kControlGuid, nullptr};
  TRACEHANDLE registration = 0;
  if (RegisterTraceGuidsW(OnControl, nullptr, &kControlGuid, 1, &messages, nullptr, nullptr,
                          &registration) == ERROR_SUCCESS) {
    control.registration.store(registration, std::memory_order_relaxed);
  }
}

void UnregisterTracing() noexcept {
  const TRACEHANDLE registration = control.registration.exchange(0, std::memory_order_relaxed);
  if (registration != 0) UnregisterTraceGuids(registration);
}

bool IsEnabled(Level level, Flag flag) noexcept {
  return control.registration.load(std::memory_order_relaxed) != 0 &&
         (control.flags.load(std::memory_order_relaxed) & static_cast<ULONG>(flag)) != 0 &&
         control.level.load(std::memory_order_relaxed) >= static_cast<UCHAR>(level);
}

TRACEHANDLE LoggerHandle() noexcept {
  return control.logger.load(std::memory_order_relaxed);
}

}  // namespace stelvane::trace
