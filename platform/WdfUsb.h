// USB targets: the device, its interfaces and their pipes.
#pragma once

#include <winusb.h>

#include "platform/Iid.h"
#include "platform/WdfIoTarget.h"

struct IUsbTargetPipeContinuousReaderCallbackReadComplete;
struct IUsbTargetPipeContinuousReaderCallbackReadersFailed;
struct IWDFIoRequest;
struct IWDFMemory;
struct IWDFUsbInterface;
struct IWDFUsbTargetDevice;
struct IWDFUsbTargetPipe;

struct IWDFUsbTargetFactory : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateUsbTargetDevice(IWDFUsbTargetDevice** device) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFUsbTargetFactory> = {
    0x3f7becf9, 0x3a65, 0x4348, {0xa4, 0xf3, 0x33, 0x9d, 0x57, 0x34, 0xa9, 0xc6}};

struct IWDFUsbTargetDevice : public IWDFIoTarget {
  virtual WINUSB_INTERFACE_HANDLE STDMETHODCALLTYPE GetWinUsbHandle() = 0;
  virtual UCHAR STDMETHODCALLTYPE GetNumInterfaces() = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveUsbInterface(UCHAR interfaceIndex,
                                                         IWDFUsbInterface** usbInterface) = 0;
  virtual HRESULT STDMETHODCALLTYPE
  FormatRequestForControlTransfer(IWDFIoRequest* request, PWINUSB_SETUP_PACKET setupPacket,
                                  IWDFMemory* memory, PWDFMEMORY_OFFSET transferOffset) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveDeviceInformation(ULONG informationType,
                                                              ULONG* bufferLength,
                                                              PVOID buffer) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveDescriptor(UCHAR descriptorType, UCHAR index,
                                                       USHORT languageID, ULONG* bufferLength,
                                                       PVOID buffer) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrievePowerPolicy(ULONG policyType, ULONG* valueLength,
                                                        PVOID value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetPowerPolicy(ULONG policyType, ULONG valueLength,
                                                   PVOID value) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFUsbTargetDevice> = {
    0x4cd12e96, 0x900a, 0x44c3, {0xa1, 0xb7, 0x05, 0xb8, 0x95, 0x4d, 0xab, 0x76}};

struct IWDFUsbInterface : public IWDFObject {
  virtual void STDMETHODCALLTYPE GetInterfaceDescriptor(PUSB_INTERFACE_DESCRIPTOR descriptor) = 0;
  virtual UCHAR STDMETHODCALLTYPE GetInterfaceNumber() = 0;
  virtual UCHAR STDMETHODCALLTYPE GetNumEndPoints() = 0;
  virtual UCHAR STDMETHODCALLTYPE GetConfiguredSettingIndex() = 0;
  virtual HRESULT STDMETHODCALLTYPE SelectSetting(UCHAR settingNumber) = 0;
  virtual WINUSB_INTERFACE_HANDLE STDMETHODCALLTYPE GetWinUsbHandle() = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveUsbPipeObject(UCHAR pipeIndex,
                                                          IWDFUsbTargetPipe** pipe) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFUsbInterface> = {
    0xa6714a4d, 0xc764, 0x498f, {0xb6, 0xd2, 0x03, 0x2f, 0x10, 0xca, 0x4e, 0x36}};

struct IWDFUsbTargetPipe : public IWDFIoTarget {
  virtual HRESULT STDMETHODCALLTYPE Abort() = 0;
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  virtual HRESULT STDMETHODCALLTYPE Flush() = 0;
  virtual void STDMETHODCALLTYPE GetInformation(PWINUSB_PIPE_INFORMATION info) = 0;
  virtual BOOL STDMETHODCALLTYPE IsInEndPoint() = 0;
  virtual BOOL STDMETHODCALLTYPE IsOutEndPoint() = 0;
  virtual USBD_PIPE_TYPE STDMETHODCALLTYPE GetType() = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrievePipePolicy(ULONG policyType, ULONG* valueLength,
                                                       PVOID value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetPipePolicy(ULONG policyType, ULONG valueLength,
                                                  PVOID value) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFUsbTargetPipe> = {
    0xf373216e, 0x8c42, 0x4c5c, {0x95, 0xb4, 0xd2, 0xa4, 0x0b, 0x99, 0xc0, 0xfa}};

struct IWDFUsbTargetPipe2 : public IWDFUsbTargetPipe {
  virtual HRESULT STDMETHODCALLTYPE ConfigureContinuousReader(
      SIZE_T transferLength, SIZE_T headerLength, SIZE_T trailerLength, UCHAR numPendingReads,
      IUnknown* memoryCleanupCallbackInterface,
      IUsbTargetPipeContinuousReaderCallbackReadComplete* onCompletion, PVOID completionContext,
      IUsbTargetPipeContinuousReaderCallbackReadersFailed* onFailure) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFUsbTargetPipe2> = {
    0x8efe1ab4, 0xf4a2, 0x42bb, {0x9b, 0x2b, 0xbb, 0xad, 0xa1, 0x9d, 0x8b, 0x80}};
