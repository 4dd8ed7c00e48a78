#include "workbench/modem/CommandFaults.h"

#include <algorithm>
#include <iterator>

namespace bench {

void CommandFaults::Add(std::vector<CommandFault> reactions) {
  std::move(reactions.begin(), reactions.end(), std::back_inserter(reactions_));
}

std::optional<CommandFault> CommandFaults::Take(std::string_view line) {
  const auto found =
      std::find_if(reactions_.begin(), reactions_.end(), [line](const CommandFault& fault) {
        return fault.count > 0 && CommandMatches(line, fault.command);
      });
  if (found == reactions_.end()) return std::nullopt;
  if (found->count != kAlways) --found->count;
  return *found;
}

}  // namespace bench
