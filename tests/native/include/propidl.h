// The property variant.
#pragma once

#include <objbase.h>
#include <wtypes.h>

struct BLOB {
  ULONG cbSize;
  BYTE* pBlobData;
};

struct CAUB {
  ULONG cElems;
  UCHAR* pElems;
};

struct PROPVARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    UCHAR bVal;
    SHORT iVal;
    USHORT uiVal;
    LONG lVal;
    ULONG ulVal;
    LARGE_INTEGER hVal;
    ULARGE_INTEGER uhVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    FILETIME filetime;
    CLSID* puuid;
    BLOB blob;
    BSTR bstrVal;
    LPSTR pszVal;
    LPWSTR pwszVal;
    IUnknown* punkVal;
    CAUB caub;
  };
};
using REFPROPVARIANT = const PROPVARIANT&;
static_assert(sizeof(PROPVARIANT) == 24);
static_assert(offsetof(PROPVARIANT, caub) == 8);

void PropVariantInit(PROPVARIANT* value);
/// Frees what the value owns and empties it.
HRESULT PropVariantClear(PROPVARIANT* value);
