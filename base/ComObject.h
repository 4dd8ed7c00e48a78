// Reference-counted objects: the counted base, its COM form, and the creator of both.
#pragma once

#include <unknwn.h>

#include <atomic>
#include <new>
#include <utility>

#include "base/ComPtr.h"
#include "base/ModuleLock.h"
#include "base/Sync.h"

namespace stelvane {

/// What every long-lived object has: a reference count, an object lock, and a hold on the module.
class CountedObject {
 public:
  CountedObject(const CountedObject&) = delete;
  CountedObject& operator=(const CountedObject&) = delete;

  /// Second half of construction, for what can fail: locks and events. Called once, by
  /// CreateObject; a failure destroys the object.
  virtual HRESULT InitializeObject() { return objectLock_.Initialize(); }

 protected:
  CountedObject() = default;
  virtual ~CountedObject() = default;

  ULONG AddReference() { return ++references_; }
  ULONG ReleaseReference() {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  const ModuleReference module_;
  std::atomic<ULONG> references_{0};
  CriticalSection objectLock_;
};

/// A counted object that is not seen through COM.
class PlainObject : public CountedObject {
 public:
  ULONG AddRef() { return AddReference(); }
  ULONG Release() { return ReleaseReference(); }
};

/// A COM object of the given interfaces; the first one gives the identity of IUnknown.
template <class First, class... Rest>
class ComObject : public CountedObject, public First, public Rest... {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (IsEqualGUID(iid, iidOf<IUnknown>)) {
      *object = static_cast<First*>(this);
    } else {
      (Offer<First>(iid, object) || ... || Offer<Rest>(iid, object));
    }
    if (*object == nullptr) return E_NOINTERFACE;
    AddReference();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return AddReference(); }
  ULONG STDMETHODCALLTYPE Release() noexcept override { return ReleaseReference(); }

 private:
  template <class Interface>
  bool Offer(REFIID iid, void** object) {
    if (!IsEqualGUID(iid, iidOf<Interface>)) return false;
    *object = static_cast<Interface*>(this);
    return true;
  }
};

/// Makes an object and initialises it. E_OUTOFMEMORY when there is no memory, else the result of
/// InitializeObject; on a failure the half-built object is gone and `object` is null.
template <class T, class... Arguments>
HRESULT CreateObject(ComPtr<T>& object, Arguments&&... arguments) noexcept {
  object.Reset();
  try {
    ComPtr<T> made(new T(std::forward<Arguments>(arguments)...));
    const HRESULT result = made->InitializeObject();
    if (FAILED(result)) return result;
    object = std::move(made);
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace stelvane
