// What the modem's thread has to do, and when.
#pragma once

#include <functional>
#include <map>

#include "workbench/clock/Clock.h"

namespace bench {

/// What a job is for, so that all jobs of one kind can be dropped together.
enum class Job { kFault, kCommand, kEngine, kStraggler, kFlush, kBoot };

/// Jobs in the order of their time, and of their arrival where the time is the same. Used under
/// the modem's lock.
class Agenda {
 public:
  /// The job is told the time that it was due at, which it plans on from: lateness does not add up.
  using Action = std::function<void(Millis due)>;

  void Add(Millis due, Job job, Action action);
  void Cancel(Job job);

  /// Runs every job due by `now`, those that the jobs add included.
  void RunUntil(Millis now);

  /// When the next job is due; kForever without one.
  Millis Next() const;

 private:
  struct Entry {
    Job job;
    Action action;
  };
  std::multimap<Millis, Entry> entries_;
};

}  // namespace bench
