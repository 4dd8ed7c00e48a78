// COM: classes are found among those that the process has registered.
#pragma once

#include <unknwn.h>

inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD REGCLS_MULTIPLEUSE = 1;

HRESULT CoInitializeEx(void* reserved, DWORD model);
void CoUninitialize();
HRESULT CoRegisterClassObject(REFCLSID id, IUnknown* factory, DWORD context, DWORD flags,
                              DWORD* cookie);
HRESULT CoRevokeClassObject(DWORD cookie);
/// CO_E_NOTINITIALIZED while no thread has COM initialised, REGDB_E_CLASSNOTREG for an unknown
/// class.
HRESULT CoCreateInstance(REFCLSID id, IUnknown* outer, DWORD context, REFIID iid, void** object);
void* CoTaskMemAlloc(SIZE_T size);
void CoTaskMemFree(void* memory);
/// Upper case, with braces; freed with CoTaskMemFree.
HRESULT StringFromCLSID(REFCLSID id, LPOLESTR* text);
