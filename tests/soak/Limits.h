// How long an answer may take, in simulated milliseconds.
#pragma once

#include "workbench/clock/Clock.h"

namespace soak::limit {

/// Nothing to wait for, except that the queue may stand still for a power-down.
inline constexpr bench::Millis kQuick = 2500;
/// A read waits 1800 ms for a fix.
inline constexpr bench::Millis kRead = 1800 + kQuick;
/// Behind the start of a location request, which may send five commands of seven seconds each, and
/// wait for the radio's commands in between.
inline constexpr bench::Millis kBehindAStart = 120'000;
/// A switch of the radio may wait for the whole bring-up, for other switches, and for one command
/// after the other of the worker's while the modem is silent.
inline constexpr bench::Millis kRadioSwitch = 900'000;
/// The end of the device: the attempt under way, and the requests inside.
inline constexpr bench::Millis kEnd = kRadioSwitch;

}  // namespace soak::limit
