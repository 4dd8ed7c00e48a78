// Values of enumerations and shapes of records, for 64-bit and for 32-bit Windows. All of it is
// proved by the compiler, so that the 32-bit half needs no program to run.
#include <windows.h>

#include <devpropdef.h>
#include <evntrace.h>
#include <oaidl.h>
#include <propidl.h>
#include <sensorsapi.h>
#include <setupapi.h>
#include <winusb.h>

#include <cstddef>

#include "platform/WdfTypes.h"

namespace {

#if defined(_WIN64)
inline constexpr bool k64 = true;
#else
inline constexpr bool k64 = false;
#endif

constexpr std::size_t Size(std::size_t on64, std::size_t on32) {
  return k64 ? on64 : on32;
}

static_assert(WdfIoQueueDispatchSequential == 1 && WdfIoQueueDispatchParallel == 2 &&
              WdfIoQueueDispatchManual == 3);
static_assert(WdfUseDefault == 0 && WdfFalse == 1 && WdfTrue == 2);
static_assert(WdfPowerDeviceInvalid == 0 && WdfPowerDeviceD0 == 1 && WdfPowerDeviceD1 == 2 &&
              WdfPowerDeviceD2 == 3 && WdfPowerDeviceD3 == 4 && WdfPowerDeviceD3Final == 5 &&
              WdfPowerDevicePrepareForHibernation == 6);
static_assert(PowerDeviceUnspecified == 0 && PowerDeviceD0 == 1 && PowerDeviceD1 == 2 &&
              PowerDeviceD2 == 3 && PowerDeviceD3 == 4 && PowerDeviceMaximum == 5);
static_assert(IdleCapsInvalid == 0 && IdleCannotWakeFromS0 == 1 && IdleCanWakeFromS0 == 2 &&
              IdleUsbSelectiveSuspend == 3);
static_assert(IdleUserControlInvalid == 0 && IdleDoNotAllowUserControl == 1 &&
              IdleAllowUserControl == 2);
static_assert(WakeUserControlInvalid == 0 && WakeDoNotAllowUserControl == 1 &&
              WakeAllowUserControl == 2);
static_assert(WDF_REQUEST_SEND_OPTION_TIMEOUT == 1 && WDF_REQUEST_SEND_OPTION_SYNCHRONOUS == 2 &&
              WDF_REQUEST_SEND_OPTION_IGNORE_TARGET_STATE == 4 &&
              WDF_REQUEST_SEND_OPTION_SEND_AND_FORGET == 8);
static_assert(WdfIoTargetSentIoUndefined == 0 && WdfIoTargetCancelSentIo == 1 &&
              WdfIoTargetWaitForSentIoToComplete == 2 && WdfIoTargetLeaveSentIoPending == 3);
static_assert(WdfIoTargetStateUndefined == 0 && WdfIoTargetStarted == 1 &&
              WdfIoTargetStopped == 2 && WdfIoTargetClosedForQueryRemove == 3 &&
              WdfIoTargetClosed == 4 && WdfIoTargetDeleted == 5);
static_assert(WdfRequestUndefined == 0 && WdfRequestCreate == 1 && WdfRequestCleanup == 2 &&
              WdfRequestRead == 3 && WdfRequestWrite == 4 && WdfRequestDeviceIoControl == 5 &&
              WdfRequestClose == 6 && WdfRequestUsb == 7 && WdfRequestOther == 8 &&
              WdfRequestInternalIoctl == 9 && WdfRequestTypeNoFormat == 10);
static_assert(WdfUsbRequestTypeInvalid == 0 && WdfUsbRequestTypeNoFormat == 1 &&
              WdfUsbRequestTypeDeviceControlTransfer == 2 && WdfUsbRequestTypePipeWrite == 3 &&
              WdfUsbRequestTypePipeRead == 4);
static_assert(UsbdPipeTypeControl == 0 && UsbdPipeTypeIsochronous == 1 && UsbdPipeTypeBulk == 2 &&
              UsbdPipeTypeInterrupt == 3);
static_assert(WdfPropertyStoreNormal == 0 && WdfPropertyStoreCreateIfMissing == 1 &&
              WdfPropertyStoreCreateVolatile == 2);
static_assert(CreatedNewStore == 1 && OpenedExistingStore == 2);
static_assert(WdfIoQueueAcceptRequests == 1 && WdfIoQueueDispatchRequests == 2 &&
              WdfIoQueueNoRequests == 4 && WdfIoQueueDriverNoRequests == 8 &&
              WdfIoQueuePnpHeld == 16);
static_assert(WdfEventReserved == 0 && WdfEventBroadcast == 1);
static_assert(SENSOR_STATE_READY == 0 && SENSOR_STATE_NOT_AVAILABLE == 1 &&
              SENSOR_STATE_NO_DATA == 2 && SENSOR_STATE_INITIALIZING == 3 &&
              SENSOR_STATE_ACCESS_DENIED == 4 && SENSOR_STATE_ERROR == 5);

static_assert(WDF_CALLBACK_CONSTRAINT::None == WDF_CALLBACK_CONSTRAINT{0});
static_assert(WDF_CALLBACK_CONSTRAINT::WdfDeviceLevel == WDF_CALLBACK_CONSTRAINT{1});
static_assert(sizeof(WDF_CALLBACK_CONSTRAINT) == 4 && sizeof(WDF_TRI_STATE) == 4 &&
              sizeof(WDF_IO_QUEUE_STATE) == 4 && sizeof(WDF_REQUEST_TYPE) == 4 &&
              sizeof(SensorState) == 4 && sizeof(BOOL) == 4 && sizeof(VARIANT_BOOL) == 2 &&
              sizeof(WCHAR) == 2 && sizeof(HRESULT) == 4 && sizeof(ULONG) == 4 &&
              sizeof(SIZE_T) == Size(8, 4) && sizeof(ULONG_PTR) == Size(8, 4));

using Idle = WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS;
static_assert(sizeof(Idle) == 32);
static_assert(offsetof(Idle, Size) == 0 && offsetof(Idle, IdleCaps) == 4 &&
              offsetof(Idle, DxState) == 8 && offsetof(Idle, IdleTimeout) == 12 &&
              offsetof(Idle, UserControlOfIdleSettings) == 16 && offsetof(Idle, Enabled) == 20 &&
              offsetof(Idle, PowerUpIdleDeviceOnSystemWake) == 24 &&
              offsetof(Idle, ExcludeD3Cold) == 28);

static_assert(sizeof(WDFMEMORY_OFFSET) == Size(16, 8));
static_assert(offsetof(WDFMEMORY_OFFSET, BufferLength) == Size(8, 4));
static_assert(sizeof(UMDF_VERSION_DATA) == 12);
static_assert(offsetof(UMDF_VERSION_DATA, MinorNumber) == 4 &&
              offsetof(UMDF_VERSION_DATA, ServiceNumber) == 8);
static_assert(sizeof(PHYSICAL_ADDRESS) == 8);

static_assert(sizeof(WINUSB_SETUP_PACKET) == 8);
static_assert(offsetof(WINUSB_SETUP_PACKET, Request) == 1 &&
              offsetof(WINUSB_SETUP_PACKET, Value) == 2 &&
              offsetof(WINUSB_SETUP_PACKET, Index) == 4 &&
              offsetof(WINUSB_SETUP_PACKET, Length) == 6);
static_assert(sizeof(USB_INTERFACE_DESCRIPTOR) == 9);
static_assert(offsetof(USB_INTERFACE_DESCRIPTOR, bInterfaceNumber) == 2 &&
              offsetof(USB_INTERFACE_DESCRIPTOR, bNumEndpoints) == 4 &&
              offsetof(USB_INTERFACE_DESCRIPTOR, bInterfaceProtocol) == 7);
static_assert(sizeof(WINUSB_PIPE_INFORMATION) == 12);
static_assert(offsetof(WINUSB_PIPE_INFORMATION, PipeId) == 4 &&
              offsetof(WINUSB_PIPE_INFORMATION, MaximumPacketSize) == 6 &&
              offsetof(WINUSB_PIPE_INFORMATION, Interval) == 8);
static_assert(sizeof(WINUSB_INTERFACE_HANDLE) == Size(8, 4));

static_assert(sizeof(SP_DEVINFO_DATA) == Size(32, 28));
static_assert(sizeof(DEVPROPKEY) == 20 && sizeof(PROPERTYKEY) == 20);
static_assert(sizeof(PROPVARIANT) == Size(24, 16) && sizeof(VARIANT) == Size(24, 16));
static_assert(offsetof(PROPVARIANT, caub.cElems) == 8 &&
              offsetof(PROPVARIANT, caub.pElems) == Size(16, 12));
static_assert(sizeof(TRACEHANDLE) == 8);
static_assert(sizeof(TRACE_GUID_REGISTRATION) == Size(16, 8));
static_assert(sizeof(WNODE_HEADER) == 48 && offsetof(WNODE_HEADER, HistoricalContext) == 8);

}  // namespace
