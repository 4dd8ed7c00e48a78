// Ends the program when a run does not: a deadlock stops the simulated time.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace soak {

/// Prints the plan of a run that takes longer than five real minutes, and ends with exit code 3.
class Watchdog {
 public:
  explicit Watchdog(std::string plan) : plan_(std::move(plan)), thread_([this] { Watch(); }) {}
  ~Watchdog() {
    {
      const std::lock_guard lock(mutex_);
      over_ = true;
    }
    wake_.notify_one();
    thread_.join();
  }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

 private:
  void Watch() {
    std::unique_lock lock(mutex_);
    if (wake_.wait_for(lock, std::chrono::minutes(5), [this] { return over_; })) return;
    std::printf("the run hangs; replay, for --replay:\n%s", plan_.c_str());
    std::fflush(stdout);
    std::_Exit(3);
  }

  const std::string plan_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool over_ = false;
  std::thread thread_;
};

}  // namespace soak
