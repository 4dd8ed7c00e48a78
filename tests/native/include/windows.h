// The calls that the product makes of the kernel, implemented in tests/native on POSIX threads.
#pragma once

#include <guiddef.h>
#include <pthread.h>
#include <windef.h>
#include <winerror.h>

// Last error: one value a thread.
DWORD GetLastError();
void SetLastError(DWORD error);

// Critical sections: recursive.
struct CRITICAL_SECTION {
  struct Section* section;
};
BOOL InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section, DWORD spinCount);
void DeleteCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
BOOL TryEnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);

// Slim locks: not recursive, never deleted.
struct SRWLOCK {
  pthread_rwlock_t lock;
};
#define SRWLOCK_INIT \
  { PTHREAD_RWLOCK_INITIALIZER }
void AcquireSRWLockExclusive(SRWLOCK* lock);
void ReleaseSRWLockExclusive(SRWLOCK* lock);
void AcquireSRWLockShared(SRWLOCK* lock);
void ReleaseSRWLockShared(SRWLOCK* lock);

// Handles, events and waits.
inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
inline constexpr DWORD MAXIMUM_WAIT_OBJECTS = 64;
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(~ULONG_PTR{0});

struct SECURITY_ATTRIBUTES;
HANDLE CreateEventW(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initiallySet,
                    LPCWSTR name);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
BOOL CloseHandle(HANDLE handle);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
/// Wait-any only: `all` must be FALSE.
DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds);

// Threads.
using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(void* parameter);
HANDLE CreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                    void* parameter, DWORD flags, DWORD* threadId);
DWORD GetCurrentThreadId();
void Sleep(DWORD milliseconds);
BOOL SwitchToThread();

// Time: on the clock of tests/native/Native.h.
ULONGLONG GetTickCount64();
void GetSystemTime(SYSTEMTIME* time);
void GetSystemTimeAsFileTime(FILETIME* time);
BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime);
BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time);

// Registry: what native::SetRegistryDword has put there.
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(ULONG_PTR{0x80000002});
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD RRF_RT_REG_DWORD = 0x10;
inline constexpr DWORD RRF_RT_ANY = 0xFFFF;
LSTATUS RegGetValueW(HKEY key, LPCWSTR subkey, LPCWSTR value, DWORD flags, DWORD* type, void* data,
                     DWORD* size);

// Texts. The system knows one message at most, see native::SetMessageText; every code page is
// Latin-1.
inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x100;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
inline constexpr UINT CP_THREAD_ACP = 3;
DWORD FormatMessageW(DWORD flags, const void* source, DWORD id, DWORD language, LPWSTR buffer,
                     DWORD size, void* arguments);
HLOCAL LocalFree(HLOCAL memory);
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR wide,
                        int wideSize);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int length, LPSTR text,
                        int textSize, LPCSTR defaultCharacter, BOOL* usedDefault);
