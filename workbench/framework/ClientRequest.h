// A client's view of an I/O-control request that it sent to the device.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "workbench/clock/Clock.h"

namespace bench {

/// A shared handle: copies mean the same request. All methods from any thread.
class ClientRequest {
 public:
  /// Where the framework puts the outcome; the request object and the handles share it.
  class Outcome;

  explicit ClientRequest(std::shared_ptr<Outcome> outcome) : outcome_(std::move(outcome)) {}

  /// Blocks until the request is over or `timeout` milliseconds went by; returns whether it is
  /// completed.
  bool Wait(Millis timeout = kForever) const;
  bool IsCompleted() const;
  /// The device went away while the request was still open.
  bool IsAbandoned() const;

  /// Meaningful once completed.
  HRESULT Status() const;
  std::size_t Information() const;
  /// The output buffer's contents at completion: all of it, whatever the information says.
  std::string Output() const;

 private:
  std::shared_ptr<Outcome> outcome_;
};

class ClientRequest::Outcome {
 public:
  explicit Outcome(Clock& clock) : clock_(clock) {}

  // The caller notifies the clock afterwards.
  void Complete(HRESULT status, std::size_t information, std::string output);
  void Abandon();

 private:
  friend class ClientRequest;
  enum class State { kOpen, kCompleted, kAbandoned };

  Clock& clock_;
  mutable std::mutex mutex_;
  State state_ = State::kOpen;
  HRESULT status_ = E_PENDING;
  std::size_t information_ = 0;
  std::string output_;
};

}  // namespace bench
