#pragma once

#include <cstdint>
#include <string_view>

#include "at/FixRecord.h"

namespace stelvane {

// Results of ParseLocationReport; the numbers appear in the trace.
inline constexpr std::uint8_t kReportParsed = 0;
inline constexpr std::uint8_t kReportWithoutBlank = 1;
inline constexpr std::uint8_t kReportTruncated = 2;
inline constexpr std::uint8_t kReportOfUnknownForm = 4;

/// Turns a whole "+XLCSLSR: " line into `fix`, which must be fresh: an empty field of the report
/// leaves the record's value as it was. After any result but kReportParsed the record may be
/// partly filled and must not be used. Throws std::bad_array_new_length when the satellite count
/// is negative or too large for 32-bit byte sizes, and std::bad_alloc when memory is short.
std::uint8_t ParseLocationReport(std::string_view line, FixRecord& fix);

/// Converts a coordinate such as "12.5 S" to signed degrees, south and west negative. Returns
/// whether a hemisphere letter was recognised; without one the number keeps its own sign.
bool ParseCoordinate(std::string_view text, double& value);

}  // namespace stelvane
