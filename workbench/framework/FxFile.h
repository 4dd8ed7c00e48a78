// A file object: a client's handle, or the handle that a USB target opened for itself.
#pragma once

#include "platform/WdfRequest.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxFile final : public FxObject<IWDFFile> {
 public:
  FxFile(const World& world, std::string_view kind)
      : FxObject(world, kind, DeletedBy::kFramework) {}

  HRESULT STDMETHODCALLTYPE RetrieveFileName(PWSTR, DWORD*) override {
    return Unexpected("IWDFFile::RetrieveFileName");
  }
  void STDMETHODCALLTYPE GetDevice(IWDFDevice**) override { Unexpected("IWDFFile::GetDevice"); }

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFFile, IWDFObject>(this, iid); }
};

}  // namespace bench
