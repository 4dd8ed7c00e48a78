// The fixes that the modem reported, and when the host had each of them whole.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "workbench/modem/ModemObserver.h"
#include "workbench/record/AtTranscript.h"

namespace bench {

struct FixOnItsWay {
  SentFix sent;
  std::optional<Millis> arrived;  // nothing: its report line never left the modem whole
};

/// All methods from any thread.
class SentFixes final : public ModemObserver {
 public:
  void OnFixSent(const SentFix& sent) override;
  /// To be told of every line of the modem's, in order.
  void OnLine(const AtLine& line);

  std::size_t Count() const;
  std::vector<FixOnItsWay> All() const;

 private:
  mutable std::mutex mutex_;
  std::vector<FixOnItsWay> fixes_;
  std::size_t arrived_ = 0;
};

}  // namespace bench
