// Which state of the sensor follows which on an event.
#pragma once

#include <cstdint>

namespace stelvane {

/// The state that follows `state` on `event`; the last two matter for engine errors only.
std::uint32_t NextState(std::uint32_t state, std::uint32_t event, bool fixRequestActive,
                        std::uint32_t currentInterval);

/// False for EV_INIT_SUPL too, which is handled all the same.
bool IsExpectedEvent(std::uint32_t event);

}  // namespace stelvane
