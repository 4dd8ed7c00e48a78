// Enumerations and records of the user-mode driver framework, version 1.11.
#pragma once

#include <windows.h>

#include <cstddef>

// A scoped enumeration: the plain name None collides with macros of other libraries.
enum class WDF_CALLBACK_CONSTRAINT : int { None = 0, WdfDeviceLevel = 1 };

enum WDF_IO_QUEUE_DISPATCH_TYPE : int {
  WdfIoQueueDispatchSequential = 1,
  WdfIoQueueDispatchParallel = 2,
  WdfIoQueueDispatchManual = 3,
};

enum WDF_TRI_STATE : int { WdfUseDefault = 0, WdfFalse = 1, WdfTrue = 2 };

enum WDF_POWER_DEVICE_STATE : int {
  WdfPowerDeviceInvalid = 0,
  WdfPowerDeviceD0 = 1,
  WdfPowerDeviceD1 = 2,
  WdfPowerDeviceD2 = 3,
  WdfPowerDeviceD3 = 4,
  WdfPowerDeviceD3Final = 5,
  WdfPowerDevicePrepareForHibernation = 6,
};

enum WDF_POWER_POLICY_S0_IDLE_CAPABILITIES : int {
  IdleCapsInvalid = 0,
  IdleCannotWakeFromS0 = 1,
  IdleCanWakeFromS0 = 2,
  IdleUsbSelectiveSuspend = 3,
};

enum WDF_POWER_POLICY_S0_IDLE_USER_CONTROL : int {
  IdleUserControlInvalid = 0,
  IdleDoNotAllowUserControl = 1,
  IdleAllowUserControl = 2,
};

enum WDF_POWER_POLICY_SX_WAKE_USER_CONTROL : int {
  WakeUserControlInvalid = 0,
  WakeDoNotAllowUserControl = 1,
  WakeAllowUserControl = 2,
};

enum WDF_REQUEST_SEND_OPTIONS_FLAGS : int {
  WDF_REQUEST_SEND_OPTION_TIMEOUT = 0x1,
  WDF_REQUEST_SEND_OPTION_SYNCHRONOUS = 0x2,
  WDF_REQUEST_SEND_OPTION_IGNORE_TARGET_STATE = 0x4,
  WDF_REQUEST_SEND_OPTION_SEND_AND_FORGET = 0x8,
};

enum WDF_IO_TARGET_SENT_IO_ACTION : int {
  WdfIoTargetSentIoUndefined = 0,
  WdfIoTargetCancelSentIo = 1,
  WdfIoTargetWaitForSentIoToComplete = 2,
  WdfIoTargetLeaveSentIoPending = 3,
};

enum WDF_IO_TARGET_STATE : int {
  WdfIoTargetStateUndefined = 0,
  WdfIoTargetStarted = 1,
  WdfIoTargetStopped = 2,
  WdfIoTargetClosedForQueryRemove = 3,
  WdfIoTargetClosed = 4,
  WdfIoTargetDeleted = 5,
};

enum WDF_REQUEST_TYPE : int {
  WdfRequestUndefined = 0,
  WdfRequestCreate = 1,
  WdfRequestCleanup = 2,
  WdfRequestRead = 3,
  WdfRequestWrite = 4,
  WdfRequestDeviceIoControl = 5,
  WdfRequestClose = 6,
  WdfRequestUsb = 7,
  WdfRequestOther = 8,
  WdfRequestInternalIoctl = 9,
  WdfRequestTypeNoFormat = 10,
};

enum WDF_USB_REQUEST_TYPE : int {
  WdfUsbRequestTypeInvalid = 0,
  WdfUsbRequestTypeNoFormat = 1,
  WdfUsbRequestTypeDeviceControlTransfer = 2,
  WdfUsbRequestTypePipeWrite = 3,
  WdfUsbRequestTypePipeRead = 4,
};

enum WDF_PROPERTY_STORE_RETRIEVE_FLAGS : int {
  WdfPropertyStoreNormal = 0,
  WdfPropertyStoreCreateIfMissing = 1,
  WdfPropertyStoreCreateVolatile = 2,
};

enum WDF_PROPERTY_STORE_DISPOSITION : int { CreatedNewStore = 1, OpenedExistingStore = 2 };

// Bits.
enum WDF_IO_QUEUE_STATE : int {
  WdfIoQueueAcceptRequests = 0x01,
  WdfIoQueueDispatchRequests = 0x02,
  WdfIoQueueNoRequests = 0x04,
  WdfIoQueueDriverNoRequests = 0x08,
  WdfIoQueuePnpHeld = 0x10,
};

enum WDF_EVENT_TYPE : int { WdfEventReserved = 0, WdfEventBroadcast = 1 };

enum WDF_PNP_STATE : int { WdfPnpStateInvalid = 0 };
enum WDF_PNP_CAPABILITY : int { WdfPnpCapInvalid = 0 };
enum WDF_DEVICE_IO_TYPE : int { WdfDeviceIoUndefined = 0 };
enum WDF_DEVICE_HWACCESS_TARGET_TYPE : int { WdfDeviceHwAccessTargetTypeInvalid = 0 };
enum WDF_DEVICE_HWACCESS_TARGET_SIZE : int { WdfDeviceHwAccessTargetSizeInvalid = 0 };
enum MEMORY_CACHING_TYPE : int { MmNonCached = 0 };

using PHYSICAL_ADDRESS = LARGE_INTEGER;
using PWUDF_INTERRUPT_CONFIG = struct WUDF_INTERRUPT_CONFIG*;
using PWUDF_WORKITEM_CONFIG = struct WUDF_WORKITEM_CONFIG*;

/// S0 idle settings. The eighth word is the D3cold choice in this version of the framework; later
/// versions keep a time-out type in the same place.
struct WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS {
  ULONG Size;
  WDF_POWER_POLICY_S0_IDLE_CAPABILITIES IdleCaps;
  DEVICE_POWER_STATE DxState;
  ULONG IdleTimeout;  // milliseconds
  WDF_POWER_POLICY_S0_IDLE_USER_CONTROL UserControlOfIdleSettings;
  WDF_TRI_STATE Enabled;
  WDF_TRI_STATE PowerUpIdleDeviceOnSystemWake;
  WDF_TRI_STATE ExcludeD3Cold;
};
using PWUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS = WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS*;
static_assert(sizeof(WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS) == 32);
static_assert(offsetof(WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS, DxState) == 8);
static_assert(offsetof(WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS, UserControlOfIdleSettings) == 16);
static_assert(offsetof(WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS, ExcludeD3Cold) == 28);

struct WDFMEMORY_OFFSET {
  ULONG_PTR BufferOffset;
  ULONG_PTR BufferLength;
};
using PWDFMEMORY_OFFSET = WDFMEMORY_OFFSET*;
static_assert(sizeof(WDFMEMORY_OFFSET) == 2 * sizeof(void*));
static_assert(offsetof(WDFMEMORY_OFFSET, BufferLength) == sizeof(void*));

/// The framework version that a driver was built against.
struct UMDF_VERSION_DATA {
  ULONG MajorNumber;
  ULONG MinorNumber;
  ULONG ServiceNumber;
};
static_assert(sizeof(UMDF_VERSION_DATA) == 12);
static_assert(offsetof(UMDF_VERSION_DATA, ServiceNumber) == 8);
