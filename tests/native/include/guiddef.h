// Ids.
#pragma once

#include <windef.h>

#include <cstring>

struct GUID {
  ULONG Data1;
  USHORT Data2;
  USHORT Data3;
  UCHAR Data4[8];
};

using IID = GUID;
using CLSID = GUID;
using LPGUID = GUID*;
using LPCGUID = const GUID*;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool IsEqualGUID(REFGUID left, REFGUID right) {
  return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool IsEqualIID(REFIID left, REFIID right) {
  return IsEqualGUID(left, right);
}
inline bool IsEqualCLSID(REFCLSID left, REFCLSID right) {
  return IsEqualGUID(left, right);
}
inline bool operator==(REFGUID left, REFGUID right) {
  return IsEqualGUID(left, right);
}

inline constexpr GUID GUID_NULL = {};
