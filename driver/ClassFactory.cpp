#include "driver/ClassFactory.h"

#include <new>

#include "base/ModuleLock.h"
#include "driver/ClassFactory.trace.h"

namespace stelvane {

HRESULT ClassFactory::Create(const ObjectMapEntry& entry, ComPtr<IClassFactory>& factory) noexcept {
  factory = ComPtr<IClassFactory>(new (std::nothrow) ClassFactory(entry));
  return factory ? S_OK : E_OUTOFMEMORY;
}

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualGUID(iid, iidOf<IUnknown>) && !IsEqualGUID(iid, iidOf<IClassFactory>)) {
    return E_NOINTERFACE;
  }
  *object = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

ULONG ClassFactory::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
  TRACE(CreateInstanceEntered);
  HRESULT result = E_POINTER;
  if (object != nullptr) {
    *object = nullptr;
    const bool aggregated = outer != nullptr && !IsEqualGUID(iid, iidOf<IUnknown>);
    result = aggregated ? CLASS_E_NOAGGREGATION : entry_.createInstance(iid, object);
  }
  if (FAILED(result)) TRACE(InstanceNotMade, result);
  TRACE(CreateInstanceLeft, result);
  return result;
}

HRESULT ClassFactory::LockServer(BOOL lock) noexcept {
  TRACE(LockServerEntered, lock);
  moduleLockCount += lock ? 1 : -1;
  TRACE(LockServerLeft, S_OK);
  return S_OK;
}

}  // namespace stelvane
