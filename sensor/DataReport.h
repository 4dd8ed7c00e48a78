// Turns a Fix record into the 23 data fields of the location sensor.
#pragma once

#include <objbase.h>

#include "at/FixRecord.h"
#include "base/ComPtr.h"
#include "platform/PortableDevices.h"

namespace stelvane {

/// A new, empty portable-device container of the given class.
template <class Interface>
HRESULT MakeContainer(const GUID& classId, ComPtr<Interface>& container) {
  return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iidOf<Interface>,
                          reinterpret_cast<void**>(container.Put()));
}

/// A new key collection with the supported data fields, in the order in which clients see them.
HRESULT MakeSupportedDataFields(ComPtr<IPortableDeviceKeyCollection>& fields);

/// Writes one value for each known key of `fields` into `values`; unknown and empty keys are
/// skipped, and an absent value is an empty variant under its key. The first value that cannot be
/// made or set ends the call with its result.
HRESULT BuildDataValues(IPortableDeviceKeyCollection* fields, ComPtr<IPortableDeviceValues> values,
                        const FixRecord& fix);

}  // namespace stelvane
