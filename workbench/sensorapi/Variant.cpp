#include "workbench/sensorapi/Variant.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

namespace bench {
namespace {

std::size_t LengthWithTerminator(const WCHAR* text) {
  std::size_t length = 0;
  while (text[length] != 0) ++length;
  return length + 1;
}

/// A task-memory copy; `size` may be 0, which gives null.
template <class T>
bool Duplicate(const T* source, std::size_t count, T** copy) {
  *copy = nullptr;
  if (source == nullptr || count == 0) return true;
  *copy = static_cast<T*>(CoTaskMemAlloc(count * sizeof(T)));
  if (*copy == nullptr) return false;
  std::memcpy(*copy, source, count * sizeof(T));
  return true;
}

/// The value fields of the types that own nothing.
bool CopyPlain(const PROPVARIANT& source, PROPVARIANT* target) {
  switch (source.vt) {
    case VT_EMPTY:
      return true;
    case VT_BOOL:
      target->boolVal = source.boolVal;
      return true;
    case VT_I4:
      target->lVal = source.lVal;
      return true;
    case VT_UI4:
      target->ulVal = source.ulVal;
      return true;
    case VT_I8:
      target->hVal = source.hVal;
      return true;
    case VT_UI8:
      target->uhVal = source.uhVal;
      return true;
    case VT_R4:
      target->fltVal = source.fltVal;
      return true;
    case VT_R8:
      target->dblVal = source.dblVal;
      return true;
    case VT_ERROR:
      target->scode = source.scode;
      return true;
    case VT_FILETIME:
      target->filetime = source.filetime;
      return true;
    default:
      return false;
  }
}

HRESULT CopyOwning(const PROPVARIANT& source, PROPVARIANT* target) {
  bool copied = true;
  switch (source.vt) {
    case VT_CLSID:
      if (source.puuid == nullptr) return E_INVALIDARG;
      copied = Duplicate(source.puuid, 1, &target->puuid);
      break;
    case VT_LPWSTR:
      copied = Duplicate(source.pwszVal,
                         source.pwszVal == nullptr ? 0 : LengthWithTerminator(source.pwszVal),
                         &target->pwszVal);
      break;
    case kBytes:
      copied = Duplicate(source.caub.pElems, source.caub.cElems, &target->caub.pElems);
      target->caub.cElems = target->caub.pElems == nullptr ? 0 : source.caub.cElems;
      break;
    case VT_UNKNOWN:
      target->punkVal = source.punkVal;
      if (target->punkVal != nullptr) target->punkVal->AddRef();
      break;
    default:
      return DISP_E_BADVARTYPE;
  }
  return copied ? S_OK : E_OUTOFMEMORY;
}

}  // namespace

HRESULT CopyVariant(const PROPVARIANT& source, PROPVARIANT* target) {
  PropVariantInit(target);
  HRESULT result = S_OK;
  if (!CopyPlain(source, target)) result = CopyOwning(source, target);
  if (SUCCEEDED(result)) target->vt = source.vt;
  return result;
}

Variant::Variant(const PROPVARIANT& source) {
  const HRESULT result = CopyVariant(source, &value_);
  if (result == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(result)) throw std::invalid_argument("variant type");
}

void Variant::Swap(Variant& other) noexcept {
  std::swap(value_, other.value_);
}

PROPVARIANT* Variant::Put() {
  PropVariantClear(&value_);
  PropVariantInit(&value_);
  return &value_;
}

PROPVARIANT Variant::Detach() {
  const PROPVARIANT detached = value_;
  PropVariantInit(&value_);
  return detached;
}

Variant Variant::Bool(bool value) {
  PROPVARIANT plain{};
  plain.vt = VT_BOOL;
  plain.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return Variant(plain);
}

Variant Variant::I4(LONG value) {
  PROPVARIANT plain{};
  plain.vt = VT_I4;
  plain.lVal = value;
  return Variant(plain);
}

Variant Variant::Ui4(ULONG value) {
  PROPVARIANT plain{};
  plain.vt = VT_UI4;
  plain.ulVal = value;
  return Variant(plain);
}

Variant Variant::I8(LONGLONG value) {
  PROPVARIANT plain{};
  plain.vt = VT_I8;
  plain.hVal.QuadPart = value;
  return Variant(plain);
}

Variant Variant::Ui8(ULONGLONG value) {
  PROPVARIANT plain{};
  plain.vt = VT_UI8;
  plain.uhVal.QuadPart = value;
  return Variant(plain);
}

Variant Variant::R4(float value) {
  PROPVARIANT plain{};
  plain.vt = VT_R4;
  plain.fltVal = value;
  return Variant(plain);
}

Variant Variant::R8(double value) {
  PROPVARIANT plain{};
  plain.vt = VT_R8;
  plain.dblVal = value;
  return Variant(plain);
}

Variant Variant::Error(HRESULT value) {
  PROPVARIANT plain{};
  plain.vt = VT_ERROR;
  plain.scode = value;
  return Variant(plain);
}

Variant Variant::FileTime(FILETIME value) {
  PROPVARIANT plain{};
  plain.vt = VT_FILETIME;
  plain.filetime = value;
  return Variant(plain);
}

Variant Variant::Guid(const GUID& value) {
  GUID copy = value;
  PROPVARIANT borrowed{};
  borrowed.vt = VT_CLSID;
  borrowed.puuid = &copy;
  return Variant(borrowed);
}

Variant Variant::String(const WCHAR* value) {
  PROPVARIANT borrowed{};
  borrowed.vt = VT_LPWSTR;
  borrowed.pwszVal = const_cast<LPWSTR>(value);
  return Variant(borrowed);
}

Variant Variant::String(std::string_view utf8) {
  return String(Wide(utf8).data());
}

Variant Variant::Bytes(std::span<const BYTE> value) {
  PROPVARIANT borrowed{};
  borrowed.vt = kBytes;
  borrowed.caub.cElems = static_cast<ULONG>(value.size());
  borrowed.caub.pElems = const_cast<BYTE*>(value.data());
  return Variant(borrowed);
}

Variant Variant::Object(IUnknown* value) {
  PROPVARIANT borrowed{};
  borrowed.vt = VT_UNKNOWN;
  borrowed.punkVal = value;
  return Variant(borrowed);
}

std::span<const BYTE> BytesOf(const PROPVARIANT& value) {
  return {value.caub.pElems, value.caub.cElems};
}

bool operator==(const Variant& left, const Variant& right) {
  const PROPVARIANT& a = left.Get();
  const PROPVARIANT& b = right.Get();
  if (a.vt != b.vt) return false;
  switch (a.vt) {
    case VT_EMPTY:
      return true;
    case VT_BOOL:
      return a.boolVal == b.boolVal;
    case VT_I4:
    case VT_UI4:
    case VT_ERROR:
      return a.lVal == b.lVal;
    case VT_I8:
    case VT_UI8:
      return a.hVal.QuadPart == b.hVal.QuadPart;
    case VT_R4:
      return a.fltVal == b.fltVal;
    case VT_R8:
      return a.dblVal == b.dblVal;
    case VT_FILETIME:
      return std::memcmp(&a.filetime, &b.filetime, sizeof a.filetime) == 0;
    case VT_CLSID:
      return IsEqualGUID(*a.puuid, *b.puuid) != 0;
    case VT_LPWSTR:
      return Utf8(a.pwszVal) == Utf8(b.pwszVal);
    case kBytes: {
      const auto x = BytesOf(a);
      const auto y = BytesOf(b);
      return x.size() == y.size() && (x.empty() || std::memcmp(x.data(), y.data(), x.size()) == 0);
    }
    default:
      return a.punkVal == b.punkVal;
  }
}

bool SameKey(const PROPERTYKEY& left, const PROPERTYKEY& right) {
  return left.pid == right.pid && IsEqualGUID(left.fmtid, right.fmtid);
}

std::string KeyText(const PROPERTYKEY& key) {
  const GUID& set = key.fmtid;
  char text[64];
  std::snprintf(text, sizeof text, "{%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x} %u",
                static_cast<unsigned>(set.Data1), set.Data2, set.Data3, set.Data4[0], set.Data4[1],
                set.Data4[2], set.Data4[3], set.Data4[4], set.Data4[5], set.Data4[6], set.Data4[7],
                static_cast<unsigned>(key.pid));
  return text;
}

}  // namespace bench
