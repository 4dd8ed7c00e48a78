#include "sensor/DeviceValues.h"

#include "base/ComPtr.h"
#include "sensor/DeviceValues.trace.h"

namespace stelvane {

namespace {

struct ValueName {
  const WCHAR* name;
  PropVariant DeviceValues::*value;
};

constexpr ValueName kValues[] = {
    {L"DevManufacturer", &DeviceValues::manufacturer},
    {L"DevModel", &DeviceValues::model},
    {L"DevFriendlyName", &DeviceValues::friendlyName},
    {L"DevSerialNumber", &DeviceValues::serialNumber},
};

}  // namespace

HRESULT DeviceValues::Read(IWDFDevice* device) {
  ComPtr<IWDFNamedPropertyStore> store;
  RETURN_IF_FAILED(
      device->RetrieveDevicePropertyStore(nullptr, WdfPropertyStoreNormal, store.Put(), nullptr),
      StoreMissing);
  ULONG index = 0;
  for (const ValueName& row : kValues) {
    const HRESULT result = store->GetNamedValue(row.name, (this->*row.value).Put());
    if (FAILED(result)) {
      TRACE(ValueMissing, index, result);
      return result;
    }
    ++index;
  }
  return S_OK;
}

}  // namespace stelvane
