// Critical sections and slim locks.
#include <windows.h>

#include <atomic>
#include <mutex>

#include "tests/native/Clocks.h"

/// On the machine's time a plain recursive mutex, which the sanitizers know. On a clock that moves
/// by itself, a thread that finds the section taken waits on the clock, so that it does not hold
/// time up: the owner may be waiting for that time.
struct Section {
  std::recursive_mutex mutex;
  int depth = 0;  // the owner's
  std::atomic<bool> taken{false};
  std::atomic<int> contenders{0};
};

BOOL InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section, DWORD /*spinCount*/) {
  section->section = new Section;
  return TRUE;
}

void DeleteCriticalSection(CRITICAL_SECTION* section) {
  delete section->section;
  section->section = nullptr;
}

void EnterCriticalSection(CRITICAL_SECTION* section) {
  Section& it = *section->section;
  if (native::OnMachineTime()) {
    it.mutex.lock();
  } else if (!it.mutex.try_lock()) {
    ++it.contenders;
    do {
      native::ActiveClock().WaitUntil(bench::kForever, [&it] { return !it.taken; });
    } while (!it.mutex.try_lock());
    --it.contenders;
  }
  if (it.depth++ == 0) it.taken = true;
}

BOOL TryEnterCriticalSection(CRITICAL_SECTION* section) {
  Section& it = *section->section;
  if (!it.mutex.try_lock()) return FALSE;
  if (it.depth++ == 0) it.taken = true;
  return TRUE;
}

void LeaveCriticalSection(CRITICAL_SECTION* section) {
  Section& it = *section->section;
  const bool last = --it.depth == 0;
  if (last) it.taken = false;
  // Read first: once the section is free, another thread may delete it.
  const bool contended = last && it.contenders > 0;
  it.mutex.unlock();
  if (contended) native::ActiveClock().Notify();
}

void AcquireSRWLockExclusive(SRWLOCK* lock) {
  pthread_rwlock_wrlock(&lock->lock);
}
void ReleaseSRWLockExclusive(SRWLOCK* lock) {
  pthread_rwlock_unlock(&lock->lock);
}
void AcquireSRWLockShared(SRWLOCK* lock) {
  pthread_rwlock_rdlock(&lock->lock);
}
void ReleaseSRWLockShared(SRWLOCK* lock) {
  pthread_rwlock_unlock(&lock->lock);
}
