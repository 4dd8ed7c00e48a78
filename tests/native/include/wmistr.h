// Requests that the tracing system makes of a provider.
#pragma once

#include <guiddef.h>
#include <windows.h>

enum WMIDPREQUESTCODE : int { WMI_ENABLE_EVENTS = 4, WMI_DISABLE_EVENTS = 5 };

inline constexpr ULONG WNODE_FLAG_TRACED_GUID = 0x00020000;

struct WNODE_HEADER {
  ULONG BufferSize;
  ULONG ProviderId;
  ULONG64 HistoricalContext;
  LARGE_INTEGER TimeStamp;
  GUID Guid;
  ULONG ClientContext;
  ULONG Flags;
};
static_assert(sizeof(WNODE_HEADER) == 48);
