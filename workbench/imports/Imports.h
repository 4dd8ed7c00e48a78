// Every import that the workbench stands in for, and how each fails when a test wants it to.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "workbench/imports/FaultPlan.h"

namespace bench {

struct ImportFact {
  std::string_view dll;
  std::string_view name;
  std::optional<Failure> failure;  // the natural one; none for what does not fail
  bool hasResult = true;
};

namespace import_facts {

inline constexpr std::string_view kKernel = "kernel32.dll";
inline constexpr std::string_view kAdvapi = "advapi32.dll";
inline constexpr std::string_view kSetup = "setupapi.dll";
inline constexpr std::string_view kOle = "ole32.dll";
inline constexpr std::string_view kOleAut = "oleaut32.dll";
inline constexpr std::string_view kRuntime = "msvcrt.dll";

inline constexpr std::optional<Failure> kNever = std::nullopt;
inline constexpr bool kNoResult = false;
inline constexpr Failure kNoMemory = {0, ERROR_NOT_ENOUGH_MEMORY};  // null or FALSE
inline constexpr Failure kNull = {0, 0};
inline constexpr Failure kResultNoMemory = {static_cast<std::uint32_t>(E_OUTOFMEMORY), 0};
constexpr Failure False(DWORD error) {
  return {0, error};
}
constexpr Failure Code(DWORD code) {
  return {code, 0};
}

}  // namespace import_facts

inline constexpr auto kImports = [] {
  using namespace import_facts;
  return std::to_array<ImportFact>({
      {kKernel, "GetTickCount64", kNever},
      {kKernel, "GetTickCount", kNever},
      {kKernel, "GetSystemTime", kNever, kNoResult},
      {kKernel, "GetSystemTimeAsFileTime", kNever, kNoResult},
      {kKernel, "GetSystemTimePreciseAsFileTime", kNever, kNoResult},
      {kKernel, "QueryPerformanceCounter", kNever},
      {kKernel, "QueryPerformanceFrequency", kNever},
      {kKernel, "Sleep", kNever, kNoResult},
      {kKernel, "SleepEx", kNever},
      {kKernel, "SwitchToThread", kNever},
      {kKernel, "WaitForSingleObject", kNever},
      {kKernel, "WaitForSingleObjectEx", kNever},
      {kKernel, "WaitForMultipleObjects", kNever},
      {kKernel, "WaitForMultipleObjectsEx", kNever},
      {kKernel, "SetEvent", kNever},
      {kKernel, "ReleaseSemaphore", kNever},
      {kKernel, "EnterCriticalSection", kNever, kNoResult},
      {kKernel, "TryEnterCriticalSection", kNever},
      {kKernel, "LeaveCriticalSection", kNever, kNoResult},
      {kKernel, "AcquireSRWLockExclusive", kNever, kNoResult},
      {kKernel, "TryAcquireSRWLockExclusive", kNever},
      {kKernel, "ReleaseSRWLockExclusive", kNever, kNoResult},
      {kKernel, "CreateEventW", kNoMemory},
      {kKernel, "CreateThread", kNoMemory},
      {kKernel, "CloseHandle", kNever},
      {kKernel, "InitializeCriticalSection", kNever, kNoResult},
      {kKernel, "InitializeCriticalSectionAndSpinCount", kNoMemory},
      {kKernel, "InitializeCriticalSectionEx", kNoMemory},
      {kKernel, "DeleteCriticalSection", kNever, kNoResult},
      {kKernel, "DisableThreadLibraryCalls", False(ERROR_INVALID_HANDLE)},
      {kKernel, "SystemTimeToFileTime", False(ERROR_INVALID_PARAMETER)},
      {kKernel, "FileTimeToSystemTime", False(ERROR_INVALID_PARAMETER)},
      {kKernel, "GetEnvironmentVariableW", False(ERROR_ENVVAR_NOT_FOUND)},
      {kKernel, "ExpandEnvironmentStringsW", kNoMemory},
      {kKernel, "FormatMessageW", False(ERROR_MR_MID_NOT_FOUND)},
      {kKernel, "MultiByteToWideChar", False(ERROR_NO_UNICODE_TRANSLATION)},
      {kKernel, "WideCharToMultiByte", False(ERROR_NO_UNICODE_TRANSLATION)},
      {kKernel, "FlsAlloc", Code(FLS_OUT_OF_INDEXES)},
      {kKernel, "FlsSetValue", kNoMemory},
      {kAdvapi, "RegGetValueW", Code(ERROR_ACCESS_DENIED)},
      {kAdvapi, "RegisterTraceGuidsW", Code(ERROR_NOT_ENOUGH_MEMORY)},
      {kAdvapi, "UnregisterTraceGuids", kNever},
      {kAdvapi, "GetTraceLoggerHandle",
       Failure{static_cast<std::uintptr_t>(-1), ERROR_INVALID_PARAMETER}},
      {kAdvapi, "GetTraceEnableLevel", kNever},
      {kAdvapi, "GetTraceEnableFlags", kNever},
      {kAdvapi, "TraceMessage", Code(ERROR_NOT_ENOUGH_MEMORY)},
      {kSetup, "SetupDiCreateDeviceInfoList",
       Failure{static_cast<std::uintptr_t>(-1), ERROR_NOT_ENOUGH_MEMORY}},
      {kSetup, "SetupDiOpenDeviceInfoW", kNoMemory},
      {kSetup, "SetupDiGetDevicePropertyW", False(ERROR_NOT_FOUND)},
      {kSetup, "SetupDiDestroyDeviceInfoList", kNever},
      {kOle, "CoInitializeEx", Code(static_cast<DWORD>(RPC_E_CHANGED_MODE))},
      {kOle, "CoUninitialize", kNever, kNoResult},
      {kOle, "CoCreateInstance", kResultNoMemory},
      {kOle, "StringFromCLSID", kResultNoMemory},
      {kOle, "CoTaskMemAlloc", kNull},
      {kOle, "CoTaskMemFree", kNever, kNoResult},
      {kOle, "PropVariantCopy", kResultNoMemory},
      {kOleAut, "SysAllocString", kNull},
      {kOleAut, "SysAllocStringLen", kNull},
      {kOleAut, "SysAllocStringByteLen", kNull},
      {kRuntime, "malloc", kNull},
      {kRuntime, "calloc", kNull},
      {kRuntime, "realloc", kNull},
      {kRuntime, "free", kNever, kNoResult},
  });
}();

/// Position of a function in the table; does not compile for a name that is not in it.
consteval std::size_t ImportIndex(std::string_view name) {
  for (std::size_t i = 0; i < kImports.size(); ++i) {
    if (kImports[i].name == name) return i;
  }
  throw "not in the table of imports";
}

}  // namespace bench
