// A thread that does one thing after the other, on the simulation's clock.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "workbench/clock/Clock.h"

namespace soak {

/// `Do` and `Idle` from any thread.
class Errands {
 public:
  explicit Errands(bench::Clock& clock) : clock_(clock), thread_(clock, [this] { Run(); }) {}
  /// Waits for what was begun; what was not is dropped.
  ~Errands() {
    {
      const std::lock_guard lock(mutex_);
      ending_ = true;
    }
    clock_.Notify();
    thread_.Join();
  }
  Errands(const Errands&) = delete;
  Errands& operator=(const Errands&) = delete;

  void Do(std::function<void()> errand) {
    {
      const std::lock_guard lock(mutex_);
      errands_.push_back(std::move(errand));
    }
    clock_.Notify();
  }

  /// Nothing is left to do. May run in a clock's `ready`.
  bool Idle() const {
    const std::lock_guard lock(mutex_);
    return errands_.empty() && !busy_;
  }

 private:
  void Run() {
    for (;;) {
      clock_.WaitUntil(bench::kForever, [this] {
        const std::lock_guard lock(mutex_);
        return ending_ || !errands_.empty();
      });
      std::function<void()> errand;
      {
        const std::lock_guard lock(mutex_);
        if (ending_) return;
        errand = std::move(errands_.front());
        errands_.pop_front();
        busy_ = true;
      }
      errand();
      {
        const std::lock_guard lock(mutex_);
        busy_ = false;
      }
      clock_.Notify();
    }
  }

  bench::Clock& clock_;
  mutable std::mutex mutex_;
  std::deque<std::function<void()>> errands_;
  bool busy_ = false;
  bool ending_ = false;
  bench::Thread thread_;
};

}  // namespace soak
