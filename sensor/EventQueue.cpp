#include "sensor/EventQueue.h"

#include <algorithm>
#include <new>

#include "sensor/EventQueue.trace.h"
#include "sensor/Events.h"

namespace stelvane {

HRESULT EventQueue::Initialize() {
  const HRESULT result = queueLock_.Initialize();
  return FAILED(result) ? result : queueEvent_.Create(Event::Reset::kAuto, false);
}

void EventQueue::Post(std::uint32_t event) noexcept {
  TRACE(EventPosted, EventName(event));
  const ScopedLock lock(queueLock_);
  try {
    eventQueue_.push_back(event);
  } catch (const std::bad_alloc&) {
    TRACE(EventLost, EventName(event));
  }
  queueEvent_.Set();
}

std::uint32_t EventQueue::Pop() {
  const ScopedLock lock(queueLock_);
  while (!eventQueue_.empty()) {
    const std::uint32_t event = eventQueue_.front();
    eventQueue_.pop_front();
    if (event == EV_FIX_LOST && Waits(EV_DATA_ARRIVED)) {
      TRACE(StaleLossDropped);
      continue;
    }
    if (event == EV_DATA_ARRIVED) {
      const auto removed = std::erase(eventQueue_, EV_FIX_LOST);
      TRACE(StaleLossesRemoved, static_cast<std::uint32_t>(removed));
    }
    if (event == EV_INIT_SUPL) {
      const auto removed = std::erase(eventQueue_, EV_INIT_SUPL);
      TRACE(SuplRepeatsRemoved, static_cast<std::uint32_t>(removed));
    }
    return event;
  }
  return EV_INVALID;
}

bool EventQueue::Waits(std::uint32_t event) const {
  return std::find(eventQueue_.begin(), eventQueue_.end(), event) != eventQueue_.end();
}

}  // namespace stelvane
