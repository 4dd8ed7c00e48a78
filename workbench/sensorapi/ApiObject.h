// What every COM object of the Sensor API's side shares.
#pragma once

#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "base/ComPtr.h"
#include "workbench/framework/FxObject.h"

namespace bench {

using stelvane::ComPtr;

/// Runs `body` and turns what it throws into its HRESULT: no exception leaves a COM method.
template <class Body>
HRESULT NoThrow(const Body& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::invalid_argument&) {
    return E_INVALIDARG;
  }
}

/// An audited object with one interface. Calls are recorded, and made to fail, as
/// "Interface::Method". Make it with `MakeApiObject`.
template <class Interface>
class ApiObject : public FxUnknown<Interface> {
 protected:
  ApiObject(const World& world, std::string_view kind, std::string_view interfaceName)
      : FxUnknown<Interface>(world, kind), prefix_(std::string(interfaceName) + "::") {}

  template <class Body>
  HRESULT Call(std::string_view method, const Body& body) {
    return this->Invoke(prefix_ + std::string(method), [&] { return NoThrow(body); });
  }

  void* Find(const GUID& iid) override {
    return SameGuid(iid, iidOf<Interface>) ? static_cast<Interface*>(this) : nullptr;
  }

 private:
  const std::string prefix_;
};

/// A new object that lives as long as it is referenced.
template <class Object, class... Arguments>
ComPtr<Object> MakeApiObject(const World& world, Arguments&&... arguments) {
  Object& object = Make<Object>(world, nullptr, std::forward<Arguments>(arguments)...);
  ComPtr<Object> counted(&object);
  object.Orphan();
  return counted;
}

/// The living object of ours behind an interface pointer; null when there is none.
template <class Object>
Object* OwnObject(const World& world, const void* interfacePointer) {
  auto* const object = dynamic_cast<Object*>(world.ledger.Find(interfacePointer));
  return object != nullptr && object->IsUsable() ? object : nullptr;
}

}  // namespace bench
