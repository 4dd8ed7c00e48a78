#include "workbench/framework/FxPropertyStore.h"

#include <cstring>

#include "workbench/framework/Text.h"

namespace bench {

namespace {

HRESULT Fill(const RegistryValue& from, PROPVARIANT& value) {
  if (const auto* number = std::get_if<std::uint32_t>(&from)) {
    value.vt = VT_UI4;
    value.ulVal = *number;
    return S_OK;
  }
  if (const auto* text = std::get_if<std::u16string>(&from)) {
    value.pwszVal = static_cast<PWSTR>(CoTaskMemAlloc((text->size() + 1) * sizeof(WCHAR)));
    if (value.pwszVal == nullptr) return E_OUTOFMEMORY;
    CopyText(*text, value.pwszVal);
    value.vt = VT_LPWSTR;
    return S_OK;
  }
  const auto& bytes = std::get<std::vector<std::uint8_t>>(from);
  value.blob.cbSize = static_cast<ULONG>(bytes.size());
  value.blob.pBlobData = static_cast<BYTE*>(CoTaskMemAlloc(bytes.size() + 1));
  if (value.blob.pBlobData == nullptr) return E_OUTOFMEMORY;
  if (!bytes.empty()) std::memcpy(value.blob.pBlobData, bytes.data(), bytes.size());
  value.vt = VT_BLOB;
  return S_OK;
}

}  // namespace

HRESULT FxPropertyStore::GetNamedValue(LPCWSTR name, PROPVARIANT* value) {
  return Invoke("IWDFNamedPropertyStore::GetNamedValue", [&] {
    *value = {};
    const auto place = values_.find(TextOf(name));
    return place == values_.end() ? kFileNotFound : Fill(place->second, *value);
  });
}

HRESULT FxPropertyStore::SetNamedValue(LPCWSTR, const PROPVARIANT*) {
  return Unexpected("IWDFNamedPropertyStore::SetNamedValue");
}

HRESULT FxPropertyStore::GetNameCount(DWORD*) {
  return Unexpected("IWDFNamedPropertyStore::GetNameCount");
}

HRESULT FxPropertyStore::GetNameAt(DWORD, PWSTR*) {
  return Unexpected("IWDFNamedPropertyStore::GetNameAt");
}

}  // namespace bench
