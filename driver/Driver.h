// The driver object: the host's way in.
#pragma once

#include "base/ComObject.h"
#include "platform/WdfCallbacks.h"

namespace stelvane {

/// Holds no state of its own; one serves all devices of a host process.
class Driver final : public ComObject<IDriverEntry> {
 public:
  static HRESULT CreateInstance(REFIID iid, void** object) noexcept;

  HRESULT STDMETHODCALLTYPE OnInitialize(IWDFDriver* driver) noexcept override;
  HRESULT STDMETHODCALLTYPE OnDeviceAdd(IWDFDriver* driver,
                                        IWDFDeviceInitialize* deviceInit) noexcept override;
  void STDMETHODCALLTYPE OnDeinitialize(IWDFDriver* driver) noexcept override;
};

}  // namespace stelvane
