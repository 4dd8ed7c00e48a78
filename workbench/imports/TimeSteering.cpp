#include "workbench/imports/TimeSteering.h"

#include <utility>

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

/// What a new thread needs to know.
struct TimeSteering::Start {
  TimeSteering* steering;
  LPTHREAD_START_ROUTINE body;
  void* argument;
  std::shared_ptr<Waitable> self;
  std::function<void(DWORD, bool)> ended;
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

HandleSet TimeSteering::Resolve(DWORD count, const HANDLE* handles, bool all) {
  HandleSet set(handles, count, all);
  if (count > MAXIMUM_WAIT_OBJECTS) return set;
  const std::lock_guard lock(mutex_);
  for (DWORD i = 0; i < count; ++i) {
    const auto known = waitables_.find(handles[i]);
    set.Add(known != waitables_.end() ? known->second : nullptr);
  }
  return set;
}

void TimeSteering::Created(HANDLE event, bool manual, bool set) {
  const KeepLastError keep;
  const auto kind = manual ? Waitable::Kind::kManualEvent : Waitable::Kind::kAutoEvent;
  const std::lock_guard lock(mutex_);
  waitables_[event] = std::make_shared<Waitable>(kind, set);
}

void TimeSteering::Signalled(HANDLE handle) {
  const KeepLastError keep;
  {
    const std::lock_guard lock(mutex_);
    const auto known = waitables_.find(handle);
    if (known != waitables_.end()) {
      known->second->Signal();
    } else {
      SignalAllEvents();  // it may be another handle of any of them
    }
  }
  if (waiting_ != 0) clock_.Notify();
}

void TimeSteering::Signalled() {
  const KeepLastError keep;
  {
    const std::lock_guard lock(mutex_);
    SignalAllEvents();
  }
  clock_.Notify();
}

void TimeSteering::SignalAllEvents() {
  for (const auto& [handle, waitable] : waitables_) {
    if (waitable->GetKind() != Waitable::Kind::kThread) waitable->Signal();
  }
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
                                 std::function<void(DWORD, bool)> ended) {
  const auto self = std::make_shared<Waitable>(Waitable::Kind::kThread, false);
  auto start = std::make_unique<Start>(this, body, argument, self, std::move(ended));
  // Held until the clock knows of it, which cannot be taken back if the creation fails.
  DWORD threadId = 0;
  const HANDLE thread = CreateThread(attributes, stack, &TimeSteering::RunThread, start.get(),
                                     flags | CREATE_SUSPENDED, &threadId);
  if (thread == nullptr) return nullptr;
  start.release();
  clock_.AddParticipant();
  {
    const std::lock_guard lock(mutex_);
    waitables_[thread] = self;
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
  DWORD code = 0;
  bool threw = false;
  try {
    code = start->body(start->argument);
  } catch (...) {
    threw = true;
  }
  start->ended(GetCurrentThreadId(), threw);
  start->self->Signal();
  clock.Notify();
  clock.LeaveParticipant();
  return code;
}

void TimeSteering::Closing(HANDLE handle) {
  const KeepLastError keep;
  const std::lock_guard lock(mutex_);
  waitables_.erase(handle);
}

}  // namespace bench
