// Which command the modem spoils next, and how.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "workbench/modem/ModemFaults.h"

namespace bench {

/// Used under the modem's lock.
class CommandFaults {
 public:
  void Add(std::vector<CommandFault> reactions);
  void Clear() { reactions_.clear(); }

  /// The reaction to this command, which uses up one of its count.
  std::optional<CommandFault> Take(std::string_view line);

 private:
  std::vector<CommandFault> reactions_;
};

}  // namespace bench
