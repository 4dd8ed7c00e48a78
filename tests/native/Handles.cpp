// Events, threads, and the waiting for either.
#include <windows.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "tests/native/Clocks.h"
#include "tests/native/Native.h"

namespace {

/// An event, or a thread: that is a manual event which is set when the thread ends.
class Waitable {
 public:
  Waitable(bool manualReset, bool set) : manualReset_(manualReset), set_(set) {}
  Waitable(const Waitable&) = delete;
  Waitable& operator=(const Waitable&) = delete;

  void Set() {
    {
      const std::lock_guard lock(mutex_);
      set_ = true;
    }
    // A waiter counts itself before it looks, so one that missed the change is seen here.
    if (waiters_ > 0) native::ActiveClock().Notify();
  }
  void Reset() {
    const std::lock_guard lock(mutex_);
    set_ = false;
  }
  /// Whether it was set; an automatic event is not afterwards.
  bool Take() {
    const std::lock_guard lock(mutex_);
    const bool was = set_;
    if (!manualReset_) set_ = false;
    return was;
  }
  void BeginWait() { ++waiters_; }
  void EndWait() { --waiters_; }

  std::thread thread;

 private:
  const bool manualReset_;
  std::mutex mutex_;
  bool set_;
  std::atomic<int> waiters_{0};
};

using Waited = std::shared_ptr<Waitable>;

std::atomic<std::size_t> openHandles{0};
std::atomic<DWORD> lastThreadId{0};
thread_local DWORD threadId = 0;
thread_local DWORD lastError = 0;

/// A handle points to a counted pointer of its own; a use after CloseHandle is a use after free.
HANDLE MakeHandle(Waited object) {
  ++openHandles;
  return new Waited(std::move(object));
}

Waited* FromHandle(HANDLE handle) {
  if (handle != nullptr && handle != INVALID_HANDLE_VALUE) return static_cast<Waited*>(handle);
  SetLastError(ERROR_INVALID_HANDLE);
  return nullptr;
}

/// The index of the first that was set, or WAIT_TIMEOUT.
DWORD WaitAny(std::span<const Waited> objects, DWORD milliseconds) {
  DWORD taken = WAIT_TIMEOUT;
  const auto take = [&] {
    for (std::size_t i = 0; i < objects.size(); ++i) {
      if (!objects[i]->Take()) continue;
      taken = static_cast<DWORD>(i);
      return true;
    }
    return false;
  };
  if (take() || milliseconds == 0) return taken;
  const bench::Millis deadline = native::DeadlineAfter(milliseconds);
  for (const Waited& object : objects) object->BeginWait();
  native::ActiveClock().WaitUntil(deadline, take);
  for (const Waited& object : objects) object->EndWait();
  return taken;
}

}  // namespace

std::size_t native::OpenHandles() {
  return openHandles;
}

DWORD GetLastError() {
  return lastError;
}
void SetLastError(DWORD error) {
  lastError = error;
}

HANDLE CreateEventW(SECURITY_ATTRIBUTES* /*security*/, BOOL manualReset, BOOL initiallySet,
                    LPCWSTR /*name*/) {
  return MakeHandle(std::make_shared<Waitable>(manualReset != FALSE, initiallySet != FALSE));
}

BOOL SetEvent(HANDLE event) {
  const Waited* const object = FromHandle(event);
  if (object == nullptr) return FALSE;
  // Kept over the call: another thread may wake up from it and close the handle.
  const Waited kept = *object;
  kept->Set();
  return TRUE;
}

BOOL ResetEvent(HANDLE event) {
  const Waited* const object = FromHandle(event);
  if (object == nullptr) return FALSE;
  (*object)->Reset();
  return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
  Waited* const object = FromHandle(handle);
  if (object == nullptr) return FALSE;
  if (std::thread& thread = (*object)->thread; thread.joinable()) {
    // A thread that has ended is joined, so that nothing of it is left when the handle is gone.
    if ((*object)->Take()) {
      thread.join();
    } else {
      thread.detach();
    }
  }
  delete object;
  --openHandles;
  return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  return WaitForMultipleObjects(1, &handle, FALSE, milliseconds);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds) {
  if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || all) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return WAIT_FAILED;
  }
  std::vector<Waited> objects;
  for (const HANDLE handle : std::span(handles, count)) {
    const Waited* const object = FromHandle(handle);
    if (object == nullptr) return WAIT_FAILED;
    objects.push_back(*object);
  }
  return WaitAny(objects, milliseconds);
}

HANDLE CreateThread(SECURITY_ATTRIBUTES* /*security*/, SIZE_T /*stackSize*/,
                    LPTHREAD_START_ROUTINE start, void* parameter, DWORD /*flags*/, DWORD* id) {
  const auto object = std::make_shared<Waitable>(true, false);
  const DWORD newId = ++lastThreadId;
  if (id != nullptr) *id = newId;
  bench::Clock& clock = native::ActiveClock();
  clock.AddParticipant();
  object->thread = std::thread([=, &clock] {
    threadId = newId;
    clock.EnterParticipant();
    start(parameter);
    object->Set();
    clock.LeaveParticipant();
  });
  return MakeHandle(object);
}

DWORD GetCurrentThreadId() {
  if (threadId == 0) threadId = ++lastThreadId;
  return threadId;
}

void Sleep(DWORD milliseconds) {
  if (milliseconds == 0) {
    std::this_thread::yield();
  } else {
    native::ActiveClock().SleepUntil(native::DeadlineAfter(milliseconds));
  }
}

BOOL SwitchToThread() {
  std::this_thread::yield();
  return TRUE;
}
