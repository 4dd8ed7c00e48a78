// How a test steers the stand-in for the kernel: its clock, its registry and the rest.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "modem/SuplRecord.h"

namespace bench {
class Clock;
class TraceSession;
}  // namespace bench

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

/// The tick count at which the clock in use shows 0; 0 unless set.
void SetStartTicks(std::uint64_t milliseconds);

/// A REG_DWORD under the key; names are compared exactly.
void SetRegistryDword(LPCWSTR key, LPCWSTR value, DWORD data);
void ClearRegistry();

/// The description of every installed device; null: none has one.
void SetDeviceDescription(LPCWSTR text);

/// The text that the system has for every message id; null, the default, is none.
void SetMessageText(LPCWSTR text);

/// The record that the SUPL configuration file holds, whoever asks; nothing: there is no file.
void SetSuplRecord(std::optional<stelvane::SuplRecord> record);

/// The session that providers register with and trace to; null, the default: nobody listens. To be
/// changed while no provider is registered.
void UseTraceSession(bench::TraceSession* inUse);

/// Handles that are open now; the difference over a test shows a leak.
std::size_t OpenHandles();

}  // namespace native
