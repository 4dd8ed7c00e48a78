#include <atomic>
#include <utility>

#include "workbench/clock/Clock.h"

namespace bench {

struct Thread::State {
  explicit State(Clock& owner) : clock(owner) {}
  Clock& clock;
  std::atomic<bool> done{false};
  std::thread thread;
};

Thread::Thread(Clock& clock, std::function<void()> body) : state_(std::make_shared<State>(clock)) {
  clock.AddParticipant();
  state_->thread = std::thread([state = state_, run = std::move(body)] {
    state->clock.EnterParticipant();
    run();
    state->done = true;
    state->clock.Notify();
    state->clock.LeaveParticipant();
  });
}

Thread& Thread::operator=(Thread&& other) noexcept {
  Join();
  state_ = std::move(other.state_);
  return *this;
}

Thread::~Thread() {
  Join();
}

void Thread::Join() {
  if (!state_ || !state_->thread.joinable()) return;
  state_->clock.WaitUntil(kForever, [state = state_.get()] { return state->done.load(); });
  state_->thread.join();
}

}  // namespace bench
