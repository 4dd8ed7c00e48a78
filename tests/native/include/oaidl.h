// The automation variant.
#pragma once

#include <unknwn.h>
#include <wtypes.h>

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONG lVal;
    SHORT iVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    BSTR bstrVal;
    IUnknown* punkVal;
    void* reserved[2];
  };
};
static_assert(sizeof(VARIANT) == 24);
