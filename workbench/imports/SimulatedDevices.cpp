#include "workbench/imports/SimulatedDevices.h"

#include <algorithm>
#include <cstring>
#include <cwctype>
#include <utility>

namespace bench {

namespace {

constexpr DEVPROPKEY kDescription = {
    {0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 2};
constexpr DEVPROPTYPE kTextProperty = 0x12;
constexpr std::uintptr_t kFirstList = 0x5e700000;  // no handle of the system looks like it

std::wstring Upper(std::wstring_view text) {
  std::wstring upper(text);
  for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(c));
  return upper;
}

bool Fail(DWORD error) {
  SetLastError(error);
  return false;
}

}  // namespace

void SimulatedDevices::Add(std::wstring_view instanceId, std::optional<std::wstring> description) {
  Remove(instanceId);
  const std::lock_guard lock(mutex_);
  devices_[++lastDevice_] = {Upper(instanceId), std::move(description)};
}

void SimulatedDevices::Remove(std::wstring_view instanceId) {
  const std::lock_guard lock(mutex_);
  std::erase_if(devices_, [id = Upper(instanceId)](const auto& device) {
    return device.second.instanceId == id;
  });
}

HDEVINFO SimulatedDevices::CreateList() {
  const std::lock_guard lock(mutex_);
  const auto list = reinterpret_cast<HDEVINFO>(kFirstList + ++lastList_);
  lists_[list] = {};
  return list;
}

bool SimulatedDevices::Open(HDEVINFO list, const wchar_t* instanceId, SP_DEVINFO_DATA* data) {
  const std::lock_guard lock(mutex_);
  const auto opened = lists_.find(list);
  if (opened == lists_.end()) return Fail(ERROR_INVALID_HANDLE);
  if (instanceId == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (data != nullptr && data->cbSize != sizeof *data) return Fail(ERROR_INVALID_USER_BUFFER);
  const auto device = std::find_if(
      devices_.begin(), devices_.end(),
      [id = Upper(instanceId)](const auto& entry) { return entry.second.instanceId == id; });
  if (device == devices_.end()) return Fail(ERROR_NO_SUCH_DEVINST);
  opened->second.push_back(device->first);
  if (data != nullptr) data->DevInst = device->first;
  return true;
}

bool SimulatedDevices::GetProperty(HDEVINFO list, const SP_DEVINFO_DATA* data,
                                   const DEVPROPKEY* key, DEVPROPTYPE* type, BYTE* buffer,
                                   DWORD size, DWORD* required) {
  const std::lock_guard lock(mutex_);
  const auto opened = lists_.find(list);
  if (opened == lists_.end()) return Fail(ERROR_INVALID_HANDLE);
  if (data == nullptr || data->cbSize != sizeof *data) return Fail(ERROR_INVALID_USER_BUFFER);
  if (key == nullptr || type == nullptr || (buffer == nullptr && size != 0)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (std::find(opened->second.begin(), opened->second.end(), data->DevInst) ==
      opened->second.end()) {
    return Fail(ERROR_NO_SUCH_DEVINST);
  }
  const auto device = devices_.find(data->DevInst);
  if (device == devices_.end()) return Fail(ERROR_NO_SUCH_DEVINST);
  const std::optional<std::wstring>& text = device->second.description;
  const bool known = IsEqualGUID(key->fmtid, kDescription.fmtid) && key->pid == kDescription.pid;
  if (!known || !text) return Fail(ERROR_NOT_FOUND);
  const auto needed = static_cast<DWORD>((text->size() + 1) * sizeof(wchar_t));
  *type = kTextProperty;
  if (required != nullptr) *required = needed;
  if (size < needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
  std::memcpy(buffer, text->c_str(), needed);
  return true;
}

bool SimulatedDevices::DestroyList(HDEVINFO list) {
  const std::lock_guard lock(mutex_);
  return lists_.erase(list) != 0 || Fail(ERROR_INVALID_HANDLE);
}

}  // namespace bench
