// The GNSS radio as the sensor's properties show it.
#pragma once

#include <windows.h>

#include <atomic>

namespace stelvane {

/// One per modem control object; any thread.
struct RadioState {
  std::atomic<LONG> radioOff{0};             // 1 when the GNSS radio is off
  std::atomic<ULONG> previousRadioState{0};  // as stored by radio management
};

}  // namespace stelvane
