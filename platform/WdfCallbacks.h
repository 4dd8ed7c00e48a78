// Callback interfaces that a driver implements and the framework calls.
#pragma once

#include <unknwn.h>

#include "platform/Iid.h"
#include "platform/WdfTypes.h"

struct IWDFDevice;
struct IWDFDeviceInitialize;
struct IWDFDriver;
struct IWDFFile;
struct IWDFIoQueue;
struct IWDFIoRequest;
struct IWDFIoTarget;
struct IWDFMemory;
struct IWDFObject;
struct IWDFRequestCompletionParams;
struct IWDFUsbTargetPipe;

struct IDriverEntry : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE OnInitialize(IWDFDriver* driver) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnDeviceAdd(IWDFDriver* driver,
                                                IWDFDeviceInitialize* deviceInit) = 0;
  virtual void STDMETHODCALLTYPE OnDeinitialize(IWDFDriver* driver) = 0;
};
template <>
inline constexpr GUID iidOf<IDriverEntry> = {
    0x1bec7499, 0x8881, 0x4f2b, {0xb0, 0x1c, 0xa1, 0xa9, 0x07, 0x30, 0x4a, 0xfc}};

struct IPnpCallback : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE OnD0Entry(IWDFDevice* device,
                                              WDF_POWER_DEVICE_STATE previousState) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnD0Exit(IWDFDevice* device,
                                             WDF_POWER_DEVICE_STATE newState) = 0;
  virtual void STDMETHODCALLTYPE OnSurpriseRemoval(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnQueryRemove(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnQueryStop(IWDFDevice* device) = 0;
};
template <>
inline constexpr GUID iidOf<IPnpCallback> = {
    0x27c32374, 0xcc45, 0x4840, {0x85, 0x7e, 0x8e, 0x5e, 0xf7, 0xc0, 0xeb, 0xff}};

struct IPnpCallbackHardware : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE OnPrepareHardware(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnReleaseHardware(IWDFDevice* device) = 0;
};
template <>
inline constexpr GUID iidOf<IPnpCallbackHardware> = {
    0x51433bd3, 0xc7c1, 0x4bd8, {0xb4, 0xc1, 0xab, 0x1e, 0x03, 0x46, 0x26, 0xcc}};

struct IPnpCallbackSelfManagedIo : public IUnknown {
  virtual void STDMETHODCALLTYPE OnSelfManagedIoCleanup(IWDFDevice* device) = 0;
  virtual void STDMETHODCALLTYPE OnSelfManagedIoFlush(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnSelfManagedIoInit(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnSelfManagedIoSuspend(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnSelfManagedIoRestart(IWDFDevice* device) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnSelfManagedIoStop(IWDFDevice* device) = 0;
};
template <>
inline constexpr GUID iidOf<IPnpCallbackSelfManagedIo> = {
    0xd1c9ca4c, 0x46aa, 0x46f8, {0xbd, 0x8c, 0x6c, 0xa9, 0xde, 0xb1, 0x33, 0x40}};

struct IFileCallbackCleanup : public IUnknown {
  virtual void STDMETHODCALLTYPE OnCleanupFile(IWDFFile* fileObject) = 0;
};
template <>
inline constexpr GUID iidOf<IFileCallbackCleanup> = {
    0x35c5f79c, 0x6d81, 0x4819, {0xaa, 0x64, 0xd6, 0xa8, 0x93, 0x9d, 0x94, 0xd6}};

struct IQueueCallbackDeviceIoControl : public IUnknown {
  virtual void STDMETHODCALLTYPE OnDeviceIoControl(IWDFIoQueue* queue, IWDFIoRequest* request,
                                                   ULONG controlCode, SIZE_T inputBufferSizeInBytes,
                                                   SIZE_T outputBufferSizeInBytes) = 0;
};
template <>
inline constexpr GUID iidOf<IQueueCallbackDeviceIoControl> = {
    0xc5411408, 0x0f1e, 0x4ed6, {0xa4, 0x12, 0x36, 0xdd, 0x15, 0xee, 0xe7, 0x07}};

struct IObjectCleanup : public IUnknown {
  virtual void STDMETHODCALLTYPE OnCleanup(IWDFObject* object) = 0;
};
template <>
inline constexpr GUID iidOf<IObjectCleanup> = {
    0x244abe3a, 0xabbc, 0x43b1, {0xa8, 0x77, 0xf0, 0x00, 0x77, 0x55, 0x0e, 0x6a}};

struct IRequestCallbackRequestCompletion : public IUnknown {
  virtual void STDMETHODCALLTYPE OnCompletion(IWDFIoRequest* request, IWDFIoTarget* ioTarget,
                                              IWDFRequestCompletionParams* params,
                                              void* context) = 0;
};
template <>
inline constexpr GUID iidOf<IRequestCallbackRequestCompletion> = {
    0x8a7cc8cb, 0xceb2, 0x46f6, {0x98, 0x51, 0x77, 0xbd, 0x34, 0x7a, 0x15, 0xc2}};

struct IUsbTargetPipeContinuousReaderCallbackReadComplete : public IUnknown {
  virtual void STDMETHODCALLTYPE OnReaderCompletion(IWDFUsbTargetPipe* pipe, IWDFMemory* memory,
                                                    SIZE_T numBytesTransferred, PVOID context) = 0;
};
template <>
inline constexpr GUID iidOf<IUsbTargetPipeContinuousReaderCallbackReadComplete> = {
    0xe44fc7cc, 0x0037, 0x45fe, {0xb2, 0x7c, 0x39, 0x63, 0xfd, 0xf1, 0x39, 0x97}};

struct IUsbTargetPipeContinuousReaderCallbackReadersFailed : public IUnknown {
  virtual BOOL STDMETHODCALLTYPE OnReaderFailure(IWDFUsbTargetPipe* pipe, HRESULT status) = 0;
};
template <>
inline constexpr GUID iidOf<IUsbTargetPipeContinuousReaderCallbackReadersFailed> = {
    0x4b891219, 0x3c53, 0x4a8c, {0x87, 0x31, 0x4e, 0x1b, 0x4b, 0xe0, 0xe2, 0x33}};
