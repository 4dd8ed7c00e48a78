// A COM object outside the framework's books: what a test or COM itself holds.
#pragma once

#include <unknwn.h>

#include <atomic>

#include "platform/Iid.h"
#include "workbench/framework/InterfaceNames.h"

namespace bench {

/// A counted object with the given interfaces, made without a reference; deletes itself. Any
/// thread.
template <class Primary, class... Others>
class CountedObject : public Primary, public Others... {
 public:
  CountedObject() = default;
  CountedObject(const CountedObject&) = delete;
  CountedObject& operator=(const CountedObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = SameGuid(iid, iidOf<IUnknown>) ? static_cast<Primary*>(this) : nullptr;
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
  // Not public in the derived class: only Release ends the object.
  virtual ~CountedObject() = default;

 private:
  template <class Interface>
  void Match(REFIID iid, void** object) {
    if (SameGuid(iid, iidOf<Interface>)) *object = static_cast<Interface*>(this);
  }
  std::atomic<ULONG> references_{0};
};

}  // namespace bench
