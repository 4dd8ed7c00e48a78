// Makes driver objects for the host.
#pragma once

#include <unknwn.h>

#include <atomic>

#include "base/ComPtr.h"
#include "driver/Module.h"

namespace stelvane {

/// Cached by the module for its whole life, so it does not hold the module lock itself. Any thread.
class ClassFactory final : public IClassFactory {
 public:
  static HRESULT Create(const ObjectMapEntry& entry, ComPtr<IClassFactory>& factory) noexcept;

  explicit ClassFactory(const ObjectMapEntry& entry) : entry_(entry) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override;

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid,
                                           void** object) noexcept override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override;

 private:
  const ObjectMapEntry& entry_;
  std::atomic<ULONG> references_{0};
};

}  // namespace stelvane
