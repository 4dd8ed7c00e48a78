#include "workbench/framework/FxDriver.h"

#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxDevice.h"
#include "workbench/framework/FxDeviceInit.h"
#include "workbench/framework/FxMemory.h"

namespace bench {

HRESULT FxDriver::CreateDevice(IWDFDeviceInitialize* deviceInit, IUnknown* callbackInterface,
                               IWDFDevice** device) {
  return Invoke("IWDFDriver::CreateDevice", [&] {
    *device = nullptr;
    auto* const init = FindObject<FxDeviceInit>(deviceInit);
    if (init == nullptr || !init->Use()) {
      Report(rule::kBadArgument, "CreateDevice needs a fresh device init");
      return E_INVALIDARG;
    }
    FxDevice& made = Make<FxDevice>(world(), this, *this, plan_, usb_, init->choices());
    if (callbackInterface != nullptr) made.TakeCallbacks(*callbackInterface);
    made.HandOut(device);
    created_ = &made;
    return S_OK;
  });
}

HRESULT FxDriver::CreateWdfObject(IUnknown*, IWDFObject*, IWDFObject**) {
  return Unexpected("IWDFDriver::CreateWdfObject");
}

HRESULT FxDriver::CreatePreallocatedWdfMemory(BYTE*, SIZE_T, IUnknown*, IWDFObject*, IWDFMemory**) {
  return Unexpected("IWDFDriver::CreatePreallocatedWdfMemory");
}

HRESULT FxDriver::CreateWdfMemory(SIZE_T bufferSize, IUnknown* callbackInterface,
                                  IWDFObject* parentObject, IWDFMemory** memory) {
  return Invoke("IWDFDriver::CreateWdfMemory", [&] {
    *memory = nullptr;
    if (bufferSize == 0) {
      Report(rule::kBadArgument, "CreateWdfMemory of no bytes");
      return E_INVALIDARG;
    }
    FxBase* const parent = parentObject == nullptr ? this : FindObject<FxBase>(parentObject);
    if (parent == nullptr) return E_INVALIDARG;
    FxMemory& made =
        Make<FxMemory>(world(), parent, "memory", DeletedBy::kDriver, std::size_t{bufferSize});
    if (callbackInterface != nullptr) {
      CheckQueryInterface(world(), *callbackInterface);
      made.CallAtCleanup(AskFor<IObjectCleanup>(world(), *callbackInterface));
    }
    made.HandOut(memory);
    return S_OK;
  });
}

BOOL FxDriver::IsVersionAvailable(UMDF_VERSION_DATA*) {
  Unexpected("IWDFDriver::IsVersionAvailable");
  return FALSE;
}

HRESULT FxDriver::RetrieveVersionString(PWSTR, DWORD*) {
  return Unexpected("IWDFDriver::RetrieveVersionString");
}

}  // namespace bench
