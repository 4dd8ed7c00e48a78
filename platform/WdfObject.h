// Root of the framework object tree.
#pragma once

#include <unknwn.h>

#include "platform/Iid.h"

struct IObjectCleanup;

struct IWDFObject : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE DeleteWdfObject() = 0;
  virtual HRESULT STDMETHODCALLTYPE AssignContext(IObjectCleanup* cleanupCallback,
                                                  void* context) = 0;
  virtual HRESULT STDMETHODCALLTYPE RetrieveContext(void** context) = 0;
  virtual void STDMETHODCALLTYPE AcquireLock() = 0;
  virtual void STDMETHODCALLTYPE ReleaseLock() = 0;
};
template <>
inline constexpr GUID iidOf<IWDFObject> = {
    0x64275c66, 0x2e71, 0x4060, {0xb5, 0xf4, 0x3a, 0x76, 0xdf, 0x96, 0xed, 0x3c}};
