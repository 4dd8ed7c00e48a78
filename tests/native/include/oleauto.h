// Counted texts and variants.
#pragma once

#include <oaidl.h>

BSTR SysAllocString(const WCHAR* text);
BSTR SysAllocStringLen(const WCHAR* text, UINT length);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);
void VariantInit(VARIANT* value);
HRESULT VariantClear(VARIANT* value);
