#include "workbench/imports/TraceSession.h"

#include <algorithm>
#include <utility>

namespace bench {

namespace {
constexpr TRACEHANDLE kLogger = 0x57e1;  // the session's handle
constexpr TRACEHANDLE kFirstRegistration = 0x7ace0000;
constexpr TRACEHANDLE kNoLogger = static_cast<TRACEHANDLE>(-1);
constexpr std::size_t kLargestEvent = 64 * 1024;
}  // namespace

ULONG TraceSession::Enable(UCHAR level, ULONG flags) {
  level_ = level;
  flags_ = flags;
  enabled_ = true;
  return Control(WMI_ENABLE_EVENTS);
}

ULONG TraceSession::Disable() {
  enabled_ = false;
  return Control(WMI_DISABLE_EVENTS);
}

ULONG TraceSession::Control(ULONG request) {
  std::vector<Provider> providers;
  {
    const std::lock_guard lock(mutex_);
    providers = providers_;
  }
  ULONG result = ERROR_SUCCESS;
  for (const Provider& provider : providers) result = Call(provider, request);
  return result;
}

ULONG TraceSession::Call(const Provider& provider, ULONG request) const {
  WNODE_HEADER buffer = {};
  buffer.BufferSize = sizeof buffer;
  buffer.HistoricalContext = kLogger;
  buffer.Guid = provider.control;
  buffer.Flags = WNODE_FLAG_TRACED_GUID;
  ULONG size = sizeof buffer;
  return provider.callback(static_cast<WMIDPREQUESTCODE>(request), provider.context, &size,
                           &buffer);
}

void TraceSession::SetListener(Listener listener) {
  const std::lock_guard lock(messageMutex_);
  listener_ = std::move(listener);
}

std::vector<TraceRecord> TraceSession::TakeMessages() {
  const std::lock_guard lock(messageMutex_);
  return std::exchange(messages_, {});
}

std::vector<GUID> TraceSession::Providers() const {
  const std::lock_guard lock(mutex_);
  std::vector<GUID> controls;
  for (const Provider& provider : providers_) controls.push_back(provider.control);
  return controls;
}

ULONG TraceSession::Register(WMIDPREQUEST callback, void* context, const GUID* control, ULONG count,
                             TRACE_GUID_REGISTRATION* guids, TRACEHANDLE* registration) {
  if (callback == nullptr || control == nullptr || registration == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  Provider provider{0, *control, callback, context};
  {
    const std::lock_guard lock(mutex_);
    provider.handle = kFirstRegistration + ++lastHandle_;
    providers_.push_back(provider);
  }
  if (guids != nullptr) {
    for (ULONG i = 0; i < count; ++i)
      guids[i].RegHandle = reinterpret_cast<HANDLE>(provider.handle);
  }
  *registration = provider.handle;
  if (enabled_) Call(provider, WMI_ENABLE_EVENTS);
  return ERROR_SUCCESS;
}

ULONG TraceSession::Unregister(TRACEHANDLE registration) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(
      providers_, [&](const Provider& provider) { return provider.handle == registration; });
  return removed != 0 ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

TRACEHANDLE TraceSession::LoggerHandle(const void* buffer) const {
  if (buffer == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return kNoLogger;
  }
  return static_cast<const WNODE_HEADER*>(buffer)->HistoricalContext;
}

UCHAR TraceSession::EnableLevel(TRACEHANDLE logger) const {
  return enabled_ && logger == kLogger ? level_.load() : UCHAR{0};
}

ULONG TraceSession::EnableFlags(TRACEHANDLE logger) const {
  return enabled_ && logger == kLogger ? flags_.load() : 0;
}

ULONG TraceSession::Message(TRACEHANDLE logger, ULONG flags, const GUID* message, USHORT number,
                            va_list arguments) {
  if (!enabled_ || logger != kLogger) return ERROR_INVALID_HANDLE;
  TraceRecord record{clock_.Now(), GetCurrentThreadId(), {}, number, flags, {}};
  if ((flags & TRACE_MESSAGE_GUID) != 0) record.message = *message;
  while (const auto* const bytes = va_arg(arguments, const BYTE*)) {
    const SIZE_T size = va_arg(arguments, SIZE_T);
    if (record.arguments.size() + size > kLargestEvent) return ERROR_MORE_DATA;
    record.arguments.insert(record.arguments.end(), bytes, bytes + size);
  }
  const std::lock_guard lock(messageMutex_);
  if (listener_) {
    listener_(record);
  } else {
    messages_.push_back(std::move(record));
  }
  return ERROR_SUCCESS;
}

}  // namespace bench
