#include "driver/QueueCallback.h"

#include "driver/DeviceContext.h"
#include "driver/IoControlCodes.h"
#include "driver/Module.h"
#include "driver/QueueCallback.trace.h"

namespace stelvane {

namespace {

constexpr SIZE_T kPrivateInformation = 4;  // bytes; given whatever the result

}  // namespace

void QueueCallback::OnDeviceIoControl(IWDFIoQueue* queue, IWDFIoRequest* request, ULONG controlCode,
                                      SIZE_T inputBufferSizeInBytes,
                                      SIZE_T outputBufferSizeInBytes) noexcept {
  TRACE(IoControlEntered, controlCode);
  if (IsPrivateCode(controlCode)) {
    HandlePrivate(request, controlCode);
  } else if (IsClassExtensionCode(controlCode)) {
    ForwardToClassExtension(request);
  } else {
    TRACE(CodeNotKnown, controlCode);
    request->CompleteWithInformation(kNotSupported, 0);
  }
  TRACE(IoControlLeft);
}

void QueueCallback::HandlePrivate(IWDFIoRequest* request, ULONG controlCode) {
  const CallbackScope scope(owner_->Guard(), kIoControl);
  if (FAILED(scope.Result())) {
    TRACE(PrivateRefusedInShutdown, controlCode);
    request->CompleteWithInformation(kNotSupported, 0);
    return;
  }
  HRESULT result = E_UNEXPECTED;
  if (const ComPtr<DeviceContext> context = owner_->Context(); context) {
    result = context->HandlePrivateIoControl(request, controlCode);
  } else {
    TRACE(NoContext);
  }
  request->CompleteWithInformation(result, kPrivateInformation);
}

void QueueCallback::ForwardToClassExtension(IWDFIoRequest* request) {
  const CallbackScope scope(owner_->Guard(), kIoControl);
  if (FAILED(scope.Result())) {
    TRACE(ForwardRefusedInShutdown);
    request->CompleteWithInformation(kNotSupported, 0);
    return;
  }
  // Without a context the request is neither forwarded nor completed; this is kept as it stands.
  if (const ComPtr<DeviceContext> context = owner_->Context(); context) {
    context->ProcessIoControl(request);
  }
}

HRESULT EnsureDefaultQueue(DeviceCallbacks* owner) {
  const ComPtr<IWDFDevice> device = ModuleDevice();
  if (!device) {
    TRACE(NoModuleDevice);
    return E_UNEXPECTED;
  }
  ComPtr<IWDFIoQueue> existing;
  device->GetDefaultIoQueue(existing.Put());
  if (existing) return S_OK;
  if (owner == nullptr) {
    TRACE(NoOwner);
    return E_INVALIDARG;
  }
  ComPtr<QueueCallback> callback;
  RETURN_IF_FAILED(CreateObject(callback, owner), CallbackNotMade);
  ComPtr<IUnknown> unknown;
  RETURN_IF_FAILED(callback.As(unknown), CallbackNotMade);
  RETURN_IF_FAILED(device->CreateIoQueue(unknown.Get(), TRUE, WdfIoQueueDispatchParallel, FALSE,
                                         TRUE, owner->Queue().Put()),
                   QueueNotCreated);
  return S_OK;
}

}  // namespace stelvane
