// Recording implementations of the I/O and USB targets.
#pragma once

#include "platform/WdfIoTarget.h"
#include "platform/WdfUsb.h"
#include "tests/unit/platform/CallbackRecorders.h"

namespace platform_test {

template <class Interface = IWDFIoTarget>
struct WDFIoTargetRecorder : WDFObjectRecorder<Interface> {
  RECORD(void, GetTargetFile, IWDFFile**);
  RECORD(void, CancelSentRequestsForFile, IWDFFile*);
  RECORD(HRESULT, FormatRequestForRead, IWDFIoRequest*, IWDFFile*, IWDFMemory*, PWDFMEMORY_OFFSET,
         PLONGLONG);
  RECORD(HRESULT, FormatRequestForWrite, IWDFIoRequest*, IWDFFile*, IWDFMemory*, PWDFMEMORY_OFFSET,
         PLONGLONG);
  RECORD(HRESULT, FormatRequestForIoctl, IWDFIoRequest*, ULONG, IWDFFile*, IWDFMemory*,
         PWDFMEMORY_OFFSET, IWDFMemory*, PWDFMEMORY_OFFSET);
};

template <class Interface = IWDFIoTargetStateManagement>
struct WDFIoTargetStateManagementRecorder : UnknownRecorder<Interface> {
  RECORD(WDF_IO_TARGET_STATE, GetState);
  RECORD(HRESULT, Start);
  RECORD(HRESULT, Stop, WDF_IO_TARGET_SENT_IO_ACTION);
  RECORD(HRESULT, Remove, BOOL);
};

template <class Interface = IWDFUsbTargetFactory>
struct WDFUsbTargetFactoryRecorder : UnknownRecorder<Interface> {
  RECORD(HRESULT, CreateUsbTargetDevice, IWDFUsbTargetDevice**);
};

template <class Interface = IWDFUsbTargetDevice>
struct WDFUsbTargetDeviceRecorder : WDFIoTargetRecorder<Interface> {
  RECORD(WINUSB_INTERFACE_HANDLE, GetWinUsbHandle);
  RECORD(UCHAR, GetNumInterfaces);
  RECORD(HRESULT, RetrieveUsbInterface, UCHAR, IWDFUsbInterface**);
  RECORD(HRESULT, FormatRequestForControlTransfer, IWDFIoRequest*, PWINUSB_SETUP_PACKET,
         IWDFMemory*, PWDFMEMORY_OFFSET);
  RECORD(HRESULT, RetrieveDeviceInformation, ULONG, ULONG*, PVOID);
  RECORD(HRESULT, RetrieveDescriptor, UCHAR, UCHAR, USHORT, ULONG*, PVOID);
  RECORD(HRESULT, RetrievePowerPolicy, ULONG, ULONG*, PVOID);
  RECORD(HRESULT, SetPowerPolicy, ULONG, ULONG, PVOID);
};

template <class Interface = IWDFUsbInterface>
struct WDFUsbInterfaceRecorder : WDFObjectRecorder<Interface> {
  RECORD(void, GetInterfaceDescriptor, PUSB_INTERFACE_DESCRIPTOR);
  RECORD(UCHAR, GetInterfaceNumber);
  RECORD(UCHAR, GetNumEndPoints);
  RECORD(UCHAR, GetConfiguredSettingIndex);
  RECORD(HRESULT, SelectSetting, UCHAR);
  RECORD(WINUSB_INTERFACE_HANDLE, GetWinUsbHandle);
  RECORD(HRESULT, RetrieveUsbPipeObject, UCHAR, IWDFUsbTargetPipe**);
};

template <class Interface = IWDFUsbTargetPipe>
struct WDFUsbTargetPipeRecorder : WDFIoTargetRecorder<Interface> {
  RECORD(HRESULT, Abort);
  RECORD(HRESULT, Reset);
  RECORD(HRESULT, Flush);
  RECORD(void, GetInformation, PWINUSB_PIPE_INFORMATION);
  RECORD(BOOL, IsInEndPoint);
  RECORD(BOOL, IsOutEndPoint);
  RECORD(USBD_PIPE_TYPE, GetType);
  RECORD(HRESULT, RetrievePipePolicy, ULONG, ULONG*, PVOID);
  RECORD(HRESULT, SetPipePolicy, ULONG, ULONG, PVOID);
};

template <class Interface = IWDFUsbTargetPipe2>
struct WDFUsbTargetPipe2Recorder : WDFUsbTargetPipeRecorder<Interface> {
  RECORD(HRESULT, ConfigureContinuousReader, SIZE_T, SIZE_T, SIZE_T, UCHAR, IUnknown*,
         IUsbTargetPipeContinuousReaderCallbackReadComplete*, PVOID,
         IUsbTargetPipeContinuousReaderCallbackReadersFailed*);
};

}  // namespace platform_test
