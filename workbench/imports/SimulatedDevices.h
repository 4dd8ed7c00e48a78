// The installed devices that the driver DLL looks up through SetupAPI.
#pragma once

#include <windows.h>

#include <setupapi.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Devices by instance id, and the information lists opened on them. Any thread may call it.
class SimulatedDevices {
 public:
  /// A device; without a description, reading it fails with ERROR_NOT_FOUND. Ids have no case.
  void Add(std::wstring_view instanceId, std::optional<std::wstring> description);
  void Remove(std::wstring_view instanceId);

  /// As the SetupAPI functions of the same names, for the description property.
  HDEVINFO CreateList();
  bool Open(HDEVINFO list, const wchar_t* instanceId, SP_DEVINFO_DATA* data);
  bool GetProperty(HDEVINFO list, const SP_DEVINFO_DATA* data, const DEVPROPKEY* key,
                   DEVPROPTYPE* type, BYTE* buffer, DWORD size, DWORD* required);
  bool DestroyList(HDEVINFO list);

 private:
  struct Device {
    std::wstring instanceId;  // upper case
    std::optional<std::wstring> description;
  };
  mutable std::mutex mutex_;
  std::map<DWORD, Device> devices_;               // by device instance number
  std::map<HDEVINFO, std::vector<DWORD>> lists_;  // what each list has opened
  DWORD lastDevice_ = 0;
  std::uintptr_t lastList_ = 0;
};

}  // namespace bench
