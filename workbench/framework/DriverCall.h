// How the framework calls a driver's callback objects: asking for interfaces, and the guard around
// each callback.
#pragma once

#include <unknwn.h>

#include <string>
#include <string_view>

#include "base/ComPtr.h"
#include "workbench/framework/InterfaceNames.h"
#include "workbench/framework/Results.h"
#include "workbench/framework/World.h"

namespace bench {

/// Asks a callback object for an interface; null when it has none. The answer's form is checked.
void* AskFor(const World& world, IUnknown& object, const GUID& iid);
template <class Interface>
stelvane::ComPtr<Interface> AskFor(const World& world, IUnknown& object) {
  stelvane::ComPtr<Interface> found;
  *found.Put() = static_cast<Interface*>(AskFor(world, object, iidOf<Interface>));
  return found;
}

/// Asks for the optional interfaces that a framework asks for and this one does not drive; an
/// object that has one is reported.
void AskForUndrivenDeviceCallbacks(const World& world, IUnknown& object);
void AskForUndrivenQueueCallbacks(const World& world, IUnknown& object);

/// Holds a callback object to the rules of QueryInterface, over every callback interface of the
/// framework and, if given, one `further`.
void CheckQueryInterface(const World& world, IUnknown& object, const GUID* further = nullptr);

/// Runs one callback ("Interface::Method"): notes it in the call record, and reports an exception
/// that comes out of it.
template <class Body>
HRESULT CallDriver(const World& world, std::string_view callback, Body body) {
  const CallRecord::Begun begun = world.calls.Begin(kDriverCallee, callback);
  HRESULT result = E_UNEXPECTED;
  try {
    result = body();
  } catch (...) {
    world.ledger.Report(rule::kEscapedException, callback);
  }
  world.calls.End(begun, result);
  return result;
}
template <class Body>
void CallDriverVoid(const World& world, std::string_view callback, Body body) {
  CallDriver(world, callback, [&] {
    body();
    return S_OK;
  });
}

}  // namespace bench
