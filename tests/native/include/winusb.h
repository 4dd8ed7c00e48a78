// Records and values of USB.
#pragma once

#include <windows.h>

using WINUSB_INTERFACE_HANDLE = void*;

enum USBD_PIPE_TYPE : int {
  UsbdPipeTypeControl = 0,
  UsbdPipeTypeIsochronous = 1,
  UsbdPipeTypeBulk = 2,
  UsbdPipeTypeInterrupt = 3,
};

#pragma pack(push, 1)
struct WINUSB_SETUP_PACKET {
  UCHAR RequestType;
  UCHAR Request;
  USHORT Value;
  USHORT Index;
  USHORT Length;
};
struct USB_INTERFACE_DESCRIPTOR {
  UCHAR bLength;
  UCHAR bDescriptorType;
  UCHAR bInterfaceNumber;
  UCHAR bAlternateSetting;
  UCHAR bNumEndpoints;
  UCHAR bInterfaceClass;
  UCHAR bInterfaceSubClass;
  UCHAR bInterfaceProtocol;
  UCHAR iInterface;
};
#pragma pack(pop)
using PWINUSB_SETUP_PACKET = WINUSB_SETUP_PACKET*;
using PUSB_INTERFACE_DESCRIPTOR = USB_INTERFACE_DESCRIPTOR*;
static_assert(sizeof(WINUSB_SETUP_PACKET) == 8 && sizeof(USB_INTERFACE_DESCRIPTOR) == 9);

struct WINUSB_PIPE_INFORMATION {
  USBD_PIPE_TYPE PipeType;
  UCHAR PipeId;
  USHORT MaximumPacketSize;
  UCHAR Interval;
};
using PWINUSB_PIPE_INFORMATION = WINUSB_PIPE_INFORMATION*;
static_assert(sizeof(WINUSB_PIPE_INFORMATION) == 12);
