// Who wants to know what goes over the modem's port.
#pragma once

#include <cstdint>
#include <string_view>

#include "workbench/clock/Clock.h"
#include "workbench/modem/GnssFix.h"

namespace bench {

/// A fix that the modem reported.
struct SentFix {
  Millis at = 0;                // when its report was written
  std::uint32_t requestId = 0;  // the location request that it answers
  bool single = false;          // of a single-fix request
  bool straggler = false;       // sent although the request had been stopped
  GnssFix fix;                  // as reported: rounded, and without what the form does not carry
};

/// Called on the modem's own thread with no lock held; times are of the modem's clock.
class ModemObserver {
 public:
  virtual ~ModemObserver() = default;

  /// A whole command line arrived; `line` has no line end.
  virtual void OnCommand(Millis at, std::string_view line) {}
  /// The modem is about to hand `bytes` to the port: one call per chunk.
  virtual void OnAnswer(Millis at, std::string_view bytes) {}
  /// A report is about to be handed to the port, before its bytes.
  virtual void OnFixSent(const SentFix& sent) {}
};

}  // namespace bench
