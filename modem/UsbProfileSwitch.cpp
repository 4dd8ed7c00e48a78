#include "modem/UsbProfileSwitch.h"

#include <new>
#include <string>

#include "modem/UsbProfileSwitch.trace.h"

namespace stelvane {

namespace {

constexpr DWORD kShutdownPauseMs = 100;
constexpr std::string_view kQueryProfile =
    "AT@usbmwtestfw:usb_profile_get_nvm_configuration(USBPOW_ID_DEFAULT)";
constexpr std::string_view kSetProfile =
    "AT@usbmwtestfw:usb_profile_set_nvm_configuration(USBPOW_ID_DEFAULT,";
constexpr std::string_view kStoreProfile = "AT@nvm:store_nvm(fix_usb)";

bool IsInternalGnssDisabled() {
  DWORD value = 0;
  DWORD size = sizeof(value);
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tavrel\\Stelvane",
                                      L"DisableInternalGNSS", RRF_RT_ANY, nullptr, &value, &size);
  return status == ERROR_SUCCESS && value == 1;
}

std::string Quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

}  // namespace

HRESULT UsbProfileSwitch::DisableInternalGnssIfRequested() noexcept {
  if (!IsInternalGnssDisabled()) return kInternalGnssWanted;
  TRACE(HandOverStarts);
  HRESULT result = E_OUTOFMEMORY;
  try {
    result = HandOver();
  } catch (const std::bad_alloc&) {
    TRACE(HandOverOutOfMemory);
  }
  TRACE(HandOverEnds, result);
  return result;
}

HRESULT UsbProfileSwitch::HandOver() {
  QueryUsbProfile();
  HRESULT result = SetUsbProfile(std::nullopt);
  if (FAILED(result)) return result;
  result = ShutdownEngine();
  if (FAILED(result)) {
    // Not left in MBIM with its engine running.
    SetUsbProfile(answers_.Profile().profile);
    return result;
  }
  Sleep(kShutdownPauseMs);
  return ResetModem();
}

void UsbProfileSwitch::QueryUsbProfile() {
  if (const HRESULT result = engine_.SendCommand(kQueryProfile); FAILED(result)) {
    TRACE(ProfileQueryFailed, result);
    return;
  }
  // The copy too is for the trace alone.
  if (!trace::IsEnabled(trace::ProfileRead::kLevel, trace::ProfileRead::kFlag)) return;
  const UsbProfile profile = answers_.Profile();
  TRACE(ProfileRead, profile.profile.c_str(), profile.options.c_str(), profile.vendorId.c_str(),
        profile.vendorName.c_str(), profile.productId.c_str(), profile.productName.c_str());
}

HRESULT UsbProfileSwitch::SetUsbProfile(std::optional<std::string_view> profile) {
  // Fields that the query never filled are sent empty.
  const UsbProfile stored = answers_.Profile();
  const std::string command = std::string(kSetProfile) + Quoted(profile.value_or("MBIM")) + "," +
                              Quoted(stored.options) + "," + stored.vendorId + "," +
                              Quoted(stored.vendorName) + "," + stored.productId + "," +
                              Quoted(stored.productName) + ")";
  RETURN_IF_FAILED(engine_.SendCommand(command), ProfileNotSet);
  RETURN_IF_FAILED(engine_.SendCommand(kStoreProfile), ProfileNotStored);
  return S_OK;
}

HRESULT UsbProfileSwitch::ShutdownEngine() {
  RETURN_IF_FAILED(engine_.SendCommand("AT", "XLCSSHUTDOWN"), ShutdownFailed);
  return S_OK;
}

HRESULT UsbProfileSwitch::ResetModem() {
  RETURN_IF_FAILED(engine_.SendCommand("AT", "CFUN", "1,1"), ResetFailed);
  return S_OK;
}

}  // namespace stelvane
