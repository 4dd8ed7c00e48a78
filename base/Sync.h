// Owners of the kernel objects that threads meet at: critical sections, static locks, events.
#pragma once

#include <windows.h>

#include "base/Result.h"
#include "base/ThreadSafety.h"

namespace stelvane {

/// A critical section with spin count 0. Must be initialised before use; a failed initialisation
/// fails the creation of the object that holds it.
class CAPABILITY("mutex") CriticalSection {
 public:
  CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;
  ~CriticalSection() {
    if (initialized_) DeleteCriticalSection(&section_);
  }

  HRESULT Initialize() {
    if (!InitializeCriticalSectionAndSpinCount(&section_, 0)) return LastErrorResult();
    initialized_ = true;
    return S_OK;
  }
  void Enter() ACQUIRE() { EnterCriticalSection(&section_); }
  void Leave() RELEASE() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_ = {};
  bool initialized_ = false;
};

/// A lock that needs no initialisation and cannot fail: for static state, and for handing out
/// counted pointers. Not recursive.
class CAPABILITY("mutex") SlimLock {
 public:
  constexpr SlimLock() = default;
  SlimLock(const SlimLock&) = delete;
  SlimLock& operator=(const SlimLock&) = delete;
  void Enter() ACQUIRE() { AcquireSRWLockExclusive(&lock_); }
  void Leave() RELEASE() { ReleaseSRWLockExclusive(&lock_); }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};

/// Holds a lock to the end of the scope.
template <class Lock>
class SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(Lock& lock) ACQUIRE(lock) : lock_(lock) { lock_.Enter(); }
  ~ScopedLock() RELEASE() { lock_.Leave(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  Lock& lock_;
};

/// A kernel handle, closed at the end of its owner's life.
class Handle {
 public:
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Reset(nullptr); }

  HANDLE Get() const { return handle_; }
  /// Closes the handle held and takes the new one (null: none).
  void Reset(HANDLE handle) {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = handle;
  }

 private:
  HANDLE handle_ = nullptr;
};

/// A Win32 event. Any thread may set, reset and test it once it is created.
class Event {
 public:
  enum class Reset { kManual, kAuto };

  HRESULT Create(Reset reset, bool initiallySet) {
    handle_.Reset(CreateEventW(nullptr, reset == Reset::kManual, initiallySet, nullptr));
    return handle_.Get() != nullptr ? S_OK : LastErrorResult();
  }
  void Set() { SetEvent(handle_.Get()); }
  void Clear() { ResetEvent(handle_.Get()); }
  /// Tests with a zero wait.
  bool IsSet() const { return Wait(0); }
  /// Waits at most `milliseconds`; true when the event was set.
  bool Wait(DWORD milliseconds) const {
    return WaitForSingleObject(handle_.Get(), milliseconds) == WAIT_OBJECT_0;
  }
  HANDLE Get() const { return handle_.Get(); }

 private:
  Handle handle_;
};

}  // namespace stelvane
