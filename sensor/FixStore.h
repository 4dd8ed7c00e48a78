// The last fix, the published fix, and whether a location request waits for one.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "at/FixRecord.h"
#include "base/Sync.h"

namespace stelvane {

/// A Fix record and the core's own mark beside it.
struct StoredFix {
  FixRecord record;
  bool valid = false;  // set when the fix was published, cleared when it no longer counts
};

/// Written on the read-completion thread and the worker, read by clients: both records are read and
/// written whole, under one lock.
class FixStore {
 public:
  HRESULT Initialize() { return lock_.Initialize(); }

  /// A parsed report becomes the last fix; its sentences may still follow.
  void StoreReport(FixRecord record) EXCLUDES(lock_);
  /// The last fix gets its sentences and is published. May throw std::bad_alloc, then nothing has
  /// changed but the sentences of the last fix.
  void Publish(std::string sentences) EXCLUDES(lock_);
  /// Both records stop counting as fixes.
  void Invalidate() EXCLUDES(lock_);

  /// Copies; may throw std::bad_alloc.
  StoredFix LastFix() EXCLUDES(lock_);
  StoredFix PublishedFix() EXCLUDES(lock_);

  // A location request is outstanding: set before it is written, cleared when it was refused or
  // stopped and when a fix is published. A periodic request sets it again with each report.
  void RequestStarts() { sessionActive_ = true; }
  void RequestAccepted(bool periodic) {
    if (periodic) periodicRuns_ = true;
  }
  void RequestRefused() { sessionActive_ = false; }
  void RequestStopped() {
    periodicRuns_ = false;
    sessionActive_ = false;
  }
  bool IsRequestOutstanding() const { return sessionActive_; }

 private:
  CriticalSection lock_;
  StoredFix lastFix_ GUARDED_BY(lock_);
  StoredFix publishedFix_ GUARDED_BY(lock_);
  std::uint64_t lastFixTicks_ GUARDED_BY(lock_) = 0;  // GetTickCount64; 0: no fix yet
  std::atomic<bool> sessionActive_{false};
  std::atomic<bool> periodicRuns_{false};
};

}  // namespace stelvane
