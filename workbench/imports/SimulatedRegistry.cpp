#include "workbench/imports/SimulatedRegistry.h"

#include <cstring>
#include <cwctype>
#include <utility>

namespace bench {

namespace {

std::wstring Folded(std::wstring_view name) {
  std::wstring folded(name);
  for (wchar_t& c : folded) c = static_cast<wchar_t>(std::towlower(c));
  return folded;
}

// The bit of RegGetValueW's flags that admits a type.
DWORD AdmittedBy(DWORD type) {
  switch (type) {
    case REG_NONE:
      return RRF_RT_REG_NONE;
    case REG_SZ:
      return RRF_RT_REG_SZ;
    case REG_EXPAND_SZ:
      return RRF_RT_REG_EXPAND_SZ;
    case REG_BINARY:
      return RRF_RT_REG_BINARY;
    case REG_DWORD:
      return RRF_RT_REG_DWORD;
    case REG_MULTI_SZ:
      return RRF_RT_REG_MULTI_SZ;
    case REG_QWORD:
      return RRF_RT_REG_QWORD;
    default:
      return 0;
  }
}

bool Admits(DWORD flags, DWORD type) {
  return (flags & RRF_RT_ANY) == RRF_RT_ANY || (flags & AdmittedBy(type)) != 0;
}

}  // namespace

void SimulatedRegistry::SetDword(HKEY root, std::wstring_view key, std::wstring_view value,
                                 DWORD data) {
  std::vector<BYTE> bytes(sizeof data);
  std::memcpy(bytes.data(), &data, sizeof data);
  Set(root, key, value, REG_DWORD, std::move(bytes));
}

void SimulatedRegistry::SetText(HKEY root, std::wstring_view key, std::wstring_view value,
                                std::wstring_view data) {
  const std::wstring text(data);
  std::vector<BYTE> bytes((text.size() + 1) * sizeof(wchar_t));
  std::memcpy(bytes.data(), text.c_str(), bytes.size());
  Set(root, key, value, REG_SZ, std::move(bytes));
}

void SimulatedRegistry::Set(HKEY root, std::wstring_view key, std::wstring_view value, DWORD type,
                            std::vector<BYTE> data) {
  const std::lock_guard lock(mutex_);
  values_[{root, Folded(key), Folded(value)}] = {type, std::move(data)};
}

void SimulatedRegistry::Remove(HKEY root, std::wstring_view key, std::wstring_view value) {
  const std::lock_guard lock(mutex_);
  values_.erase({root, Folded(key), Folded(value)});
}

std::vector<RegistryRead> SimulatedRegistry::Reads() const {
  const std::lock_guard lock(mutex_);
  return reads_;
}

LSTATUS SimulatedRegistry::Get(HKEY root, const wchar_t* key, const wchar_t* value, DWORD flags,
                               DWORD* type, void* data, DWORD* size) {
  const std::wstring keyName = key != nullptr ? key : L"";
  const std::wstring valueName = value != nullptr ? value : L"";
  const std::lock_guard lock(mutex_);
  const LSTATUS result = Look({root, Folded(keyName), Folded(valueName)}, flags, type, data, size);
  reads_.push_back({root, keyName, valueName, result});
  return result;
}

LSTATUS SimulatedRegistry::Look(const Name& name, DWORD flags, DWORD* type, void* data,
                                DWORD* size) const {
  if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
  const auto found = values_.find(name);
  if (found == values_.end()) return ERROR_FILE_NOT_FOUND;
  const Value& value = found->second;
  const DWORD given = size != nullptr ? *size : 0;
  if (type != nullptr) *type = value.type;
  if (size != nullptr) *size = static_cast<DWORD>(value.data.size());
  if (!Admits(flags, value.type)) return ERROR_UNSUPPORTED_TYPE;
  if (data == nullptr) return ERROR_SUCCESS;
  if (given < value.data.size()) return ERROR_MORE_DATA;
  std::memcpy(data, value.data.data(), value.data.size());
  return ERROR_SUCCESS;
}

}  // namespace bench
