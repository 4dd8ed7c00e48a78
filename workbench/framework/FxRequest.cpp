#include "workbench/framework/FxRequest.h"

namespace bench {

void FxRequest::CompleteWithInformation(HRESULT, SIZE_T) {
  Unexpected("IWDFIoRequest::CompleteWithInformation");
}

void FxRequest::SetInformation(ULONG_PTR) {
  Unexpected("IWDFIoRequest::SetInformation");
}

void FxRequest::Complete(HRESULT) {
  Unexpected("IWDFIoRequest::Complete");
}

void FxRequest::SetCompletionCallback(IRequestCallbackRequestCompletion*, void*) {
  Unexpected("IWDFIoRequest::SetCompletionCallback");
}

WDF_REQUEST_TYPE FxRequest::GetType() {
  Unexpected("IWDFIoRequest::GetType");
  return WdfRequestUndefined;
}

void FxRequest::GetCreateParameters(ULONG*, USHORT*, USHORT*) {
  Unexpected("IWDFIoRequest::GetCreateParameters");
}

void FxRequest::GetReadParameters(SIZE_T*, LONGLONG*, ULONG*) {
  Unexpected("IWDFIoRequest::GetReadParameters");
}

void FxRequest::GetWriteParameters(SIZE_T*, LONGLONG*, ULONG*) {
  Unexpected("IWDFIoRequest::GetWriteParameters");
}

void FxRequest::GetDeviceIoControlParameters(ULONG*, SIZE_T*, SIZE_T*) {
  Unexpected("IWDFIoRequest::GetDeviceIoControlParameters");
}

void FxRequest::GetOutputMemory(IWDFMemory** memory) {
  *memory = nullptr;
  Unexpected("IWDFIoRequest::GetOutputMemory");
}

void FxRequest::GetInputMemory(IWDFMemory** memory) {
  *memory = nullptr;
  Unexpected("IWDFIoRequest::GetInputMemory");
}

void FxRequest::MarkCancelable(IRequestCallbackCancel*) {
  Unexpected("IWDFIoRequest::MarkCancelable");
}

HRESULT FxRequest::UnmarkCancelable() {
  return Unexpected("IWDFIoRequest::UnmarkCancelable");
}

BOOL FxRequest::CancelSentRequest() {
  Unexpected("IWDFIoRequest::CancelSentRequest");
  return FALSE;
}

HRESULT FxRequest::ForwardToIoQueue(IWDFIoQueue*) {
  return Unexpected("IWDFIoRequest::ForwardToIoQueue");
}

HRESULT FxRequest::Send(IWDFIoTarget*, ULONG, LONGLONG) {
  return Unexpected("IWDFIoRequest::Send");
}

void FxRequest::GetFileObject(IWDFFile** fileObject) {
  *fileObject = nullptr;
  Unexpected("IWDFIoRequest::GetFileObject");
}

void FxRequest::FormatUsingCurrentType() {
  Unexpected("IWDFIoRequest::FormatUsingCurrentType");
}

ULONG FxRequest::GetRequestorProcessId() {
  Unexpected("IWDFIoRequest::GetRequestorProcessId");
  return 0;
}

void FxRequest::GetIoQueue(IWDFIoQueue** ioQueue) {
  *ioQueue = nullptr;
  Unexpected("IWDFIoRequest::GetIoQueue");
}

HRESULT FxRequest::Impersonate(SECURITY_IMPERSONATION_LEVEL, IImpersonateCallback*, void*) {
  return Unexpected("IWDFIoRequest::Impersonate");
}

BOOL FxRequest::IsFrom32BitProcess() {
  Unexpected("IWDFIoRequest::IsFrom32BitProcess");
  return FALSE;
}

void FxRequest::GetCompletionParams(IWDFRequestCompletionParams** completionParams) {
  *completionParams = nullptr;
  Unexpected("IWDFIoRequest::GetCompletionParams");
}

}  // namespace bench
