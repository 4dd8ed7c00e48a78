// The driver object of the host and the initialisation record of a new device.
#pragma once

#include "platform/Iid.h"
#include "platform/WdfObject.h"
#include "platform/WdfTypes.h"

struct IWDFDevice;
struct IWDFDeviceInitialize;
struct IWDFMemory;
struct IWDFNamedPropertyStore;

struct IWDFDriver : public IWDFObject {
  virtual HRESULT STDMETHODCALLTYPE CreateDevice(IWDFDeviceInitialize* deviceInit,
                                                 IUnknown* callbackInterface,
                                                 IWDFDevice** device) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateWdfObject(IUnknown* callbackInterface,
                                                    IWDFObject* parentObject,
                                                    IWDFObject** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreatePreallocatedWdfMemory(BYTE* buffer, SIZE_T bufferSize,
                                                                IUnknown* callbackInterface,
                                                                IWDFObject* parentObject,
                                                                IWDFMemory** memory) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateWdfMemory(SIZE_T bufferSize, IUnknown* callbackInterface,
                                                    IWDFObject* parentObject,
                                                    IWDFMemory** memory) = 0;
  virtual BOOL STDMETHODCALLTYPE IsVersionAvailable(UMDF_VERSION_DATA* minimumVersion) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveVersionString(PWSTR version, DWORD* chars) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFDriver> = {
    0xad368ebe, 0x4139, 0x43e3, {0xa8, 0x75, 0x69, 0xb2, 0x66, 0xa9, 0x13, 0x9c}};

struct IWDFDeviceInitialize : public IUnknown {
  virtual void STDMETHODCALLTYPE SetFilter() = 0;
  virtual void STDMETHODCALLTYPE SetLockingConstraint(WDF_CALLBACK_CONSTRAINT lockType) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveDevicePropertyStore(
      PCWSTR subkey, WDF_PROPERTY_STORE_RETRIEVE_FLAGS flags, IWDFNamedPropertyStore** propStore,
      WDF_PROPERTY_STORE_DISPOSITION* disposition) = 0;
  virtual void STDMETHODCALLTYPE SetPowerPolicyOwnership(BOOL own) = 0;
  virtual void STDMETHODCALLTYPE AutoForwardCreateCleanupClose(WDF_TRI_STATE state) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveDeviceInstanceId(PWSTR buffer, DWORD* chars) = 0;
  virtual void STDMETHODCALLTYPE SetPnpCapability(WDF_PNP_CAPABILITY capability,
                                                  WDF_TRI_STATE value) = 0;
  virtual WDF_TRI_STATE STDMETHODCALLTYPE GetPnpCapability(WDF_PNP_CAPABILITY capability) = 0;
};
template <>
inline constexpr GUID iidOf<IWDFDeviceInitialize> = {
    0x74cc381c, 0x0871, 0x43c1, {0x87, 0x8b, 0x3f, 0x7c, 0x9d, 0x16, 0x93, 0x3d}};
