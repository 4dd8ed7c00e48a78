// The default queue: requests of Sensor API clients and of radio management.
#pragma once

#include "base/ComObject.h"
#include "driver/DeviceCallbacks.h"
#include "platform/WdfCallbacks.h"

namespace stelvane {

/// Requests come on framework threads at any time, several at once, also while the device is in a
/// low-power state.
class QueueCallback final : public ComObject<IQueueCallbackDeviceIoControl> {
 public:
  explicit QueueCallback(DeviceCallbacks* owner) : owner_(owner) {}

  void STDMETHODCALLTYPE OnDeviceIoControl(IWDFIoQueue* queue, IWDFIoRequest* request,
                                           ULONG controlCode, SIZE_T inputBufferSizeInBytes,
                                           SIZE_T outputBufferSizeInBytes) noexcept override;

 private:
  void HandlePrivate(IWDFIoRequest* request, ULONG controlCode);
  void ForwardToClassExtension(IWDFIoRequest* request);

  const ComPtr<DeviceCallbacks> owner_;
};

/// Makes the module device's default queue with a QueueCallback for `owner`, unless it has one.
/// E_UNEXPECTED without a module device, E_INVALIDARG without an owner.
HRESULT EnsureDefaultQueue(DeviceCallbacks* owner);

}  // namespace stelvane
