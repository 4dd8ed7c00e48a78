// The few messages that are kept as texts in the driver.
#pragma once

#include <windows.h>

namespace stelvane {

/// Traces `message` together with the system's text for `result`, or with its number when the
/// system has none. Nothing is shown to anybody else. Any thread.
void ReportError(const char* message, HRESULT result) noexcept;

}  // namespace stelvane
