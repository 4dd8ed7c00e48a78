// The way into the state machine: events from any thread, taken one at a time by the worker.
#pragma once

#include <cstdint>
#include <deque>

#include "base/Sync.h"

namespace stelvane {

class EventQueue {
 public:
  HRESULT Initialize();

  /// Any thread. Appends the event and wakes the worker. No bound and no deduplication; an event
  /// for which there is no memory is traced and lost.
  void Post(std::uint32_t event) noexcept EXCLUDES(queueLock_);

  /// Worker thread. The next event after collapsing, EV_INVALID when there is none: a fix that has
  /// arrived makes waiting losses stale, and repeated EV_INIT_SUPL become one.
  std::uint32_t Pop() EXCLUDES(queueLock_);

  /// Set on every post; auto-reset.
  HANDLE WakeHandle() const { return queueEvent_.Get(); }

 private:
  bool Waits(std::uint32_t event) const REQUIRES(queueLock_);

  CriticalSection queueLock_;
  std::deque<std::uint32_t> eventQueue_ GUARDED_BY(queueLock_);
  Event queueEvent_;
};

}  // namespace stelvane
