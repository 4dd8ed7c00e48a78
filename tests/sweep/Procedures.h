// The driver's procedures that have no caller outside of it, as its trace tells of them.
#pragma once

#include <string_view>

#include "workbench/framework/CallRecord.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

/// Takes messages for the beginning and the end of a procedure, such as "InitializeEngine" or
/// "SendCommand AT+CIMI": it becomes an entry of the record as a callback is, with its result. To
/// be called on the thread that traces.
void NoteProcedure(CallRecord& calls, const TraceRecord& message);

/// Whether a listener leaves the function's calls as they are: tracing itself calls some.
bool IsUntouchedByTracing(std::string_view import);

}  // namespace bench
