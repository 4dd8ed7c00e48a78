// The driver's procedures that have no caller outside of it, as its trace tells of them.
#pragma once

#include <string_view>

#include "workbench/framework/CallRecord.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

/// Takes messages for the beginning and the end of "SendCommand <line>", "SendDataReport" and
/// "InitializeEngine": these become entries of the record as callbacks are, with their results. To
/// be called on the thread that traces.
void NoteProcedure(CallRecord& calls, const TraceRecord& message);

/// Whether a listener leaves the function's calls as they are: tracing itself calls some.
bool IsUntouchedByTracing(std::string_view import);

}  // namespace bench
