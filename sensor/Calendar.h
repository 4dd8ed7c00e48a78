// Ages between two points of calendar time, in whole seconds.
#pragma once

#include <windows.h>

#include <cstdint>

namespace stelvane {

/// Seconds since 1970 of a date and time, the way mktime counts them: months run over into years,
/// milliseconds and the day of the week are ignored, and a date before 1970 or after 3000 gives -1.
/// No time zone enters: only differences are used.
std::int64_t CalendarSeconds(const SYSTEMTIME& time);

/// The whole seconds from `from` to `to`, as a 32-bit number: a step back in time is a very large
/// age, so that it never holds a report up.
std::uint32_t AgeInSeconds(const SYSTEMTIME& from, const SYSTEMTIME& to);

}  // namespace stelvane
