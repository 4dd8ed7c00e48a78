// The device's registry values that the sensor shows as its properties.
#pragma once

#include "base/PropVariant.h"
#include "platform/WdfDevice.h"

namespace stelvane {

/// Read once at start, constant afterwards.
struct DeviceValues {
  PropVariant manufacturer;
  PropVariant model;
  PropVariant friendlyName;
  PropVariant serialNumber;

  /// Reads the four values from the device's property store, in their order; the first failure
  /// ends the reading and is returned.
  HRESULT Read(IWDFDevice* device);
};

}  // namespace stelvane
