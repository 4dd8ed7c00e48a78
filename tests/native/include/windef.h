// The platform's basic types, with the sizes that they have on 64-bit Windows.
#pragma once

#include <cstddef>
#include <cstdint>

#define __cdecl
#define __stdcall
#define WINAPI
#define APIENTRY
#define CALLBACK
#define STDMETHODCALLTYPE
#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define MAXLONG 0x7fffffff
#define MAXDWORD 0xffffffff

using BYTE = std::uint8_t;
using UCHAR = std::uint8_t;
using CHAR = char;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using INT = int;
using UINT = unsigned int;
using BOOL = int;
using WINBOOL = int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using ULONG64 = unsigned long long;
using DWORD64 = unsigned long long;
using FLOAT = float;
using DOUBLE = double;
using SIZE_T = std::size_t;
using ULONG_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using DWORD_PTR = std::uintptr_t;
using WCHAR = wchar_t;
using HRESULT = std::int32_t;
using LSTATUS = std::int32_t;
using NTSTATUS = std::int32_t;
using LCID = DWORD;

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using PBYTE = BYTE*;
using PDWORD = DWORD*;
using LPDWORD = DWORD*;
using PULONG = ULONG*;
using PLONGLONG = LONGLONG*;
using LPSTR = char*;
using PSTR = char*;
using LPCSTR = const char*;
using PCSTR = const char*;
using LPWSTR = WCHAR*;
using PWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using PCWSTR = const WCHAR*;
using LPOLESTR = WCHAR*;
using LPCOLESTR = const WCHAR*;
using HANDLE = void*;
using HMODULE = void*;
using HINSTANCE = void*;
using HLOCAL = void*;
using HWND = void*;
using HKEY = struct HKEY__*;

static_assert(sizeof(WCHAR) == 2, "needs -fshort-wchar");

union LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  LONGLONG QuadPart;
};

union ULARGE_INTEGER {
  struct {
    DWORD LowPart;
    DWORD HighPart;
  } u;
  ULONGLONG QuadPart;
};

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

enum DEVICE_POWER_STATE : int {
  PowerDeviceUnspecified = 0,
  PowerDeviceD0,
  PowerDeviceD1,
  PowerDeviceD2,
  PowerDeviceD3,
  PowerDeviceMaximum,
};

enum POWER_ACTION : int { PowerActionNone = 0 };
enum SECURITY_IMPERSONATION_LEVEL : int {
  SecurityAnonymous = 0,
  SecurityIdentification,
  SecurityImpersonation,
  SecurityDelegation,
};
