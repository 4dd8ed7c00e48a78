// Queues, requests, memory and file objects.
#pragma once

#include <winusb.h>

#include "platform/Iid.h"
#include "platform/WdfObject.h"
#include "platform/WdfTypes.h"

struct IImpersonateCallback;
struct IQueueCallbackStateChange;
struct IRequestCallbackCancel;
struct IRequestCallbackRequestCompletion;
struct IWDFDevice;
struct IWDFFile;
struct IWDFIoRequest;
struct IWDFIoTarget;
struct IWDFMemory;
struct IWDFRequestCompletionParams;

struct IWDFIoQueue : public IWDFObject {
  virtual void STDMETHODCALLTYPE GetDevice(IWDFDevice** device) = 0;
  virtual HRESULT STDMETHODCALLTYPE ConfigureRequestDispatching(WDF_REQUEST_TYPE requestType,
                                                                BOOL forward) = 0;
  virtual WDF_IO_QUEUE_STATE STDMETHODCALLTYPE GetState(ULONG* inQueue, ULONG* inDriver) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveNextRequest(IWDFIoRequest** request) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveNextRequestByFileObject(IWDFFile* file,
                                                                    IWDFIoRequest** request) = 0;
  virtual void STDMETHODCALLTYPE Start() = 0;
  virtual void STDMETHODCALLTYPE Stop(IQueueCallbackStateChange* stopComplete) = 0;
  virtual void STDMETHODCALLTYPE StopSynchronously() = 0;
  virtual void STDMETHODCALLTYPE Drain(IQueueCallbackStateChange* drainComplete) = 0;
  virtual void STDMETHODCALLTYPE DrainSynchronously() = 0;
  virtual void STDMETHODCALLTYPE Purge(IQueueCallbackStateChange* purgeComplete) = 0;
  virtual void STDMETHODCALLTYPE PurgeSynchronously() = 0;
};
template <>
inline constexpr GUID iidOf<IWDFIoQueue> = {
    0xae1162b9, 0x8b11, 0x4714, {0x99, 0x3d, 0x93, 0xdc, 0x48, 0xcc, 0x9e, 0x8a}};

struct IWDFIoRequest : public IWDFObject {
  virtual void STDMETHODCALLTYPE CompleteWithInformation(HRESULT completionStatus,
                                                         SIZE_T information) = 0;
  virtual void STDMETHODCALLTYPE SetInformation(ULONG_PTR information) = 0;
  virtual void STDMETHODCALLTYPE Complete(HRESULT completionStatus) = 0;
  virtual void STDMETHODCALLTYPE
  SetCompletionCallback(IRequestCallbackRequestCompletion* completionCallback, void* context) = 0;
  virtual WDF_REQUEST_TYPE STDMETHODCALLTYPE GetType() = 0;
  virtual void STDMETHODCALLTYPE GetCreateParameters(ULONG* options, USHORT* fileAttributes,
                                                     USHORT* shareAccess) = 0;
  virtual void STDMETHODCALLTYPE GetReadParameters(SIZE_T* sizeInBytes, LONGLONG* offset,
                                                   ULONG* key) = 0;
  virtual void STDMETHODCALLTYPE GetWriteParameters(SIZE_T* sizeInBytes, LONGLONG* offset,
                                                    ULONG* key) = 0;
  virtual void STDMETHODCALLTYPE GetDeviceIoControlParameters(ULONG* controlCode,
                                                              SIZE_T* inBufferSize,
                                                              SIZE_T* outBufferSize) = 0;
  virtual void STDMETHODCALLTYPE GetOutputMemory(IWDFMemory** memory) = 0;
  virtual void STDMETHODCALLTYPE GetInputMemory(IWDFMemory** memory) = 0;
  virtual void STDMETHODCALLTYPE MarkCancelable(IRequestCallbackCancel* cancelCallback) = 0;
  virtual HRESULT STDMETHODCALLTYPE UnmarkCancelable() = 0;
  virtual BOOL STDMETHODCALLTYPE CancelSentRequest() = 0;
  virtual HRESULT STDMETHODCALLTYPE ForwardToIoQueue(IWDFIoQueue* destination) = 0;
  virtual HRESULT STDMETHODCALLTYPE Send(IWDFIoTarget* ioTarget, ULONG flags, LONGLONG timeout) = 0;
  virtual void STDMETHODCALLTYPE GetFileObject(IWDFFile** fileObject) = 0;
  virtual void STDMETHODCALLTYPE FormatUsingCurrentType() = 0;
  virtual ULONG STDMETHODCALLTYPE GetRequestorProcessId() = 0;
  virtual void STDMETHODCALLTYPE GetIoQueue(IWDFIoQueue** ioQueue) = 0;
  virtual HRESULT STDMETHODCALLTYPE Impersonate(SECURITY_IMPERSONATION_LEVEL impersonationLevel,
                                                IImpersonateCallback* callback, void* context) = 0;
  virtual BOOL STDMETHODCALLTYPE IsFrom32BitProcess() = 0;
  virtual void STDMETHODCALLTYPE
  GetCompletionParams(IWDFRequestCompletionParams** completionParams) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFIoRequest> = {
    0x896df312, 0x22b4, 0x4a9d, {0x95, 0xdd, 0xa3, 0x64, 0xaa, 0xf5, 0x97, 0x69}};

struct IWDFMemory : public IWDFObject {
  virtual HRESULT STDMETHODCALLTYPE CopyFromMemory(IWDFMemory* source,
                                                   PWDFMEMORY_OFFSET sourceOffset) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyToBuffer(ULONG_PTR sourceOffset, void* targetBuffer,
                                                 SIZE_T byteCount) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyFromBuffer(ULONG_PTR destOffset, void* sourceBuffer,
                                                   SIZE_T byteCount) = 0;
  virtual SIZE_T STDMETHODCALLTYPE GetSize() = 0;
  virtual void* STDMETHODCALLTYPE GetDataBuffer(SIZE_T* bufferSize) = 0;
  virtual void STDMETHODCALLTYPE SetBuffer(void* buffer, SIZE_T bufferSize) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFMemory> = {
    0xab098f88, 0x8f16, 0x472a, {0xb0, 0xbc, 0xec, 0xa4, 0x64, 0x86, 0xc1, 0x02}};

struct IWDFFile : public IWDFObject {
  virtual HRESULT STDMETHODCALLTYPE RetrieveFileName(PWSTR fileName, DWORD* chars) = 0;
  virtual void STDMETHODCALLTYPE GetDevice(IWDFDevice** device) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFFile> = {
    0xcc8fe04b, 0xfe8b, 0x4245, {0xaf, 0xd6, 0xc3, 0x1b, 0xc8, 0x30, 0xc7, 0x91}};

struct IWDFRequestCompletionParams : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCompletionStatus() = 0;
  virtual ULONG_PTR STDMETHODCALLTYPE GetInformation() = 0;
  virtual WDF_REQUEST_TYPE STDMETHODCALLTYPE GetCompletedRequestType() = 0;
};
template <>
inline constexpr GUID iidOf<IWDFRequestCompletionParams> = {
    0x707a2b42, 0x69b8, 0x4971, {0xa4, 0x9c, 0x40, 0x31, 0x86, 0x1e, 0x7a, 0xff}};

struct IWDFIoRequestCompletionParams : public IWDFRequestCompletionParams {
  virtual void STDMETHODCALLTYPE GetWriteParameters(IWDFMemory** writeMemory, SIZE_T* bytesWritten,
                                                    SIZE_T* writeMemoryOffset) = 0;
  virtual void STDMETHODCALLTYPE GetReadParameters(IWDFMemory** readMemory, SIZE_T* bytesRead,
                                                   SIZE_T* readMemoryOffset) = 0;
  virtual void STDMETHODCALLTYPE GetIoctlParameters(ULONG* ioControlCode, IWDFMemory** inputMemory,
                                                    SIZE_T* inputMemoryOffset,
                                                    IWDFMemory** outputMemory,
                                                    SIZE_T* outputMemoryOffset,
                                                    SIZE_T* outBytes) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFIoRequestCompletionParams> = {
    0x723d4f3c, 0x7722, 0x4c49, {0x99, 0xae, 0x19, 0x59, 0x37, 0xbd, 0x95, 0x82}};

struct IWDFUsbRequestCompletionParams : public IWDFRequestCompletionParams {
  virtual WDF_USB_REQUEST_TYPE STDMETHODCALLTYPE GetCompletedUsbRequestType() = 0;
  virtual void STDMETHODCALLTYPE
  GetDeviceControlTransferParameters(IWDFMemory** memory, ULONG* lengthTransferred, SIZE_T* offset,
                                     PWINUSB_SETUP_PACKET setupPacket) = 0;
  virtual void STDMETHODCALLTYPE GetPipeWriteParameters(IWDFMemory** writeMemory,
                                                        SIZE_T* bytesWritten,
                                                        SIZE_T* writeMemoryOffset) = 0;
  virtual void STDMETHODCALLTYPE GetPipeReadParameters(IWDFMemory** readMemory, SIZE_T* bytesRead,
                                                       SIZE_T* readMemoryOffset) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFUsbRequestCompletionParams> = {
    0x5cb1d859, 0xf7ee, 0x411e, {0x9f, 0xa5, 0x01, 0x59, 0xcc, 0x11, 0x83, 0x24}};
