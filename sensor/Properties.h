// The sensor's properties: what clients read and write beside the data.
#pragma once

#include <objbase.h>

#include "base/ComPtr.h"
#include "modem/ClientTable.h"
#include "platform/PortableDevices.h"

namespace stelvane {

class SensorCore;

/// A new key collection with the advertised properties, in their order. The driver's own settings
/// are readable and writable and deliberately not advertised.
HRESULT MakeSupportedProperties(ComPtr<IPortableDeviceKeyCollection>& properties);

/// Writes the value of each key into `values`. S_FALSE when a key is unknown: it gets the error
/// value ERROR_NOT_FOUND. May throw std::bad_alloc.
HRESULT ReadProperties(SensorCore& core, IPortableDeviceKeyCollection* properties,
                       IPortableDeviceValues* values);

/// Applies each value of `values` for `client`. S_FALSE when a key was refused: it gets an error
/// value in `results`. An unknown client ends the call with E_UNEXPECTED. May throw
/// std::bad_alloc.
HRESULT WriteProperties(SensorCore& core, ClientId client, IPortableDeviceValues* values,
                        IPortableDeviceValues* results);

}  // namespace stelvane
