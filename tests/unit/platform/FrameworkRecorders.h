// Recording implementations of the framework's objects.
#pragma once

#include "platform/WdfDevice.h"
#include "platform/WdfDriver.h"
#include "platform/WdfRequest.h"
#include "tests/unit/platform/CallbackRecorders.h"

namespace platform_test {

template <class Interface = IWDFDriver>
struct WDFDriverRecorder : WDFObjectRecorder<Interface> {
  RECORD(HRESULT, CreateDevice, IWDFDeviceInitialize*, IUnknown*, IWDFDevice**);
  RECORD(HRESULT, CreateWdfObject, IUnknown*, IWDFObject*, IWDFObject**);
  RECORD(HRESULT, CreatePreallocatedWdfMemory, BYTE*, SIZE_T, IUnknown*, IWDFObject*, IWDFMemory**);
  RECORD(HRESULT, CreateWdfMemory, SIZE_T, IUnknown*, IWDFObject*, IWDFMemory**);
  RECORD(BOOL, IsVersionAvailable, UMDF_VERSION_DATA*);
  RECORD(HRESULT, RetrieveVersionString, PWSTR, DWORD*);
};

template <class Interface = IWDFDeviceInitialize>
struct WDFDeviceInitializeRecorder : UnknownRecorder<Interface> {
  RECORD(void, SetFilter);
  RECORD(void, SetLockingConstraint, WDF_CALLBACK_CONSTRAINT);
  RECORD(HRESULT, RetrieveDevicePropertyStore, PCWSTR, WDF_PROPERTY_STORE_RETRIEVE_FLAGS,
         IWDFNamedPropertyStore**, WDF_PROPERTY_STORE_DISPOSITION*);
  RECORD(void, SetPowerPolicyOwnership, BOOL);
  RECORD(void, AutoForwardCreateCleanupClose, WDF_TRI_STATE);
  RECORD(HRESULT, RetrieveDeviceInstanceId, PWSTR, DWORD*);
  RECORD(void, SetPnpCapability, WDF_PNP_CAPABILITY, WDF_TRI_STATE);
  RECORD(WDF_TRI_STATE, GetPnpCapability, WDF_PNP_CAPABILITY);
};

template <class Interface = IWDFDevice>
struct WDFDeviceRecorder : WDFObjectRecorder<Interface> {
  RECORD(HRESULT, RetrieveDevicePropertyStore, PCWSTR, WDF_PROPERTY_STORE_RETRIEVE_FLAGS,
         IWDFNamedPropertyStore**, WDF_PROPERTY_STORE_DISPOSITION*);
  RECORD(void, GetDriver, IWDFDriver**);
  RECORD(HRESULT, RetrieveDeviceInstanceId, PWSTR, DWORD*);
  RECORD(void, GetDefaultIoTarget, IWDFIoTarget**);
  RECORD(HRESULT, CreateWdfFile, LPCWSTR, IWDFDriverCreatedFile**);
  RECORD(void, GetDefaultIoQueue, IWDFIoQueue**);
  RECORD(HRESULT, CreateIoQueue, IUnknown*, BOOL, WDF_IO_QUEUE_DISPATCH_TYPE, BOOL, BOOL,
         IWDFIoQueue**);
  RECORD(HRESULT, CreateDeviceInterface, LPCGUID, PCWSTR);
  RECORD(HRESULT, AssignDeviceInterfaceState, LPCGUID, PCWSTR, BOOL);
  RECORD(HRESULT, RetrieveDeviceName, PWSTR, DWORD*);
  RECORD(HRESULT, PostEvent, REFGUID, WDF_EVENT_TYPE, BYTE*, DWORD);
  RECORD(HRESULT, ConfigureRequestDispatching, IWDFIoQueue*, WDF_REQUEST_TYPE, BOOL);
  RECORD(void, SetPnpState, WDF_PNP_STATE, WDF_TRI_STATE);
  RECORD(WDF_TRI_STATE, GetPnpState, WDF_PNP_STATE);
  RECORD(void, CommitPnpState);
  RECORD(HRESULT, CreateRequest, IUnknown*, IWDFObject*, IWDFIoRequest**);
  RECORD(HRESULT, CreateSymbolicLink, PCWSTR);
};

template <class Interface = IWDFDevice2>
struct WDFDevice2Recorder : WDFDeviceRecorder<Interface> {
  RECORD(HRESULT, AssignS0IdleSettings, WDF_POWER_POLICY_S0_IDLE_CAPABILITIES, DEVICE_POWER_STATE,
         ULONG, WDF_POWER_POLICY_S0_IDLE_USER_CONTROL, WDF_TRI_STATE);
  RECORD(HRESULT, StopIdle, BOOL);
  RECORD(void, ResumeIdle);
  RECORD(HRESULT, CreateSymbolicLinkWithReferenceString, PCWSTR, PCWSTR);
  RECORD(HRESULT, RegisterRemoteInterfaceNotification, LPCGUID, BOOL);
  RECORD(HRESULT, CreateRemoteInterface, IWDFRemoteInterfaceInitialize*, IUnknown*,
         IWDFRemoteInterface**);
  RECORD(HRESULT, CreateRemoteTarget, IUnknown*, IWDFObject*, IWDFRemoteTarget**);
  RECORD(void, GetDeviceStackIoTypePreference, WDF_DEVICE_IO_TYPE*, WDF_DEVICE_IO_TYPE*);
  RECORD(HRESULT, AssignSxWakeSettings, DEVICE_POWER_STATE, WDF_POWER_POLICY_SX_WAKE_USER_CONTROL,
         WDF_TRI_STATE);
  RECORD(POWER_ACTION, GetSystemPowerAction);
};

template <class Interface = IWDFDevice3>
struct WDFDevice3Recorder : WDFDevice2Recorder<Interface> {
  RECORD(HRESULT, MapIoSpace, PHYSICAL_ADDRESS, SIZE_T, MEMORY_CACHING_TYPE, void**);
  RECORD(void, UnmapIoSpace, void*, SIZE_T);
  RECORD(void*, GetHardwareRegisterMappedAddress, void*);
  RECORD(SIZE_T, ReadFromHardware, WDF_DEVICE_HWACCESS_TARGET_TYPE, WDF_DEVICE_HWACCESS_TARGET_SIZE,
         void*, void*, ULONG);
  RECORD(void, WriteToHardware, WDF_DEVICE_HWACCESS_TARGET_TYPE, WDF_DEVICE_HWACCESS_TARGET_SIZE,
         void*, SIZE_T, void*, ULONG);
  RECORD(HRESULT, CreateInterrupt, PWUDF_INTERRUPT_CONFIG, IWDFInterrupt**);
  RECORD(HRESULT, CreateWorkItem, PWUDF_WORKITEM_CONFIG, IWDFObject*, IWDFWorkItem**);
  RECORD(HRESULT, AssignS0IdleSettingsEx, PWUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS);
};

template <class Interface = IWDFNamedPropertyStore>
struct WDFNamedPropertyStoreRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetNamedValue, LPCWSTR, PROPVARIANT*);
  RECORD(HRESULT, SetNamedValue, LPCWSTR, const PROPVARIANT*);
  RECORD(HRESULT, GetNameCount, DWORD*);
  RECORD(HRESULT, GetNameAt, DWORD, PWSTR*);
};

template <class Interface = IWDFIoQueue>
struct WDFIoQueueRecorder : WDFObjectRecorder<Interface> {
  RECORD(void, GetDevice, IWDFDevice**);
  RECORD(HRESULT, ConfigureRequestDispatching, WDF_REQUEST_TYPE, BOOL);
  RECORD(WDF_IO_QUEUE_STATE, GetState, ULONG*, ULONG*);
  RECORD(HRESULT, RetrieveNextRequest, IWDFIoRequest**);
  RECORD(HRESULT, RetrieveNextRequestByFileObject, IWDFFile*, IWDFIoRequest**);
  RECORD(void, Start);
  RECORD(void, Stop, IQueueCallbackStateChange*);
  RECORD(void, StopSynchronously);
  RECORD(void, Drain, IQueueCallbackStateChange*);
  RECORD(void, DrainSynchronously);
  RECORD(void, Purge, IQueueCallbackStateChange*);
  RECORD(void, PurgeSynchronously);
};

template <class Interface = IWDFIoRequest>
struct WDFIoRequestRecorder : WDFObjectRecorder<Interface> {
  RECORD(void, CompleteWithInformation, HRESULT, SIZE_T);
  RECORD(void, SetInformation, ULONG_PTR);
  RECORD(void, Complete, HRESULT);
  RECORD(void, SetCompletionCallback, IRequestCallbackRequestCompletion*, void*);
  RECORD(WDF_REQUEST_TYPE, GetType);
  RECORD(void, GetCreateParameters, ULONG*, USHORT*, USHORT*);
  RECORD(void, GetReadParameters, SIZE_T*, LONGLONG*, ULONG*);
  RECORD(void, GetWriteParameters, SIZE_T*, LONGLONG*, ULONG*);
  RECORD(void, GetDeviceIoControlParameters, ULONG*, SIZE_T*, SIZE_T*);
  RECORD(void, GetOutputMemory, IWDFMemory**);
  RECORD(void, GetInputMemory, IWDFMemory**);
  RECORD(void, MarkCancelable, IRequestCallbackCancel*);
  RECORD(HRESULT, UnmarkCancelable);
  RECORD(BOOL, CancelSentRequest);
  RECORD(HRESULT, ForwardToIoQueue, IWDFIoQueue*);
  RECORD(HRESULT, Send, IWDFIoTarget*, ULONG, LONGLONG);
  RECORD(void, GetFileObject, IWDFFile**);
  RECORD(void, FormatUsingCurrentType);
  RECORD(ULONG, GetRequestorProcessId);
  RECORD(void, GetIoQueue, IWDFIoQueue**);
  RECORD(HRESULT, Impersonate, SECURITY_IMPERSONATION_LEVEL, IImpersonateCallback*, void*);
  RECORD(BOOL, IsFrom32BitProcess);
  RECORD(void, GetCompletionParams, IWDFRequestCompletionParams**);
};

template <class Interface = IWDFMemory>
struct WDFMemoryRecorder : WDFObjectRecorder<Interface> {
  RECORD(HRESULT, CopyFromMemory, IWDFMemory*, PWDFMEMORY_OFFSET);
  RECORD(HRESULT, CopyToBuffer, ULONG_PTR, void*, SIZE_T);
  RECORD(HRESULT, CopyFromBuffer, ULONG_PTR, void*, SIZE_T);
  RECORD(SIZE_T, GetSize);
  RECORD(void*, GetDataBuffer, SIZE_T*);
  RECORD(void, SetBuffer, void*, SIZE_T);
};

template <class Interface = IWDFFile>
struct WDFFileRecorder : WDFObjectRecorder<Interface> {
  RECORD(HRESULT, RetrieveFileName, PWSTR, DWORD*);
  RECORD(void, GetDevice, IWDFDevice**);
};

template <class Interface = IWDFRequestCompletionParams>
struct WDFRequestCompletionParamsRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, GetCompletionStatus);
  RECORD(ULONG_PTR, GetInformation);
  RECORD(WDF_REQUEST_TYPE, GetCompletedRequestType);
};

template <class Interface = IWDFIoRequestCompletionParams>
struct WDFIoRequestCompletionParamsRecorder : WDFRequestCompletionParamsRecorder<Interface> {
  RECORD(void, GetWriteParameters, IWDFMemory**, SIZE_T*, SIZE_T*);
  RECORD(void, GetReadParameters, IWDFMemory**, SIZE_T*, SIZE_T*);
  RECORD(void, GetIoctlParameters, ULONG*, IWDFMemory**, SIZE_T*, IWDFMemory**, SIZE_T*, SIZE_T*);
};

template <class Interface = IWDFUsbRequestCompletionParams>
struct WDFUsbRequestCompletionParamsRecorder : WDFRequestCompletionParamsRecorder<Interface> {
  RECORD(WDF_USB_REQUEST_TYPE, GetCompletedUsbRequestType);
  RECORD(void, GetDeviceControlTransferParameters, IWDFMemory**, ULONG*, SIZE_T*,
         PWINUSB_SETUP_PACKET);
  RECORD(void, GetPipeWriteParameters, IWDFMemory**, SIZE_T*, SIZE_T*);
  RECORD(void, GetPipeReadParameters, IWDFMemory**, SIZE_T*, SIZE_T*);
};

template <class Interface = ISensorClassExtension>
struct SensorClassExtensionRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, Initialize, IUnknown*, IUnknown*);
  RECORD(HRESULT, Uninitialize);
  RECORD(HRESULT, ProcessIoControl, IWDFIoRequest*);
  RECORD(HRESULT, PostEvent, LPWSTR, IPortableDeviceValuesCollection*);
  RECORD(HRESULT, PostStateChange, LPWSTR, SensorState);
  RECORD(HRESULT, CleanupFile, IWDFFile*);
};

}  // namespace platform_test
