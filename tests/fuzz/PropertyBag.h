// Property containers for one thread, cheap to make: what a driver reads from and writes into.
#pragma once

#include <propidl.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/PortableDevices.h"

namespace fuzz {

/// A property variant as a plain value. Texts stand in `text`; all else is the variant's 8 bytes.
struct BagValue {
  VARTYPE type = VT_EMPTY;
  std::uint64_t bits = 0;
  std::u16string text;
  bool isNull = false;  // for the types that point to something

  /// A variant of its own, which PropVariantClear frees.
  void CopyTo(PROPVARIANT* value) const;
};

/// What the calls that set a value have left: a text for each key, made by the functions below.
using BagAnswers = std::vector<std::pair<PROPERTYKEY, std::string>>;

std::string ShowNumber(ULONG value);
std::string ShowError(HRESULT value);
std::string ShowText(std::string_view text);
std::string ShowBool(bool value);
std::string ShowGuid(const GUID& value);  // its bytes

/// The values that a client writes.
using BagContent = std::vector<std::pair<PROPERTYKEY, BagValue>>;

/// A container that holds `content` to be read, and collects what is set as `answers`; a key that
/// is set again keeps its place. All other calls of the interface end the program.
class PropertyBag final : public IPortableDeviceValues {
 public:
  explicit PropertyBag(BagContent content = {}) : content_(std::move(content)) {}

  const BagAnswers& Answers() const { return answers_; }
  /// How many error values are taken before setting one fails with E_OUTOFMEMORY.
  void TakeErrors(unsigned count) { errorsTaken_ = count; }

  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override;
  HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key, PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, const PROPVARIANT* value) override;
  HRESULT STDMETHODCALLTYPE SetStringValue(REFPROPERTYKEY key, LPCWSTR value) override;
  HRESULT STDMETHODCALLTYPE SetUnsignedIntegerValue(REFPROPERTYKEY key, ULONG value) override;
  HRESULT STDMETHODCALLTYPE SetErrorValue(REFPROPERTYKEY key, HRESULT value) override;
  HRESULT STDMETHODCALLTYPE SetBoolValue(REFPROPERTYKEY key, BOOL value) override;
  HRESULT STDMETHODCALLTYPE SetGuidValue(REFPROPERTYKEY key, REFGUID value) override;

#define UNEXPECTED(Method, ...)                            \
  HRESULT STDMETHODCALLTYPE Method(__VA_ARGS__) override { \
    Unexpected(#Method);                                   \
  }
  UNEXPECTED(QueryInterface, REFIID, void**)
  ULONG STDMETHODCALLTYPE AddRef() override {
    return 1;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    return 1;
  }
  UNEXPECTED(GetValue, REFPROPERTYKEY, PROPVARIANT*)
  UNEXPECTED(GetStringValue, REFPROPERTYKEY, LPWSTR*)
  UNEXPECTED(GetUnsignedIntegerValue, REFPROPERTYKEY, ULONG*)
  UNEXPECTED(SetSignedIntegerValue, REFPROPERTYKEY, LONG)
  UNEXPECTED(GetSignedIntegerValue, REFPROPERTYKEY, LONG*)
  UNEXPECTED(SetUnsignedLargeIntegerValue, REFPROPERTYKEY, ULONGLONG)
  UNEXPECTED(GetUnsignedLargeIntegerValue, REFPROPERTYKEY, ULONGLONG*)
  UNEXPECTED(SetSignedLargeIntegerValue, REFPROPERTYKEY, LONGLONG)
  UNEXPECTED(GetSignedLargeIntegerValue, REFPROPERTYKEY, LONGLONG*)
  UNEXPECTED(SetFloatValue, REFPROPERTYKEY, FLOAT)
  UNEXPECTED(GetFloatValue, REFPROPERTYKEY, FLOAT*)
  UNEXPECTED(GetErrorValue, REFPROPERTYKEY, HRESULT*)
  UNEXPECTED(SetKeyValue, REFPROPERTYKEY, REFPROPERTYKEY)
  UNEXPECTED(GetKeyValue, REFPROPERTYKEY, PROPERTYKEY*)
  UNEXPECTED(GetBoolValue, REFPROPERTYKEY, BOOL*)
  UNEXPECTED(SetIUnknownValue, REFPROPERTYKEY, IUnknown*)
  UNEXPECTED(GetIUnknownValue, REFPROPERTYKEY, IUnknown**)
  UNEXPECTED(GetGuidValue, REFPROPERTYKEY, GUID*)
  UNEXPECTED(SetBufferValue, REFPROPERTYKEY, BYTE*, DWORD)
  UNEXPECTED(GetBufferValue, REFPROPERTYKEY, BYTE**, DWORD*)
  UNEXPECTED(SetIPortableDeviceValuesValue, REFPROPERTYKEY, IPortableDeviceValues*)
  UNEXPECTED(GetIPortableDeviceValuesValue, REFPROPERTYKEY, IPortableDeviceValues**)
  UNEXPECTED(SetIPortableDevicePropVariantCollectionValue, REFPROPERTYKEY,
             IPortableDevicePropVariantCollection*)
  UNEXPECTED(GetIPortableDevicePropVariantCollectionValue, REFPROPERTYKEY,
             IPortableDevicePropVariantCollection**)
  UNEXPECTED(SetIPortableDeviceKeyCollectionValue, REFPROPERTYKEY, IPortableDeviceKeyCollection*)
  UNEXPECTED(GetIPortableDeviceKeyCollectionValue, REFPROPERTYKEY, IPortableDeviceKeyCollection**)
  UNEXPECTED(SetIPortableDeviceValuesCollectionValue, REFPROPERTYKEY,
             IPortableDeviceValuesCollection*)
  UNEXPECTED(GetIPortableDeviceValuesCollectionValue, REFPROPERTYKEY,
             IPortableDeviceValuesCollection**)
  UNEXPECTED(RemoveValue, REFPROPERTYKEY)
  UNEXPECTED(CopyValuesFromPropertyStore, IPropertyStore*)
  UNEXPECTED(CopyValuesToPropertyStore, IPropertyStore*)
  UNEXPECTED(Clear)
#undef UNEXPECTED

 private:
  [[noreturn]] static void Unexpected(const char* method);
  HRESULT Answer(REFPROPERTYKEY key, std::string shown);

  BagContent content_;
  BagAnswers answers_;
  unsigned errorsTaken_ = 0;
};

/// The keys that a client asks for.
class KeyList final : public IPortableDeviceKeyCollection {
 public:
  explicit KeyList(std::vector<PROPERTYKEY> keys) : keys_(std::move(keys)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOTIMPL; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override;
  HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) override;
  HRESULT STDMETHODCALLTYPE Add(REFPROPERTYKEY) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clear() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE RemoveAt(DWORD) override { return E_NOTIMPL; }

 private:
  std::vector<PROPERTYKEY> keys_;
};

}  // namespace fuzz
