// The framework device, its idle control and its registry property store.
#pragma once

#include <propidl.h>

#include "platform/Iid.h"
#include "platform/WdfObject.h"
#include "platform/WdfTypes.h"

struct IWDFDriver;
struct IWDFDriverCreatedFile;
struct IWDFInterrupt;
struct IWDFIoQueue;
struct IWDFIoRequest;
struct IWDFIoTarget;
struct IWDFNamedPropertyStore;
struct IWDFRemoteInterface;
struct IWDFRemoteInterfaceInitialize;
struct IWDFRemoteTarget;
struct IWDFWorkItem;

struct IWDFDevice : public IWDFObject {
  virtual HRESULT STDMETHODCALLTYPE RetrieveDevicePropertyStore(
      PCWSTR subkey, WDF_PROPERTY_STORE_RETRIEVE_FLAGS flags, IWDFNamedPropertyStore** propStore,
      WDF_PROPERTY_STORE_DISPOSITION* disposition) = 0;
  virtual void STDMETHODCALLTYPE GetDriver(IWDFDriver** driver) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveDeviceInstanceId(PWSTR buffer, DWORD* chars) = 0;
  virtual void STDMETHODCALLTYPE GetDefaultIoTarget(IWDFIoTarget** ioTarget) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateWdfFile(LPCWSTR fileName,
                                                  IWDFDriverCreatedFile** file) = 0;
  virtual void STDMETHODCALLTYPE GetDefaultIoQueue(IWDFIoQueue** ioQueue) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateIoQueue(IUnknown* callbackInterface, BOOL isDefault,
                                                  WDF_IO_QUEUE_DISPATCH_TYPE dispatchType,
                                                  BOOL powerManaged, BOOL allowZeroLength,
                                                  IWDFIoQueue** ioQueue) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateDeviceInterface(LPCGUID deviceInterfaceGuid,
                                                          PCWSTR referenceString) = 0;
  virtual HRESULT STDMETHODCALLTYPE AssignDeviceInterfaceState(LPCGUID deviceInterfaceGuid,
                                                               PCWSTR referenceString,
                                                               BOOL enable) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveDeviceName(PWSTR deviceName, DWORD* chars) = 0;
  virtual HRESULT STDMETHODCALLTYPE PostEvent(REFGUID eventGuid, WDF_EVENT_TYPE eventType,
                                              BYTE* data, DWORD dataSize) = 0;
  virtual HRESULT STDMETHODCALLTYPE ConfigureRequestDispatching(IWDFIoQueue* queue,
                                                                WDF_REQUEST_TYPE requestType,
                                                                BOOL forward) = 0;
  virtual void STDMETHODCALLTYPE SetPnpState(WDF_PNP_STATE state, WDF_TRI_STATE value) = 0;
  virtual WDF_TRI_STATE STDMETHODCALLTYPE GetPnpState(WDF_PNP_STATE state) = 0;
  virtual void STDMETHODCALLTYPE CommitPnpState() = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateRequest(IUnknown* callbackInterface,
                                                  IWDFObject* parentObject,
                                                  IWDFIoRequest** request) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateSymbolicLink(PCWSTR symbolicLink) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFDevice> = {
    0xd657fe45, 0x460a, 0x49c3, {0x82, 0x19, 0x76, 0x6a, 0xe8, 0x03, 0x2a, 0x80}};

struct IWDFDevice2 : public IWDFDevice {
  virtual HRESULT STDMETHODCALLTYPE AssignS0IdleSettings(
      WDF_POWER_POLICY_S0_IDLE_CAPABILITIES idleCaps, DEVICE_POWER_STATE dxState, ULONG idleTimeout,
      WDF_POWER_POLICY_S0_IDLE_USER_CONTROL userControlOfIdleSettings, WDF_TRI_STATE enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE StopIdle(BOOL waitForD0) = 0;
  virtual void STDMETHODCALLTYPE ResumeIdle() = 0;
  virtual HRESULT STDMETHODCALLTYPE
  CreateSymbolicLinkWithReferenceString(PCWSTR symbolicLink, PCWSTR referenceString) = 0;
  virtual HRESULT STDMETHODCALLTYPE RegisterRemoteInterfaceNotification(
      LPCGUID deviceInterfaceGuid, BOOL includeExistingInterfaces) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  CreateRemoteInterface(IWDFRemoteInterfaceInitialize* remoteInterfaceInit,
                        IUnknown* callbackInterface, IWDFRemoteInterface** remoteInterface) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateRemoteTarget(IUnknown* callbackInterface,
                                                       IWDFObject* parentObject,
                                                       IWDFRemoteTarget** remoteTarget) = 0;
  virtual void STDMETHODCALLTYPE GetDeviceStackIoTypePreference(
      WDF_DEVICE_IO_TYPE* readWritePreference, WDF_DEVICE_IO_TYPE* ioControlPreference) = 0;
  virtual HRESULT STDMETHODCALLTYPE AssignSxWakeSettings(
      DEVICE_POWER_STATE dxState, WDF_POWER_POLICY_SX_WAKE_USER_CONTROL userControlOfWakeSettings,
      WDF_TRI_STATE enabled) = 0;
  virtual POWER_ACTION STDMETHODCALLTYPE GetSystemPowerAction() = 0;
};
template <>
inline constexpr GUID iidOf<IWDFDevice2> = {
    0x1b0d07b1, 0xf596, 0x4a76, {0x99, 0xb3, 0xb9, 0x49, 0x2a, 0xd8, 0xdf, 0x9f}};

struct IWDFDevice3 : public IWDFDevice2 {
  virtual HRESULT STDMETHODCALLTYPE MapIoSpace(PHYSICAL_ADDRESS physicalAddress,
                                               SIZE_T numberOfBytes, MEMORY_CACHING_TYPE cacheType,
                                               void** pseudoBaseAddress) = 0;
  virtual void STDMETHODCALLTYPE UnmapIoSpace(void* pseudoBaseAddress, SIZE_T numberOfBytes) = 0;
  virtual void* STDMETHODCALLTYPE GetHardwareRegisterMappedAddress(void* pseudoBaseAddress) = 0;
  virtual SIZE_T STDMETHODCALLTYPE ReadFromHardware(WDF_DEVICE_HWACCESS_TARGET_TYPE type,
                                                    WDF_DEVICE_HWACCESS_TARGET_SIZE size,
                                                    void* address, void* buffer, ULONG count) = 0;
  virtual void STDMETHODCALLTYPE WriteToHardware(WDF_DEVICE_HWACCESS_TARGET_TYPE type,
                                                 WDF_DEVICE_HWACCESS_TARGET_SIZE size,
                                                 void* address, SIZE_T value, void* buffer,
                                                 ULONG count) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateInterrupt(PWUDF_INTERRUPT_CONFIG configuration,
                                                    IWDFInterrupt** interrupt) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateWorkItem(PWUDF_WORKITEM_CONFIG config,
                                                   IWDFObject* parentObject,
                                                   IWDFWorkItem** workItem) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  AssignS0IdleSettingsEx(PWUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS idleSettings) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFDevice3> = {
    0x863d943a, 0xc9cd, 0x4655, {0xa8, 0xd6, 0xc8, 0x4e, 0xf4, 0x11, 0xcc, 0x0d}};

struct IWDFNamedPropertyStore : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetNamedValue(LPCWSTR name, PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetNamedValue(LPCWSTR name, const PROPVARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNameCount(DWORD* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNameAt(DWORD index, PWSTR* name) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFNamedPropertyStore> = {
    0x394b48c9, 0xbca0, 0x498f, {0x8e, 0x2c, 0x01, 0x22, 0x54, 0x64, 0xa9, 0x32}};
