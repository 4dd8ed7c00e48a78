// What the two kinds of request share: every method that neither kind answers is unexpected.
#pragma once

#include "platform/WdfRequest.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxRequest : public FxObject<IWDFIoRequest> {
 public:
  using FxObject::FxObject;

  void STDMETHODCALLTYPE CompleteWithInformation(HRESULT completionStatus,
                                                 SIZE_T information) override;
  void STDMETHODCALLTYPE SetInformation(ULONG_PTR information) override;
  void STDMETHODCALLTYPE Complete(HRESULT completionStatus) override;
  void STDMETHODCALLTYPE SetCompletionCallback(
      IRequestCallbackRequestCompletion* completionCallback, void* context) override;
  WDF_REQUEST_TYPE STDMETHODCALLTYPE GetType() override;
  void STDMETHODCALLTYPE GetCreateParameters(ULONG* options, USHORT* fileAttributes,
                                             USHORT* shareAccess) override;
  void STDMETHODCALLTYPE GetReadParameters(SIZE_T* sizeInBytes, LONGLONG* offset,
                                           ULONG* key) override;
  void STDMETHODCALLTYPE GetWriteParameters(SIZE_T* sizeInBytes, LONGLONG* offset,
                                            ULONG* key) override;
  void STDMETHODCALLTYPE GetDeviceIoControlParameters(ULONG* controlCode, SIZE_T* inBufferSize,
                                                      SIZE_T* outBufferSize) override;
  void STDMETHODCALLTYPE GetOutputMemory(IWDFMemory** memory) override;
  void STDMETHODCALLTYPE GetInputMemory(IWDFMemory** memory) override;
  void STDMETHODCALLTYPE MarkCancelable(IRequestCallbackCancel* cancelCallback) override;
  HRESULT STDMETHODCALLTYPE UnmarkCancelable() override;
  BOOL STDMETHODCALLTYPE CancelSentRequest() override;
  HRESULT STDMETHODCALLTYPE ForwardToIoQueue(IWDFIoQueue* destination) override;
  HRESULT STDMETHODCALLTYPE Send(IWDFIoTarget* ioTarget, ULONG flags, LONGLONG timeout) override;
  void STDMETHODCALLTYPE GetFileObject(IWDFFile** fileObject) override;
  void STDMETHODCALLTYPE FormatUsingCurrentType() override;
  ULONG STDMETHODCALLTYPE GetRequestorProcessId() override;
  void STDMETHODCALLTYPE GetIoQueue(IWDFIoQueue** ioQueue) override;
  HRESULT STDMETHODCALLTYPE Impersonate(SECURITY_IMPERSONATION_LEVEL impersonationLevel,
                                        IImpersonateCallback* callback, void* context) override;
  BOOL STDMETHODCALLTYPE IsFrom32BitProcess() override;
  void STDMETHODCALLTYPE
  GetCompletionParams(IWDFRequestCompletionParams** completionParams) override;

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFIoRequest, IWDFObject>(this, iid); }
};

}  // namespace bench
