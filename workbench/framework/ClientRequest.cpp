#include "workbench/framework/ClientRequest.h"

#include <utility>

namespace bench {

void ClientRequest::Outcome::Complete(HRESULT status, std::size_t information, std::string output) {
  const std::lock_guard lock(mutex_);
  status_ = status;
  information_ = information;
  output_ = std::move(output);
  state_ = State::kCompleted;
}

void ClientRequest::Outcome::Abandon() {
  const std::lock_guard lock(mutex_);
  state_ = State::kAbandoned;
}

bool ClientRequest::Wait(Millis timeout) const {
  Clock& clock = outcome_->clock_;
  const Millis deadline = timeout == kForever ? kForever : clock.Now() + timeout;
  clock.WaitUntil(deadline, [this] {
    const std::lock_guard lock(outcome_->mutex_);
    return outcome_->state_ != Outcome::State::kOpen;
  });
  return IsCompleted();
}

bool ClientRequest::IsCompleted() const {
  const std::lock_guard lock(outcome_->mutex_);
  return outcome_->state_ == Outcome::State::kCompleted;
}

bool ClientRequest::IsAbandoned() const {
  const std::lock_guard lock(outcome_->mutex_);
  return outcome_->state_ == Outcome::State::kAbandoned;
}

HRESULT ClientRequest::Status() const {
  const std::lock_guard lock(outcome_->mutex_);
  return outcome_->status_;
}

std::size_t ClientRequest::Information() const {
  const std::lock_guard lock(outcome_->mutex_);
  return outcome_->information_;
}

std::string ClientRequest::Output() const {
  const std::lock_guard lock(outcome_->mutex_);
  return outcome_->output_;
}

}  // namespace bench
