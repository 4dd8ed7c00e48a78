// Clocks, sleeps, waits and locks.
#include <string>
#include <utility>

#include "workbench/framework/Rules.h"
#include "workbench/imports/Hooks.h"

namespace bench {

namespace {

TimeSteering& Time() {
  return Redirector::Current().Time();
}

ULONGLONG TickCount64() {
  return Time().Ticks();
}
DWORD TickCount() {
  return static_cast<DWORD>(Time().Ticks());
}

void SystemTime(SYSTEMTIME* time) {
  const FILETIME utc = Time().Utc();
  FileTimeToSystemTime(&utc, time);
}

void FileTime(FILETIME* time) {
  *time = Time().Utc();
}

BOOL Counter(LARGE_INTEGER* counter) {
  counter->QuadPart = Time().Counter();
  return TRUE;
}

BOOL CounterFrequency(LARGE_INTEGER* frequency) {
  frequency->QuadPart = TimeSteering::kCounterFrequency;
  return TRUE;
}

void SleepOn(DWORD milliseconds) {
  Time().Sleep(milliseconds);
}

DWORD SleepOnEx(DWORD milliseconds, BOOL alertable) {
  Time().Sleep(milliseconds);
  return 0;
}

BOOL Switch() {
  Time().GiveWay();
  return TRUE;
}

DWORD WaitOne(HANDLE handle, DWORD milliseconds) {
  return Time().Wait(1, &handle, false, milliseconds);
}

DWORD WaitOneEx(HANDLE handle, DWORD milliseconds, BOOL alertable) {
  return Time().Wait(1, &handle, false, milliseconds);
}

DWORD WaitMany(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds) {
  return Time().Wait(count, handles, all != FALSE, milliseconds);
}

DWORD WaitManyEx(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds, BOOL alertable) {
  return Time().Wait(count, handles, all != FALSE, milliseconds);
}

BOOL Set(HANDLE event) {
  const BOOL done = SetEvent(event);
  Time().Signalled(event);
  return done;
}

BOOL Release(HANDLE semaphore, LONG count, LONG* previous) {
  const BOOL done = ReleaseSemaphore(semaphore, count, previous);
  Time().Signalled(semaphore);
  return done;
}

// The order is looked at before the wait, which may be the deadlock that it warns of.
template <typename Lock, typename Take>
void TakeInOrder(Site site, Lock* lock, Take take) {
  LockBook& locks = Redirector::Current().Locks();
  if (std::string breach = locks.Wanted(lock, site.offset); !breach.empty()) {
    Redirector::Current().Broken().Add(rule::kLockOrder, std::move(breach));
  }
  Time().Acquire(lock, take);
  locks.Taken(lock, site.offset);
}

void EnterSection(Site site, CRITICAL_SECTION* section) {
  TakeInOrder(site, section, [section] { return TryEnterCriticalSection(section) != FALSE; });
}

BOOL TryEnterSection(Site site, CRITICAL_SECTION* section) {
  const BOOL taken = TryEnterCriticalSection(section);
  if (taken) Redirector::Current().Locks().Taken(section, site.offset);
  return taken;
}

void LeaveSection(CRITICAL_SECTION* section) {
  Redirector::Current().Locks().Left(section);
  LeaveCriticalSection(section);
  Time().Released(section);
}

void AcquireSlim(Site site, SRWLOCK* lock) {
  TakeInOrder(site, lock, [lock] { return TryAcquireSRWLockExclusive(lock) != FALSE; });
}

BOOLEAN TryAcquireSlim(Site site, SRWLOCK* lock) {
  const BOOLEAN taken = TryAcquireSRWLockExclusive(lock);
  if (taken) Redirector::Current().Locks().Taken(lock, site.offset);
  return taken;
}

void ReleaseSlim(SRWLOCK* lock) {
  Redirector::Current().Locks().Left(lock);
  ReleaseSRWLockExclusive(lock);
  Time().Released(lock);
}

}  // namespace

std::span<const Hook> TimeHooks() {
  static const Hook kHooks[] = {
      Redirect<ImportIndex("GetTickCount64"), &TickCount64>(),
      Redirect<ImportIndex("GetTickCount"), &TickCount>(),
      Redirect<ImportIndex("GetSystemTime"), &SystemTime>(),
      Redirect<ImportIndex("GetSystemTimeAsFileTime"), &FileTime>(),
      Redirect<ImportIndex("GetSystemTimePreciseAsFileTime"), &FileTime>(),
      Redirect<ImportIndex("QueryPerformanceCounter"), &Counter>(),
      Redirect<ImportIndex("QueryPerformanceFrequency"), &CounterFrequency>(),
      Redirect<ImportIndex("Sleep"), &SleepOn>(),
      Redirect<ImportIndex("SleepEx"), &SleepOnEx>(),
      Redirect<ImportIndex("SwitchToThread"), &Switch>(),
      Redirect<ImportIndex("WaitForSingleObject"), &WaitOne>(),
      Redirect<ImportIndex("WaitForSingleObjectEx"), &WaitOneEx>(),
      Redirect<ImportIndex("WaitForMultipleObjects"), &WaitMany>(),
      Redirect<ImportIndex("WaitForMultipleObjectsEx"), &WaitManyEx>(),
      Redirect<ImportIndex("SetEvent"), &Set>(),
      Redirect<ImportIndex("ReleaseSemaphore"), &Release>(),
      Redirect<ImportIndex("EnterCriticalSection"), &EnterSection>(),
      Redirect<ImportIndex("TryEnterCriticalSection"), &TryEnterSection>(),
      Redirect<ImportIndex("LeaveCriticalSection"), &LeaveSection>(),
      Redirect<ImportIndex("AcquireSRWLockExclusive"), &AcquireSlim>(),
      Redirect<ImportIndex("TryAcquireSRWLockExclusive"), &TryAcquireSlim>(),
      Redirect<ImportIndex("ReleaseSRWLockExclusive"), &ReleaseSlim>(),
  };
  return kHooks;
}

}  // namespace bench
