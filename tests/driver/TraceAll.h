// Lets the driver trace while it is tested: with STELVANE_TRACE_ALL in the environment, each rig
// that has no listener of its own gets one. Tests of the tracing itself fail then.
#pragma once

#include <cstdlib>

namespace bench {

/// Where a rig cannot listen, nothing changes.
template <class Options>
void TraceIfAsked(Options& options) {
  if constexpr (requires { options.trace->listener; }) {
    if (std::getenv("STELVANE_TRACE_ALL") == nullptr || options.trace) return;
    options.trace.emplace();
    options.trace->listener = [](const auto&) {};
  }
}

}  // namespace bench
