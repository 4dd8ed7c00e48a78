// I/O targets: where a driver sends requests of its own.
#pragma once

#include "platform/Iid.h"
#include "platform/WdfObject.h"
#include "platform/WdfTypes.h"

struct IWDFFile;
struct IWDFIoRequest;
struct IWDFMemory;

struct IWDFIoTarget : public IWDFObject {
  virtual void STDMETHODCALLTYPE GetTargetFile(IWDFFile** file) = 0;
  virtual void STDMETHODCALLTYPE CancelSentRequestsForFile(IWDFFile* file) = 0;
  virtual HRESULT STDMETHODCALLTYPE FormatRequestForRead(IWDFIoRequest* request, IWDFFile* file,
                                                         IWDFMemory* outputMemory,
                                                         PWDFMEMORY_OFFSET outputMemoryOffset,
                                                         PLONGLONG deviceOffset) = 0;
  virtual HRESULT STDMETHODCALLTYPE FormatRequestForWrite(IWDFIoRequest* request, IWDFFile* file,
                                                          IWDFMemory* inputMemory,
                                                          PWDFMEMORY_OFFSET inputMemoryOffset,
                                                          PLONGLONG deviceOffset) = 0;
  virtual HRESULT STDMETHODCALLTYPE FormatRequestForIoctl(IWDFIoRequest* request, ULONG ioctlCode,
                                                          IWDFFile* file, IWDFMemory* inputMemory,
                                                          PWDFMEMORY_OFFSET inputMemoryOffset,
                                                          IWDFMemory* outputMemory,
                                                          PWDFMEMORY_OFFSET outputMemoryOffset) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFIoTarget> = {
    0xcc060d79, 0xc0c2, 0x407f, {0x8b, 0x10, 0xa5, 0xe9, 0x00, 0xfc, 0x34, 0x74}};

struct IWDFIoTargetStateManagement : public IUnknown {
  virtual WDF_IO_TARGET_STATE STDMETHODCALLTYPE GetState() = 0;
  virtual HRESULT STDMETHODCALLTYPE Start() = 0;
  virtual HRESULT STDMETHODCALLTYPE Stop(WDF_IO_TARGET_SENT_IO_ACTION action) = 0;
  virtual HRESULT STDMETHODCALLTYPE Remove(BOOL surprise) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFIoTargetStateManagement> = {
    0x88b077aa, 0xeff6, 0x4eba, {0x9e, 0x4d, 0x06, 0x4c, 0x70, 0x82, 0x2b, 0x98}};
