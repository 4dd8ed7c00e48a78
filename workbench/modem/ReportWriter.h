// The text of a location report.
#pragma once

#include <string>

#include "workbench/modem/GnssFix.h"

namespace bench {

inline constexpr int kReportForms = 4;

/// `fix` as a report of that form tells it: each number rounded to the decimals that it is written
/// with, the time to the second, and what the form does not carry left out.
GnssFix AsReported(const GnssFix& fix, int form);

/// The line "+XLCSLSR: …" without its line end. Fields that the form has but nobody reads hold
/// plausible text.
std::string WriteReport(const GnssFix& fix, int form, bool blankBeforeHemisphere = true);

}  // namespace bench
