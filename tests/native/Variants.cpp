// Counted texts, variants and property variants.
#include <oleauto.h>
#include <propidl.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr VARTYPE kBytes = VT_VECTOR | VT_UI1;

/// What stands before the characters of a BSTR.
struct TextHead {
  UINT bytes;
};
// Room for the head that keeps the characters aligned for any type.
constexpr std::size_t kHeadRoom = 16;

char* Block(BSTR text) {
  return reinterpret_cast<char*>(text) - kHeadRoom;
}

UINT LengthOf(const WCHAR* text) {
  UINT length = 0;
  while (text[length] != 0) ++length;
  return length;
}

}  // namespace

BSTR SysAllocString(const WCHAR* text) {
  return text != nullptr ? SysAllocStringLen(text, LengthOf(text)) : nullptr;
}

BSTR SysAllocStringLen(const WCHAR* text, UINT length) {
  auto* const block =
      static_cast<char*>(std::malloc(kHeadRoom + (std::size_t{length} + 1) * sizeof(WCHAR)));
  if (block == nullptr) return nullptr;
  const TextHead head = {length * static_cast<UINT>(sizeof(WCHAR))};
  std::memcpy(block, &head, sizeof head);
  const BSTR made = reinterpret_cast<BSTR>(block + kHeadRoom);
  if (text != nullptr) std::memcpy(made, text, head.bytes);
  made[length] = 0;
  return made;
}

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(Block(text));
}

UINT SysStringLen(BSTR text) {
  if (text == nullptr) return 0;
  TextHead head;
  std::memcpy(&head, Block(text), sizeof head);
  return head.bytes / static_cast<UINT>(sizeof(WCHAR));
}

void VariantInit(VARIANT* value) {
  value->vt = VT_EMPTY;
}

HRESULT VariantClear(VARIANT* value) {
  if (value->vt == VT_BSTR) SysFreeString(value->bstrVal);
  if (value->vt == VT_UNKNOWN && value->punkVal != nullptr) value->punkVal->Release();
  value->vt = VT_EMPTY;
  return S_OK;
}

void PropVariantInit(PROPVARIANT* value) {
  std::memset(value, 0, sizeof *value);
}

HRESULT PropVariantClear(PROPVARIANT* value) {
  if (value == nullptr) return S_OK;
  switch (value->vt) {
    case VT_LPWSTR:
      CoTaskMemFree(value->pwszVal);
      break;
    case VT_LPSTR:
      CoTaskMemFree(value->pszVal);
      break;
    case VT_CLSID:
      CoTaskMemFree(value->puuid);
      break;
    case kBytes:
      CoTaskMemFree(value->caub.pElems);
      break;
    case VT_BLOB:
      CoTaskMemFree(value->blob.pBlobData);
      break;
    case VT_BSTR:
      SysFreeString(value->bstrVal);
      break;
    case VT_UNKNOWN:
      if (value->punkVal != nullptr) value->punkVal->Release();
      break;
    default:
      break;
  }
  PropVariantInit(value);
  return S_OK;
}
