// Recording implementations of the interfaces that the driver implements.
#pragma once

#include "platform/SensorClassExtension.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfObject.h"
#include "tests/unit/platform/Recorder.h"

namespace platform_test {

template <class Interface = IWDFObject>
struct WDFObjectRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, DeleteWdfObject);
  RECORD(HRESULT, AssignContext, IObjectCleanup*, void*);
  RECORD(HRESULT, RetrieveContext, void**);
  RECORD(void, AcquireLock);
  RECORD(void, ReleaseLock);
};

template <class Interface = IDriverEntry>
struct DriverEntryRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, OnInitialize, IWDFDriver*);
  RECORD(HRESULT, OnDeviceAdd, IWDFDriver*, IWDFDeviceInitialize*);
  RECORD(void, OnDeinitialize, IWDFDriver*);
};

template <class Interface = IPnpCallback>
struct PnpCallbackRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, OnD0Entry, IWDFDevice*, WDF_POWER_DEVICE_STATE);
  RECORD(HRESULT, OnD0Exit, IWDFDevice*, WDF_POWER_DEVICE_STATE);
  RECORD(void, OnSurpriseRemoval, IWDFDevice*);
  RECORD(HRESULT, OnQueryRemove, IWDFDevice*);
  RECORD(HRESULT, OnQueryStop, IWDFDevice*);
};

template <class Interface = IPnpCallbackHardware>
struct PnpCallbackHardwareRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, OnPrepareHardware, IWDFDevice*);
  RECORD(HRESULT, OnReleaseHardware, IWDFDevice*);
};

template <class Interface = IPnpCallbackSelfManagedIo>
struct PnpCallbackSelfManagedIoRecorder : UnknownRecorder<Interface> {
  RECORD(void, OnSelfManagedIoCleanup, IWDFDevice*);
  RECORD(void, OnSelfManagedIoFlush, IWDFDevice*);
  RECORD(HRESULT, OnSelfManagedIoInit, IWDFDevice*);
  RECORD(HRESULT, OnSelfManagedIoSuspend, IWDFDevice*);
  RECORD(HRESULT, OnSelfManagedIoRestart, IWDFDevice*);
  RECORD(HRESULT, OnSelfManagedIoStop, IWDFDevice*);
};

template <class Interface = IFileCallbackCleanup>
struct FileCallbackCleanupRecorder : UnknownRecorder<Interface> {
  RECORD(void, OnCleanupFile, IWDFFile*);
};

template <class Interface = IQueueCallbackDeviceIoControl>
struct QueueCallbackDeviceIoControlRecorder : UnknownRecorder<Interface> {
  RECORD(void, OnDeviceIoControl, IWDFIoQueue*, IWDFIoRequest*, ULONG, SIZE_T, SIZE_T);
};

template <class Interface = IObjectCleanup>
struct ObjectCleanupRecorder : UnknownRecorder<Interface> {
  RECORD(void, OnCleanup, IWDFObject*);
};

template <class Interface = IRequestCallbackRequestCompletion>
struct RequestCallbackRequestCompletionRecorder : UnknownRecorder<Interface> {
  RECORD(void, OnCompletion, IWDFIoRequest*, IWDFIoTarget*, IWDFRequestCompletionParams*, void*);
};

template <class Interface = IUsbTargetPipeContinuousReaderCallbackReadComplete>
struct UsbTargetPipeContinuousReaderCallbackReadCompleteRecorder : UnknownRecorder<Interface> {
  RECORD(void, OnReaderCompletion, IWDFUsbTargetPipe*, IWDFMemory*, SIZE_T, PVOID);
};

template <class Interface = IUsbTargetPipeContinuousReaderCallbackReadersFailed>
struct UsbTargetPipeContinuousReaderCallbackReadersFailedRecorder : UnknownRecorder<Interface> {
  RECORD(BOOL, OnReaderFailure, IWDFUsbTargetPipe*, HRESULT);
};

template <class Interface = ISensorDriver>
struct SensorDriverRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, OnGetSupportedSensorObjects, IPortableDeviceValuesCollection**);
  RECORD(HRESULT, OnGetSupportedProperties, LPWSTR, IPortableDeviceKeyCollection**);
  RECORD(HRESULT, OnGetSupportedDataFields, LPWSTR, IPortableDeviceKeyCollection**);
  RECORD(HRESULT, OnGetSupportedEvents, LPWSTR, GUID**, ULONG*);
  RECORD(HRESULT, OnGetProperties, IWDFFile*, LPWSTR, IPortableDeviceKeyCollection*,
         IPortableDeviceValues**);
  RECORD(HRESULT, OnGetDataFields, IWDFFile*, LPWSTR, IPortableDeviceKeyCollection*,
         IPortableDeviceValues**);
  RECORD(HRESULT, OnSetProperties, IWDFFile*, LPWSTR, IPortableDeviceValues*,
         IPortableDeviceValues**);
  RECORD(HRESULT, OnClientConnect, IWDFFile*, LPWSTR);
  RECORD(HRESULT, OnClientDisconnect, IWDFFile*, LPWSTR);
  RECORD(HRESULT, OnClientSubscribeToEvents, IWDFFile*, LPWSTR);
  RECORD(HRESULT, OnClientUnsubscribeFromEvents, IWDFFile*, LPWSTR);
  RECORD(HRESULT, OnProcessWmi, IUnknown*, IUnknown*);
};

}  // namespace platform_test
