// The part of an in-process COM server that is the same for every driver: counted objects that keep
// their module loaded, and a class factory.
#pragma once

#include <unknwn.h>

#include <atomic>
#include <new>

#include "platform/Iid.h"

namespace echo {

inline std::atomic<LONG> objectsAlive{0};

/// A counted object with the given interfaces, made without a reference; deletes itself.
template <class Primary, class... Others>
class Object : public Primary, public Others... {
 public:
  Object() { ++objectsAlive; }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = IsEqualGUID(iid, iidOf<IUnknown>) ? static_cast<Primary*>(this) : nullptr;
    Match<Primary>(iid, object);
    (Match<Others>(iid, object), ...);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Object() { --objectsAlive; }

 private:
  template <class Interface>
  void Match(REFIID iid, void** object) {
    if (IsEqualGUID(iid, iidOf<Interface>)) *object = static_cast<Interface*>(this);
  }
  std::atomic<ULONG> references_{0};
};

/// Hands a new `Made` out by the interface asked for.
template <class Made>
HRESULT Create(REFIID iid, void** object) {
  *object = nullptr;
  Made* const made = new (std::nothrow) Made;
  if (made == nullptr) return E_OUTOFMEMORY;
  made->AddRef();
  const HRESULT result = made->QueryInterface(iid, object);
  made->Release();
  return result;
}

template <class Made>
class Factory final : public Object<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    return outer != nullptr ? CLASS_E_NOAGGREGATION : Create<Made>(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    objectsAlive += lock != FALSE ? 1 : -1;
    return S_OK;
  }
};

}  // namespace echo
