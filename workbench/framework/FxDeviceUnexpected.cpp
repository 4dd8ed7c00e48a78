// The device's methods that no driver of this kind calls.
#include "workbench/framework/FxDevice.h"

namespace bench {

void FxDevice::GetDefaultIoTarget(IWDFIoTarget** ioTarget) {
  *ioTarget = nullptr;
  Unexpected("IWDFDevice::GetDefaultIoTarget");
}

HRESULT FxDevice::CreateWdfFile(LPCWSTR, IWDFDriverCreatedFile**) {
  return Unexpected("IWDFDevice::CreateWdfFile");
}

HRESULT FxDevice::RetrieveDeviceName(PWSTR, DWORD*) {
  return Unexpected("IWDFDevice::RetrieveDeviceName");
}

HRESULT FxDevice::PostEvent(REFGUID, WDF_EVENT_TYPE, BYTE*, DWORD) {
  return Unexpected("IWDFDevice::PostEvent");
}

HRESULT FxDevice::ConfigureRequestDispatching(IWDFIoQueue*, WDF_REQUEST_TYPE, BOOL) {
  return Unexpected("IWDFDevice::ConfigureRequestDispatching");
}

void FxDevice::SetPnpState(WDF_PNP_STATE, WDF_TRI_STATE) {
  Unexpected("IWDFDevice::SetPnpState");
}

WDF_TRI_STATE FxDevice::GetPnpState(WDF_PNP_STATE) {
  Unexpected("IWDFDevice::GetPnpState");
  return WdfUseDefault;
}

void FxDevice::CommitPnpState() {
  Unexpected("IWDFDevice::CommitPnpState");
}

HRESULT FxDevice::CreateSymbolicLink(PCWSTR) {
  return Unexpected("IWDFDevice::CreateSymbolicLink");
}

HRESULT FxDevice::AssignS0IdleSettings(WDF_POWER_POLICY_S0_IDLE_CAPABILITIES, DEVICE_POWER_STATE,
                                       ULONG, WDF_POWER_POLICY_S0_IDLE_USER_CONTROL,
                                       WDF_TRI_STATE) {
  return Unexpected("IWDFDevice2::AssignS0IdleSettings");
}

HRESULT FxDevice::CreateSymbolicLinkWithReferenceString(PCWSTR, PCWSTR) {
  return Unexpected("IWDFDevice2::CreateSymbolicLinkWithReferenceString");
}

HRESULT FxDevice::RegisterRemoteInterfaceNotification(LPCGUID, BOOL) {
  return Unexpected("IWDFDevice2::RegisterRemoteInterfaceNotification");
}

HRESULT FxDevice::CreateRemoteInterface(IWDFRemoteInterfaceInitialize*, IUnknown*,
                                        IWDFRemoteInterface**) {
  return Unexpected("IWDFDevice2::CreateRemoteInterface");
}

HRESULT FxDevice::CreateRemoteTarget(IUnknown*, IWDFObject*, IWDFRemoteTarget**) {
  return Unexpected("IWDFDevice2::CreateRemoteTarget");
}

void FxDevice::GetDeviceStackIoTypePreference(WDF_DEVICE_IO_TYPE*, WDF_DEVICE_IO_TYPE*) {
  Unexpected("IWDFDevice2::GetDeviceStackIoTypePreference");
}

HRESULT FxDevice::AssignSxWakeSettings(DEVICE_POWER_STATE, WDF_POWER_POLICY_SX_WAKE_USER_CONTROL,
                                       WDF_TRI_STATE) {
  return Unexpected("IWDFDevice2::AssignSxWakeSettings");
}

POWER_ACTION FxDevice::GetSystemPowerAction() {
  Unexpected("IWDFDevice2::GetSystemPowerAction");
  return PowerActionNone;
}

HRESULT FxDevice::MapIoSpace(PHYSICAL_ADDRESS, SIZE_T, MEMORY_CACHING_TYPE, void**) {
  return Unexpected("IWDFDevice3::MapIoSpace");
}

void FxDevice::UnmapIoSpace(void*, SIZE_T) {
  Unexpected("IWDFDevice3::UnmapIoSpace");
}

void* FxDevice::GetHardwareRegisterMappedAddress(void*) {
  Unexpected("IWDFDevice3::GetHardwareRegisterMappedAddress");
  return nullptr;
}

SIZE_T FxDevice::ReadFromHardware(WDF_DEVICE_HWACCESS_TARGET_TYPE, WDF_DEVICE_HWACCESS_TARGET_SIZE,
                                  void*, void*, ULONG) {
  Unexpected("IWDFDevice3::ReadFromHardware");
  return 0;
}

void FxDevice::WriteToHardware(WDF_DEVICE_HWACCESS_TARGET_TYPE, WDF_DEVICE_HWACCESS_TARGET_SIZE,
                               void*, SIZE_T, void*, ULONG) {
  Unexpected("IWDFDevice3::WriteToHardware");
}

HRESULT FxDevice::CreateInterrupt(PWUDF_INTERRUPT_CONFIG, IWDFInterrupt**) {
  return Unexpected("IWDFDevice3::CreateInterrupt");
}

HRESULT FxDevice::CreateWorkItem(PWUDF_WORKITEM_CONFIG, IWDFObject*, IWDFWorkItem**) {
  return Unexpected("IWDFDevice3::CreateWorkItem");
}

}  // namespace bench
