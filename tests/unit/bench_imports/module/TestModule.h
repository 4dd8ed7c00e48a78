// The calls that the test module makes on behalf of a test, each through its own import table.
#pragma once

#include <windows.h>

#include <setupapi.h>

#include <atomic>
#include <cstddef>

inline constexpr GUID kTestProvider = {
    0x0b3b4a11, 0x9f51, 0x4c0e, {0x8e, 0x52, 0x1d, 0x6e, 0x0f, 0x10, 0x21, 0x32}};
inline constexpr GUID kTestMessages = {
    0x0b3b4a12, 0x9f51, 0x4c0e, {0x8e, 0x52, 0x1d, 0x6e, 0x0f, 0x10, 0x21, 0x33}};

/// What the module's trace callback was told last.
struct TraceControl {
  ULONG64 logger;
  ULONG level;
  ULONG flags;
};

/// Where the module calls back into the test.
enum class ModuleHook { kGetClassObject, kUnload, kCount };

/// Exported as `moduleCalls`.
struct ModuleCalls {
  ULONGLONG (*ticks)();
  DWORD (*ticks32)();
  ULONGLONG (*ticksAtLoad)();
  void (*systemTime)(SYSTEMTIME* time);
  void (*fileTime)(FILETIME* time);
  double (*counterSeconds)();
  void (*sleep)(DWORD milliseconds);
  void (*spinUntil)(const std::atomic<bool>* done);

  DWORD (*waitOne)(HANDLE handle, DWORD milliseconds);
  DWORD (*waitMany)(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds);
  HANDLE (*createEvent)(BOOL manual);
  BOOL (*setEvent)(HANDLE event);
  BOOL (*closeHandle)(HANDLE handle);
  HANDLE (*createThread)(LPTHREAD_START_ROUTINE body, void* argument, DWORD flags);

  BOOL (*initSection)(CRITICAL_SECTION* section);
  void (*enter)(CRITICAL_SECTION* section);
  BOOL (*tryEnter)(CRITICAL_SECTION* section);
  void (*leave)(CRITICAL_SECTION* section);
  void (*deleteSection)(CRITICAL_SECTION* section);
  void (*acquireSlim)(SRWLOCK* lock);
  void (*releaseSlim)(SRWLOCK* lock);

  LSTATUS(*regGet)
  (HKEY root, const wchar_t* key, const wchar_t* value, DWORD flags, DWORD* type, void* data,
   DWORD* size);
  HDEVINFO (*createList)();
  BOOL (*openDevice)(HDEVINFO list, const wchar_t* instanceId, SP_DEVINFO_DATA* data);
  BOOL(*readDescription)
  (HDEVINFO list, SP_DEVINFO_DATA* data, wchar_t* text, DWORD bytes, DWORD* required);
  BOOL (*destroyList)(HDEVINFO list);

  TraceControl (*traceControl)();
  ULONG (*emit)(USHORT number, LONG value, const char* text);
  ULONG (*emitBare)(USHORT number);
  ULONG (*registerProvider)(ULONG64* registration);
  ULONG (*unregisterProvider)(ULONG64 registration);

  HRESULT (*comInit)();
  void (*comUninit)();
  HRESULT (*createInstance)(REFCLSID classId, REFIID interfaceId, void** object);
  HRESULT (*classText)(REFCLSID classId, wchar_t** text);
  void (*freeTask)(void* block);
  void* (*allocate)(std::size_t size);
  void* (*reallocate)(void* block, std::size_t size);
  void (*release)(void* block);
  bool (*newSucceeds)();
  BOOL (*toFileTime)(const SYSTEMTIME* from, FILETIME* to);

  void (*setHook)(ModuleHook place, void (*hook)());
  /// From now on DllCanUnloadNow answers S_FALSE.
  void (*keepLoaded)();
};
