#include "workbench/imports/TimeSteering.h"

#include <array>
#include <utility>
#include <vector>

#include "workbench/imports/LastError.h"

namespace bench {

namespace {
constexpr SYSTEMTIME kDefaultStart = {.wYear = 2014,
                                      .wMonth = 6,
                                      .wDayOfWeek = 0,
                                      .wDay = 1,
                                      .wHour = 12,
                                      .wMinute = 0,
                                      .wSecond = 0,
                                      .wMilliseconds = 0};
constexpr std::uint64_t kUtcUnitsPerMilli = 10'000;
}  // namespace

/// What one wait looks at: the handles, and which of them are threads of the DLL. Such a thread
/// counts as ended once its procedure has returned, which the clock gets to know of; the handle
/// itself follows a moment later.
class TimeSteering::HandleSet {
 public:
  HandleSet(DWORD count, const HANDLE* handles, bool all)
      : count_(count), handles_(handles), all_(all) {}

  void AddThread(DWORD index, Finished finished) {
    threads_.push_back({index, std::move(finished)});
  }

  /// Tests, and takes what is signalled; WAIT_TIMEOUT if the wait has to go on.
  DWORD Poll() const { return all_ ? PollAll() : PollAny(); }

  /// After a successful Poll: lets the threads that it relied on really end.
  void Settle(DWORD result) const {
    for (const Thread& thread : threads_) {
      if (all_ ? result == WAIT_OBJECT_0 : result == WAIT_OBJECT_0 + thread.index) {
        WaitForSingleObject(handles_[thread.index], INFINITE);
      }
    }
  }

 private:
  struct Thread {
    DWORD index;
    Finished finished;
  };

  DWORD PollAny() const {
    for (const Thread& thread : threads_) {
      if (!*thread.finished) continue;
      // It is signalled, unless something that stands before it is.
      const DWORD before = thread.index == 0 ? WAIT_TIMEOUT : Test(thread.index, handles_, false);
      return before != WAIT_TIMEOUT ? before : WAIT_OBJECT_0 + thread.index;
    }
    return Test(count_, handles_, false);
  }

  DWORD PollAll() const {
    if (threads_.empty()) return Test(count_, handles_, true);
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> open;
    DWORD openCount = 0;
    auto thread = threads_.begin();
    for (DWORD i = 0; i < count_; ++i) {
      const bool isThread = thread != threads_.end() && thread->index == i;
      const bool ended = isThread && *thread->finished;
      if (isThread) ++thread;
      if (!ended) open[openCount++] = handles_[i];
    }
    return openCount == 0 ? WAIT_OBJECT_0 : Test(openCount, open.data(), true);
  }

  static DWORD Test(DWORD count, const HANDLE* handles, bool all) {
    return count == 1 ? WaitForSingleObject(handles[0], 0)
                      : WaitForMultipleObjects(count, handles, all, 0);
  }

  const DWORD count_;
  const HANDLE* const handles_;
  const bool all_;
  std::vector<Thread> threads_;  // in the order of their index
};

/// What a new thread needs to know.
struct TimeSteering::Start {
  TimeSteering* steering;
  LPTHREAD_START_ROUTINE body;
  void* argument;
  Finished finished;
  std::function<void(DWORD)> ended;
};

TimeSteering::TimeSteering(Clock& clock) : clock_(clock) {
  SetStartUtc(kDefaultStart);
}

void TimeSteering::SetStartUtc(const SYSTEMTIME& utc) {
  FILETIME time = {};
  SystemTimeToFileTime(&utc, &time);
  startUtc_ = std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

FILETIME TimeSteering::Utc() const {
  const std::uint64_t now =
      startUtc_ + static_cast<std::uint64_t>(clock_.Now()) * kUtcUnitsPerMilli;
  return {static_cast<DWORD>(now), static_cast<DWORD>(now >> 32)};
}

Millis TimeSteering::Deadline(DWORD milliseconds) const {
  return milliseconds == INFINITE ? kForever : clock_.Now() + milliseconds;
}

void TimeSteering::Sleep(DWORD milliseconds) {
  if (milliseconds == 0) return GiveWay();
  const KeepLastError keep;
  clock_.SleepUntil(Deadline(milliseconds));
}

void TimeSteering::GiveWay() {
  const KeepLastError keep;
  ++waiting_;
  // The clock asks once before the wait and then after every change.
  bool asked = false;
  clock_.WaitUntil(Deadline(1), [&asked] { return std::exchange(asked, true); });
  --waiting_;
}

DWORD TimeSteering::Wait(DWORD count, const HANDLE* handles, bool all, DWORD milliseconds) {
  const HandleSet set = Resolve(count, handles, all);
  DWORD result = WAIT_TIMEOUT;
  DWORD error = GetLastError();
  const auto poll = [&] {
    result = set.Poll();
    if (result == WAIT_FAILED) error = GetLastError();
    return result != WAIT_TIMEOUT;
  };
  if (milliseconds == 0) {
    poll();
  } else {
    ++waiting_;  // before the first test, so that no signal can fall between
    clock_.WaitUntil(Deadline(milliseconds), poll);
    --waiting_;
  }
  set.Settle(result);
  SetLastError(error);
  return result;
}

TimeSteering::HandleSet TimeSteering::Resolve(DWORD count, const HANDLE* handles, bool all) {
  HandleSet set(count, handles, all);
  if (count > MAXIMUM_WAIT_OBJECTS) return set;
  const std::lock_guard lock(mutex_);
  if (threads_.empty()) return set;
  for (DWORD i = 0; i < count; ++i) {
    const auto thread = threads_.find(handles[i]);
    if (thread != threads_.end()) set.AddThread(i, thread->second);
  }
  return set;
}

void TimeSteering::Signalled() {
  if (waiting_ == 0) return;
  const KeepLastError keep;
  clock_.Notify();
}

void TimeSteering::AcquireContended(const void* lock, const std::function<bool()>& take) {
  const KeepLastError keep;
  ++lockWaiters_;  // before `take` fails, so that the owner sees it when it leaves
  std::unique_lock guard(mutex_);
  LockWait& wait = locks_[lock];
  ++wait.waiters;
  for (;;) {
    const std::uint64_t seen = wait.left;
    guard.unlock();
    const bool taken = take();
    if (!taken) {
      clock_.WaitUntil(kForever, [&] {
        const std::lock_guard look(mutex_);
        return wait.left != seen;
      });
    }
    guard.lock();
    if (taken) break;
  }
  if (--wait.waiters == 0) locks_.erase(lock);
  --lockWaiters_;
}

void TimeSteering::WakeLockWaiters(const void* lock) {
  const KeepLastError keep;
  {
    const std::lock_guard guard(mutex_);
    const auto wait = locks_.find(lock);
    if (wait == locks_.end()) return;
    ++wait->second.left;
  }
  clock_.Notify();
}

HANDLE TimeSteering::StartThread(SECURITY_ATTRIBUTES* attributes, SIZE_T stack,
                                 LPTHREAD_START_ROUTINE body, void* argument, DWORD flags,
                                 DWORD* id, const std::function<void(HANDLE, DWORD)>& created,
                                 std::function<void(DWORD)> ended) {
  const auto finished = std::make_shared<std::atomic<bool>>(false);
  auto start = std::make_unique<Start>(this, body, argument, finished, std::move(ended));
  // Held until the clock knows of it, which cannot be taken back if the creation fails.
  DWORD threadId = 0;
  const HANDLE thread = CreateThread(attributes, stack, &TimeSteering::RunThread, start.get(),
                                     flags | CREATE_SUSPENDED, &threadId);
  if (thread == nullptr) return nullptr;
  start.release();
  clock_.AddParticipant();
  {
    const std::lock_guard lock(mutex_);
    threads_[thread] = finished;
  }
  created(thread, threadId);
  if (id != nullptr) *id = threadId;
  if ((flags & CREATE_SUSPENDED) == 0) ResumeThread(thread);
  return thread;
}

DWORD WINAPI TimeSteering::RunThread(void* argument) {
  const std::unique_ptr<Start> start(static_cast<Start*>(argument));
  Clock& clock = start->steering->clock_;
  clock.EnterParticipant();
  const DWORD code = start->body(start->argument);
  start->ended(GetCurrentThreadId());
  *start->finished = true;
  clock.Notify();
  clock.LeaveParticipant();
  return code;
}

void TimeSteering::Closing(HANDLE handle) {
  const KeepLastError keep;
  const std::lock_guard lock(mutex_);
  threads_.erase(handle);
}

}  // namespace bench
