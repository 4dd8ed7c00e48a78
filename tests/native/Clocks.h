// The clock that all waits of the stand-in go through.
#pragma once

#include "workbench/clock/Clock.h"

namespace native {

bench::Clock& ActiveClock();
/// Whether the clock in use is the machine's, so that a thread may block without telling it.
bool OnMachineTime();
/// When a wait of so many milliseconds ends; INFINITE never does.
bench::Millis DeadlineAfter(unsigned milliseconds);

}  // namespace native
