// What a test steers around a driver that is compiled into it.
#pragma once

#include <cstddef>
#include <string>

#include "tests/native/Native.h"
#include "workbench/imports/FaultPlan.h"
#include "workbench/imports/TraceSession.h"

namespace bench {

/// The handles of a period. What of the heap is left behind, the address sanitizer tells.
class Audit {
 public:
  /// The period begins here.
  void Mark() { before_ = native::OpenHandles(); }
  /// Empty when no more handles are open than at the beginning.
  std::string Report() const {
    const std::size_t open = native::OpenHandles();
    if (open <= before_) return {};
    return "handles open before: " + std::to_string(before_) + ", now: " + std::to_string(open);
  }

 private:
  std::size_t before_ = native::OpenHandles();
};

/// As much of the import redirector's face as needs no import table.
class Redirector {
 public:
  explicit Redirector(Clock& clock) : tracing_(clock) {}

  TraceSession& Tracing() { return tracing_; }
  Audit& Books() { return audit_; }
  // Not defined: a test that makes imports fail does not link here.
  FaultPlan& Faults();

 private:
  TraceSession tracing_;
  Audit audit_;
};

}  // namespace bench
