// The framework's device object: maker of queues, requests and the USB target, holder of the idle
// count and the device interfaces.
#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/WdfDevice.h"
#include "platform/WdfUsb.h"
#include "workbench/framework/DevicePlan.h"
#include "workbench/framework/FxDeviceInit.h"
#include "workbench/framework/FxObject.h"
#include "workbench/framework/UsbFunction.h"

namespace bench {

class FxDriver;
class FxQueue;
class FxUsbDevice;

/// The interfaces that the device's callback object has; null where it has none.
struct DeviceCallbackSet {
  stelvane::ComPtr<IPnpCallback> pnp;
  stelvane::ComPtr<IPnpCallbackHardware> hardware;
  stelvane::ComPtr<IPnpCallbackSelfManagedIo> selfManagedIo;
  stelvane::ComPtr<IFileCallbackCleanup> fileCleanup;
};

class FxDevice final : public FxObject<IWDFDevice3, IWDFUsbTargetFactory> {
 public:
  FxDevice(const World& world, FxDriver& driver, const DevicePlan& plan, UsbFunction& usb,
           FxDeviceInit::Choices choices);

  /// Asks the callback object for its interfaces and keeps them until the device's end.
  void TakeCallbacks(IUnknown& callbackObject);
  const DeviceCallbackSet& callbacks() const { return callbacks_; }

  // ---- What tests look at.
  const FxDeviceInit::Choices& choices() const { return choices_; }
  FxQueue* DefaultQueue() const;
  /// The USB target that is open now; null if none.
  FxUsbDevice* UsbTarget() const;
  struct DeviceInterface {
    GUID id;
    bool enabled = false;
  };
  std::vector<DeviceInterface> DeviceInterfaces() const;
  std::optional<WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS> IdleSettings() const;
  /// StopIdle calls less ResumeIdle calls.
  int IdleHolds() const { return idleHolds_; }
  /// StopIdle calls that did not wait for the working state.
  int UnwaitedStopIdles() const { return unwaitedStopIdles_; }

  // ---- What the host tells it.
  void EnteredWorkingState() { wasWorking_ = true; }
  /// Reports idle holds that were never given back.
  void CheckIdleBalance() const;

  // IWDFDevice
  HRESULT STDMETHODCALLTYPE RetrieveDevicePropertyStore(
      PCWSTR subkey, WDF_PROPERTY_STORE_RETRIEVE_FLAGS flags, IWDFNamedPropertyStore** propStore,
      WDF_PROPERTY_STORE_DISPOSITION* disposition) override;
  void STDMETHODCALLTYPE GetDriver(IWDFDriver** driver) override;
  HRESULT STDMETHODCALLTYPE RetrieveDeviceInstanceId(PWSTR buffer, DWORD* chars) override;
  void STDMETHODCALLTYPE GetDefaultIoTarget(IWDFIoTarget** ioTarget) override;
  HRESULT STDMETHODCALLTYPE CreateWdfFile(LPCWSTR fileName, IWDFDriverCreatedFile** file) override;
  void STDMETHODCALLTYPE GetDefaultIoQueue(IWDFIoQueue** ioQueue) override;
  HRESULT STDMETHODCALLTYPE CreateIoQueue(IUnknown* callbackInterface, BOOL isDefault,
                                          WDF_IO_QUEUE_DISPATCH_TYPE dispatchType,
                                          BOOL powerManaged, BOOL allowZeroLength,
                                          IWDFIoQueue** ioQueue) override;
  HRESULT STDMETHODCALLTYPE CreateDeviceInterface(LPCGUID deviceInterfaceGuid,
                                                  PCWSTR referenceString) override;
  HRESULT STDMETHODCALLTYPE AssignDeviceInterfaceState(LPCGUID deviceInterfaceGuid,
                                                       PCWSTR referenceString,
                                                       BOOL enable) override;
  HRESULT STDMETHODCALLTYPE RetrieveDeviceName(PWSTR deviceName, DWORD* chars) override;
  HRESULT STDMETHODCALLTYPE PostEvent(REFGUID eventGuid, WDF_EVENT_TYPE eventType, BYTE* data,
                                      DWORD dataSize) override;
  HRESULT STDMETHODCALLTYPE ConfigureRequestDispatching(IWDFIoQueue* queue,
                                                        WDF_REQUEST_TYPE requestType,
                                                        BOOL forward) override;
  void STDMETHODCALLTYPE SetPnpState(WDF_PNP_STATE state, WDF_TRI_STATE value) override;
  WDF_TRI_STATE STDMETHODCALLTYPE GetPnpState(WDF_PNP_STATE state) override;
  void STDMETHODCALLTYPE CommitPnpState() override;
  HRESULT STDMETHODCALLTYPE CreateRequest(IUnknown* callbackInterface, IWDFObject* parentObject,
                                          IWDFIoRequest** request) override;
  HRESULT STDMETHODCALLTYPE CreateSymbolicLink(PCWSTR symbolicLink) override;
  // IWDFDevice2
  HRESULT STDMETHODCALLTYPE AssignS0IdleSettings(
      WDF_POWER_POLICY_S0_IDLE_CAPABILITIES idleCaps, DEVICE_POWER_STATE dxState, ULONG idleTimeout,
      WDF_POWER_POLICY_S0_IDLE_USER_CONTROL userControlOfIdleSettings,
      WDF_TRI_STATE enabled) override;
  HRESULT STDMETHODCALLTYPE StopIdle(BOOL waitForD0) override;
  void STDMETHODCALLTYPE ResumeIdle() override;
  HRESULT STDMETHODCALLTYPE CreateSymbolicLinkWithReferenceString(PCWSTR symbolicLink,
                                                                  PCWSTR referenceString) override;
  HRESULT STDMETHODCALLTYPE RegisterRemoteInterfaceNotification(
      LPCGUID deviceInterfaceGuid, BOOL includeExistingInterfaces) override;
  HRESULT STDMETHODCALLTYPE CreateRemoteInterface(
      IWDFRemoteInterfaceInitialize* remoteInterfaceInit, IUnknown* callbackInterface,
      IWDFRemoteInterface** remoteInterface) override;
  HRESULT STDMETHODCALLTYPE CreateRemoteTarget(IUnknown* callbackInterface,
                                               IWDFObject* parentObject,
                                               IWDFRemoteTarget** remoteTarget) override;
  void STDMETHODCALLTYPE GetDeviceStackIoTypePreference(
      WDF_DEVICE_IO_TYPE* readWritePreference, WDF_DEVICE_IO_TYPE* ioControlPreference) override;
  HRESULT STDMETHODCALLTYPE AssignSxWakeSettings(
      DEVICE_POWER_STATE dxState, WDF_POWER_POLICY_SX_WAKE_USER_CONTROL userControlOfWakeSettings,
      WDF_TRI_STATE enabled) override;
  POWER_ACTION STDMETHODCALLTYPE GetSystemPowerAction() override;
  // IWDFDevice3
  HRESULT STDMETHODCALLTYPE MapIoSpace(PHYSICAL_ADDRESS physicalAddress, SIZE_T numberOfBytes,
                                       MEMORY_CACHING_TYPE cacheType,
                                       void** pseudoBaseAddress) override;
  void STDMETHODCALLTYPE UnmapIoSpace(void* pseudoBaseAddress, SIZE_T numberOfBytes) override;
  void* STDMETHODCALLTYPE GetHardwareRegisterMappedAddress(void* pseudoBaseAddress) override;
  SIZE_T STDMETHODCALLTYPE ReadFromHardware(WDF_DEVICE_HWACCESS_TARGET_TYPE type,
                                            WDF_DEVICE_HWACCESS_TARGET_SIZE size, void* address,
                                            void* buffer, ULONG count) override;
  void STDMETHODCALLTYPE WriteToHardware(WDF_DEVICE_HWACCESS_TARGET_TYPE type,
                                         WDF_DEVICE_HWACCESS_TARGET_SIZE size, void* address,
                                         SIZE_T value, void* buffer, ULONG count) override;
  HRESULT STDMETHODCALLTYPE CreateInterrupt(PWUDF_INTERRUPT_CONFIG configuration,
                                            IWDFInterrupt** interrupt) override;
  HRESULT STDMETHODCALLTYPE CreateWorkItem(PWUDF_WORKITEM_CONFIG config, IWDFObject* parentObject,
                                           IWDFWorkItem** workItem) override;
  HRESULT STDMETHODCALLTYPE
  AssignS0IdleSettingsEx(PWUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS idleSettings) override;
  // IWDFUsbTargetFactory
  /// One target at a time: access is denied while another one is open.
  HRESULT STDMETHODCALLTYPE CreateUsbTargetDevice(IWDFUsbTargetDevice** device) override;

 protected:
  void* Find(const GUID& iid) override;
  void OnDeleted() override;

 private:
  FxDriver& driver_;
  const DevicePlan& plan_;
  UsbFunction& usb_;
  const FxDeviceInit::Choices choices_;
  DeviceCallbackSet callbacks_;
  std::atomic<int> idleHolds_{0};
  std::atomic<int> unwaitedStopIdles_{0};
  std::atomic<bool> wasWorking_{false};
  mutable std::mutex mutex_;  // guards what follows
  FxQueue* defaultQueue_ = nullptr;
  FxUsbDevice* usbTarget_ = nullptr;
  std::vector<DeviceInterface> deviceInterfaces_;
  std::optional<WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS> idleSettings_;
};

}  // namespace bench
