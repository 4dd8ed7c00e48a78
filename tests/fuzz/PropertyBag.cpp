#include "tests/fuzz/PropertyBag.h"

#include <oleauto.h>

#include "tests/fuzz/Fuzz.h"

namespace fuzz {

namespace {

bool SameKey(const PROPERTYKEY& a, const PROPERTYKEY& b) {
  return a.pid == b.pid && IsEqualGUID(a.fmtid, b.fmtid);
}

template <class Character>
Character* CopyText(const std::u16string& text) {
  auto* const copy = static_cast<Character*>(CoTaskMemAlloc((text.size() + 1) * sizeof(Character)));
  std::transform(text.begin(), text.end(), copy, [](char16_t c) { return Character(c); });
  copy[text.size()] = 0;
  return copy;
}

std::string Narrow(const WCHAR* text) {
  std::string narrow;
  for (; *text != 0; ++text) narrow += static_cast<char>(*text);
  return narrow;
}

}  // namespace

void BagValue::CopyTo(PROPVARIANT* value) const {
  PropVariantInit(value);
  value->vt = type;
  value->uhVal.QuadPart = bits;
  const auto size = static_cast<ULONG>(text.size() + 1);
  switch (type) {
    case VT_LPWSTR:
      value->pwszVal = isNull ? nullptr : CopyText<WCHAR>(text);
      break;
    case VT_LPSTR:
      value->pszVal = isNull ? nullptr : CopyText<char>(text);
      break;
    case VT_BSTR:
      value->bstrVal = isNull ? nullptr : SysAllocStringLen(nullptr, size);
      break;
    case VT_CLSID:
      value->puuid = static_cast<CLSID*>(CoTaskMemAlloc(sizeof(CLSID)));
      *value->puuid = {};
      break;
    case VT_BLOB:
      value->blob = {size, CopyText<BYTE>(text)};
      break;
    case VT_VECTOR | VT_UI1:
      value->caub = {size, CopyText<UCHAR>(text)};
      break;
    case VT_UNKNOWN:
      value->punkVal = nullptr;
      break;
    default:
      break;
  }
}

std::string ShowNumber(ULONG value) {
  return "number " + std::to_string(value);
}
std::string ShowError(HRESULT value) {
  char text[32];
  std::snprintf(text, sizeof text, "error %08x", static_cast<unsigned>(value));
  return text;
}
std::string ShowText(std::string_view text) {
  return "text " + std::string(text);
}
std::string ShowBool(bool value) {
  return value ? "true" : "false";
}
std::string ShowGuid(const GUID& value) {
  return "guid " + std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

HRESULT PropertyBag::GetCount(DWORD* count) {
  *count = static_cast<DWORD>(content_.size());
  return S_OK;
}

HRESULT PropertyBag::GetAt(DWORD index, PROPERTYKEY* key, PROPVARIANT* value) {
  if (index >= content_.size()) return E_INVALIDARG;
  *key = content_[index].first;
  content_[index].second.CopyTo(value);
  return S_OK;
}

HRESULT PropertyBag::SetValue(REFPROPERTYKEY key, const PROPVARIANT* value) {
  if (value->vt == VT_LPWSTR) return Answer(key, ShowText(Narrow(value->pwszVal)));
  return Answer(key, "variant of type " + std::to_string(value->vt));
}
HRESULT PropertyBag::SetStringValue(REFPROPERTYKEY key, LPCWSTR value) {
  return Answer(key, ShowText(Narrow(value)));
}
HRESULT PropertyBag::SetUnsignedIntegerValue(REFPROPERTYKEY key, ULONG value) {
  return Answer(key, ShowNumber(value));
}
HRESULT PropertyBag::SetBoolValue(REFPROPERTYKEY key, BOOL value) {
  return Answer(key, ShowBool(value != FALSE));
}
HRESULT PropertyBag::SetGuidValue(REFPROPERTYKEY key, REFGUID value) {
  return Answer(key, ShowGuid(value));
}
HRESULT PropertyBag::SetErrorValue(REFPROPERTYKEY key, HRESULT value) {
  if (errorsTaken_ == 0) return E_OUTOFMEMORY;
  --errorsTaken_;
  return Answer(key, ShowError(value));
}

HRESULT PropertyBag::Answer(REFPROPERTYKEY key, std::string shown) {
  for (auto& [known, answer] : answers_) {
    if (!SameKey(known, key)) continue;
    answer = std::move(shown);
    return S_OK;
  }
  answers_.emplace_back(key, std::move(shown));
  return S_OK;
}

void PropertyBag::Unexpected(const char* method) {
  Fail(std::string("an unexpected call of the property container: ") + method);
}

HRESULT KeyList::GetCount(DWORD* count) {
  *count = static_cast<DWORD>(keys_.size());
  return S_OK;
}

HRESULT KeyList::GetAt(DWORD index, PROPERTYKEY* key) {
  if (index >= keys_.size()) return E_INVALIDARG;
  *key = keys_[index];
  return S_OK;
}

}  // namespace fuzz
