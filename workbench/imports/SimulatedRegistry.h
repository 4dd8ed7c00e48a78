// The registry values that the driver DLL reads.
#pragma once

#include <windows.h>

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace bench {

/// One call of RegGetValueW.
struct RegistryRead {
  HKEY root;
  std::wstring key;
  std::wstring value;
  LSTATUS result;
};

/// A registry that holds what the test has put into it and nothing else. Any thread may call it.
class SimulatedRegistry {
 public:
  /// Key and value names are compared without case.
  void SetDword(HKEY root, std::wstring_view key, std::wstring_view value, DWORD data);
  void SetText(HKEY root, std::wstring_view key, std::wstring_view value, std::wstring_view data);
  void Set(HKEY root, std::wstring_view key, std::wstring_view value, DWORD type,
           std::vector<BYTE> data);
  void Remove(HKEY root, std::wstring_view key, std::wstring_view value);

  /// Every read so far, in order.
  std::vector<RegistryRead> Reads() const;

  /// As RegGetValueW: an absent value is ERROR_FILE_NOT_FOUND, a type that `flags` does not admit
  /// ERROR_UNSUPPORTED_TYPE, a short buffer ERROR_MORE_DATA; the last two give type and size.
  LSTATUS Get(HKEY root, const wchar_t* key, const wchar_t* value, DWORD flags, DWORD* type,
              void* data, DWORD* size);

 private:
  using Name = std::tuple<HKEY, std::wstring, std::wstring>;
  struct Value {
    DWORD type;
    std::vector<BYTE> data;
  };
  LSTATUS Look(const Name& name, DWORD flags, DWORD* type, void* data, DWORD* size) const;

  mutable std::mutex mutex_;
  std::map<Name, Value> values_;
  std::vector<RegistryRead> reads_;
};

}  // namespace bench
