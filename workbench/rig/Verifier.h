// The rules that take the framework and the imports together: what a call is made under, and what
// the module leaves behind.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/framework/Ledger.h"
#include "workbench/imports/Redirector.h"

namespace bench {

/// Calls that a driver is meant to make while it holds a lock of its own.
struct PrescribedCall {
  std::string_view call;  // "Interface::Method", or "Interface::" for all of them
  std::string_view reason;
};

/// From now on each call into the framework is looked at: none from DllMain, which is refused, and
/// none under a lock of the module but those prescribed, and in a reader's callback not even those:
/// the lock's other holders may be waiting for what the reader has yet to deliver. Ledger and
/// redirector belong together.
void WatchCalls(Ledger& ledger, Redirector& redirector, std::span<const PrescribedCall> prescribed);

/// Every broken rule as "<rule>: <what happened>", those of the books too; empty when all is well.
/// To be asked when the module is unloaded; `canUnload` is what DllCanUnloadNow answered before.
std::vector<std::string> FindingsOf(const Ledger& ledger, Redirector& redirector,
                                    HRESULT canUnload);

}  // namespace bench
