// A module with a driver's exports that makes the calls a driver makes, one by one.
#include "tests/unit/bench_imports/module/TestModule.h"

#include <objbase.h>

#include <wmistr.h>

#include <evntrace.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "platform/WdfTypes.h"

namespace {

constexpr DEVPROPKEY kDescription = {
    {0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 2};

TraceControl control = {};
TRACEHANDLE loadRegistration = 0;
ULONGLONG loadTicks = 0;

ULONG WINAPI OnControl(WMIDPREQUESTCODE request, void* context, ULONG* size, void* buffer) {
  if (request == WMI_ENABLE_EVENTS) {
    control.logger = GetTraceLoggerHandle(buffer);
    control.level = GetTraceEnableLevel(control.logger);
    control.flags = GetTraceEnableFlags(control.logger);
    return ERROR_SUCCESS;
  }
  if (request == WMI_DISABLE_EVENTS) {
    control = {};
    return ERROR_SUCCESS;
  }
  return ERROR_INVALID_PARAMETER;
}

ULONG Register(TRACEHANDLE* registration) {
  TRACE_GUID_REGISTRATION guids[] = {{&kTestProvider, nullptr}};
  return RegisterTraceGuidsW(&OnControl, nullptr, &kTestProvider, 1, guids, nullptr, nullptr,
                             registration);
}

bool inUse = false;
void (*hooks[static_cast<std::size_t>(ModuleHook::kCount)])() = {};

void RunHook(ModuleHook place) {
  const auto hook = hooks[static_cast<std::size_t>(place)];
  if (hook != nullptr) hook();
}

constexpr ULONG kMessageFlags = TRACE_MESSAGE_SEQUENCE | TRACE_MESSAGE_GUID;

}  // namespace

extern "C" {

UMDF_VERSION_DATA Microsoft_WDF_UMDF_Version = {1, 11, 0};

// Exported by the module-definition file, as the system headers declare them without.
HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID, REFIID, void** object) {
  *object = nullptr;
  RunHook(ModuleHook::kGetClassObject);
  return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return inUse ? S_FALSE : S_OK;
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) {
    loadTicks = GetTickCount64();
    if (Register(&loadRegistration) != ERROR_SUCCESS) loadRegistration = 0;
    DisableThreadLibraryCalls(instance);
  } else if (reason == DLL_PROCESS_DETACH) {
    if (loadRegistration != 0) UnregisterTraceGuids(loadRegistration);
    RunHook(ModuleHook::kUnload);
  }
  return TRUE;
}

extern const ModuleCalls moduleCalls;
const ModuleCalls moduleCalls = {
    .ticks = [] { return GetTickCount64(); },
    .ticks32 = [] { return GetTickCount(); },
    .ticksAtLoad = [] { return loadTicks; },
    .systemTime = [](SYSTEMTIME* time) { GetSystemTime(time); },
    .fileTime = [](FILETIME* time) { GetSystemTimeAsFileTime(time); },
    .counterSeconds =
        [] {
          LARGE_INTEGER counter;
          LARGE_INTEGER frequency;
          QueryPerformanceCounter(&counter);
          QueryPerformanceFrequency(&frequency);
          return static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
        },
    .sleep = [](DWORD milliseconds) { Sleep(milliseconds); },
    .spinUntil =
        [](const std::atomic<bool>* done) {
          while (!*done) SwitchToThread();
        },
    .waitOne = [](HANDLE handle,
                  DWORD milliseconds) { return WaitForSingleObject(handle, milliseconds); },
    .waitMany =
        [](DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds) {
          return WaitForMultipleObjects(count, handles, all, milliseconds);
        },
    .createEvent = [](BOOL manual) { return CreateEventW(nullptr, manual, FALSE, nullptr); },
    .setEvent = [](HANDLE event) { return SetEvent(event); },
    .closeHandle = [](HANDLE handle) { return CloseHandle(handle); },
    .createThread =
        [](LPTHREAD_START_ROUTINE body, void* argument, DWORD flags) {
          return CreateThread(nullptr, 0, body, argument, flags, nullptr);
        },
    .initSection =
        [](CRITICAL_SECTION* section) { return InitializeCriticalSectionAndSpinCount(section, 0); },
    .enter = [](CRITICAL_SECTION* section) { EnterCriticalSection(section); },
    .tryEnter = [](CRITICAL_SECTION* section) { return TryEnterCriticalSection(section); },
    .leave = [](CRITICAL_SECTION* section) { LeaveCriticalSection(section); },
    .deleteSection = [](CRITICAL_SECTION* section) { DeleteCriticalSection(section); },
    .acquireSlim = [](SRWLOCK* lock) { AcquireSRWLockExclusive(lock); },
    .releaseSlim = [](SRWLOCK* lock) { ReleaseSRWLockExclusive(lock); },
    .regGet = [](HKEY root, const wchar_t* key, const wchar_t* value, DWORD flags, DWORD* type,
                 void* data,
                 DWORD* size) { return RegGetValueW(root, key, value, flags, type, data, size); },
    .createList = [] { return SetupDiCreateDeviceInfoList(nullptr, nullptr); },
    .openDevice =
        [](HDEVINFO list, const wchar_t* instanceId, SP_DEVINFO_DATA* data) {
          return SetupDiOpenDeviceInfoW(list, instanceId, nullptr, 0, data);
        },
    .readDescription =
        [](HDEVINFO list, SP_DEVINFO_DATA* data, wchar_t* text, DWORD bytes, DWORD* required) {
          DEVPROPTYPE type = 0;
          return SetupDiGetDevicePropertyW(list, data, &kDescription, &type,
                                           reinterpret_cast<BYTE*>(text), bytes, required, 0);
        },
    .destroyList = [](HDEVINFO list) { return SetupDiDestroyDeviceInfoList(list); },
    .traceControl = [] { return control; },
    .emit =
        [](USHORT number, LONG value, const char* text) {
          return TraceMessage(control.logger, kMessageFlags, &kTestMessages, number, &value,
                              sizeof value, text, std::strlen(text) + 1, nullptr);
        },
    .emitBare =
        [](USHORT number) {
          return TraceMessage(control.logger, kMessageFlags, &kTestMessages, number, nullptr);
        },
    .registerProvider = [](ULONG64* registration) { return Register(registration); },
    .unregisterProvider = [](ULONG64 registration) { return UnregisterTraceGuids(registration); },
    .comInit = [] { return CoInitializeEx(nullptr, COINIT_MULTITHREADED); },
    .comUninit = [] { CoUninitialize(); },
    .createInstance =
        [](REFCLSID classId, REFIID interfaceId, void** object) {
          return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, object);
        },
    .classText = [](REFCLSID classId, wchar_t** text) { return StringFromCLSID(classId, text); },
    .freeTask = [](void* block) { CoTaskMemFree(block); },
    .allocate = [](std::size_t size) { return std::malloc(size); },
    .reallocate = [](void* block, std::size_t size) { return std::realloc(block, size); },
    .release = [](void* block) { std::free(block); },
    .newSucceeds = []() -> bool {
      try {
        // Through a volatile pointer, or the compiler leaves the allocation out.
        int* volatile block = new int[16];
        delete[] block;
        return true;
      } catch (const std::bad_alloc&) {
        return false;
      }
    },
    .toFileTime = [](const SYSTEMTIME* from,
                     FILETIME* to) { return SystemTimeToFileTime(from, to); },
    .setHook = [](ModuleHook place,
                  void (*hook)()) { hooks[static_cast<std::size_t>(place)] = hook; },
    .keepLoaded = [] { inUse = true; },
};

}  // extern "C"
