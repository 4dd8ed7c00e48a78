// The time that the whole workbench lives on: the simulated modem, the framework's reader, the
// clients, and (through the import table) the driver itself.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <thread>

namespace bench {

/// Milliseconds since the start of the run.
using Millis = std::int64_t;
inline constexpr Millis kForever = std::numeric_limits<Millis>::max();

/// Every blocking wait in the workbench goes through `WaitUntil`, so that one implementation can
/// run on the machine's time and another can move time on by itself.
///
/// A *participant* is a thread that the clock must not overtake: while one of them runs, virtual
/// time stands still. Threads started with `bench::Thread` are participants from their creation;
/// the thread that makes the clock is one too. Any other thread may wait, without being counted.
class Clock {
 public:
  virtual ~Clock() = default;

  virtual Millis Now() const = 0;

  /// Blocks until `ready()` gives true or the clock reaches `deadline`; returns whether `ready()`
  /// gave true. `ready` runs under the clock's lock, on any thread, and is not called again once it
  /// gave true: it must be short, may have a side effect (take an item, reset an event), and must
  /// neither block nor call the clock.
  virtual bool WaitUntil(Millis deadline, const std::function<bool()>& ready) = 0;

  /// To be called after changing anything that a `ready` looks at, with no lock held that a `ready`
  /// takes.
  virtual void Notify() = 0;

  /// A new participant is about to start running (called by its creator, before it runs).
  virtual void AddParticipant() = 0;
  /// The calling thread is the participant announced by AddParticipant.
  virtual void EnterParticipant() = 0;
  /// The calling thread is a participant no longer.
  virtual void LeaveParticipant() = 0;

  void SleepUntil(Millis deadline) {
    WaitUntil(deadline, [] { return false; });
  }
  void SleepFor(Millis duration) { SleepUntil(Now() + duration); }
};

/// A thread of the workbench that takes part in the clock. Joined by the destructor; while the
/// joining thread waits it does not hold time up.
class Thread {
 public:
  Thread() = default;
  Thread(Clock& clock, std::function<void()> body);
  Thread(Thread&&) = default;
  Thread& operator=(Thread&& other) noexcept;
  ~Thread();

  /// Waits for the body to end.
  void Join();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace bench
