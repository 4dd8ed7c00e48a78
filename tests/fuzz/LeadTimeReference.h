// The text of lead times read in the most obvious way.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace reference {

using LeadTimeTable = std::array<std::uint32_t, 6>;  // ms
inline constexpr LeadTimeTable kDefaultLeadTimes = {3000, 6000, 10000, 20000, 40000, 50000};

struct LeadTimeOutcome {
  unsigned refusals;    // how often an error was given, the failed one included
  bool refusalFailed;   // giving an error failed, which ends the call
  LeadTimeTable table;  // what is stored afterwards
};

/// The text is stored over `table`; giving an error succeeds `takenRefusals` times, then fails.
LeadTimeOutcome StoreLeadTimes(std::u16string_view text, unsigned takenRefusals,
                               LeadTimeTable table);
std::string LeadTimeText(const LeadTimeTable& table);

}  // namespace reference
