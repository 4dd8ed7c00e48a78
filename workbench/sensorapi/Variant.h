// Values of the Sensor API: deep copies, keys and text.
#pragma once

#include <windows.h>

#include <propidl.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// A blob, in the platform's type.
inline constexpr VARTYPE kBytes = VT_VECTOR | VT_UI1;

/// Copies `source` into `target` (not initialised before) so that the two share nothing but
/// counted objects. Known types: VT_EMPTY, VT_BOOL, VT_I4, VT_UI4, VT_I8, VT_UI8, VT_R4, VT_R8,
/// VT_ERROR, VT_CLSID, VT_LPWSTR, VT_FILETIME, VT_VECTOR|VT_UI1 and VT_UNKNOWN. Any other gives
/// DISP_E_BADVARTYPE, no memory E_OUTOFMEMORY, and both leave `target` VT_EMPTY.
HRESULT CopyVariant(const PROPVARIANT& source, PROPVARIANT* target);

/// An owned PROPVARIANT. Copies are deep and throw std::bad_alloc or std::invalid_argument.
class Variant {
 public:
  Variant() { PropVariantInit(&value_); }
  explicit Variant(const PROPVARIANT& source);
  Variant(const Variant& other) : Variant(other.value_) {}
  Variant(Variant&& other) noexcept : Variant() { Swap(other); }
  Variant& operator=(Variant other) noexcept {
    Swap(other);
    return *this;
  }
  ~Variant() { PropVariantClear(&value_); }

  static Variant Bool(bool value);
  static Variant I4(LONG value);
  static Variant Ui4(ULONG value);
  static Variant I8(LONGLONG value);
  static Variant Ui8(ULONGLONG value);
  static Variant R4(float value);
  static Variant R8(double value);
  static Variant Error(HRESULT value);
  static Variant FileTime(FILETIME value);
  static Variant Guid(const GUID& value);
  static Variant String(const WCHAR* value);
  static Variant String(std::string_view utf8);
  static Variant Bytes(std::span<const BYTE> value);
  /// Adds a reference of its own; null is allowed.
  static Variant Object(IUnknown* value);

  VARTYPE Type() const { return value_.vt; }
  const PROPVARIANT& Get() const { return value_; }
  /// Clears the old value and gives the place for the next.
  PROPVARIANT* Put();
  /// Gives the value and what it owns to the caller.
  [[nodiscard]] PROPVARIANT Detach();

 private:
  void Swap(Variant& other) noexcept;

  PROPVARIANT value_;
};

/// Equal type and equal content; objects are equal when they are the same pointer.
bool operator==(const Variant& left, const Variant& right);

/// The bytes of a VT_VECTOR|VT_UI1 value.
std::span<const BYTE> BytesOf(const PROPVARIANT& value);

bool SameKey(const PROPERTYKEY& left, const PROPERTYKEY& right);

/// "{055c74d8-ca6f-47d6-95c6-1ed3637a0ff4} 2".
std::string KeyText(const PROPERTYKEY& key);

/// Wide text with its terminator. (Not std::wstring: its library code may be built for another
/// width of wchar_t.)
std::vector<WCHAR> Wide(std::string_view utf8);
std::string Utf8(const WCHAR* text);

}  // namespace bench
