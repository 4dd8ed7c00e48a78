// How a test steers the stand-in for the kernel: its clock, its registry, its texts, its tracing.
#pragma once

#include <windows.h>

#include <cstddef>

namespace bench {
class Clock;
}

namespace native {

/// Makes the machine's time run `scale` times as fast from now on: at 100, a wait of 1000 ms takes
/// 10 ms, and the tick count moves by 1000 meanwhile. To be called while no thread waits.
void SetClockScale(double scale);

/// Puts waits, sleeps, tick count and system time on the clock given; null: on the machine's own,
/// scaled, which is the default. A thread that CreateThread starts is a participant of the clock.
/// To be called while no other thread uses the kernel; the clock must outlive those that do.
void UseClock(bench::Clock* clock);

/// The system time at which the clock in use shows 0.
void SetStartTime(const SYSTEMTIME& start);

/// A REG_DWORD under the key; names are compared exactly.
void SetRegistryDword(LPCWSTR key, LPCWSTR value, DWORD data);
void ClearRegistry();

/// The description of every installed device; null: none has one.
void SetDeviceDescription(LPCWSTR text);

/// The text that the system has for every message id; null, the default, is none.
void SetMessageText(LPCWSTR text);

/// Calls the registered control callback as a listener with this level and these flags would.
/// False when no provider is registered.
bool EnableTracing(UCHAR level, ULONG flags);
void DisableTracing();
/// How many messages TraceMessage was given since the process began.
std::size_t TracedMessages();

/// Handles that are open now; the difference over a test shows a leak.
std::size_t OpenHandles();

}  // namespace native
