// A callback object whose interfaces answer QueryInterface as a test wants.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

#include "platform/WdfCallbacks.h"
#include "workbench/framework/InterfaceNames.h"

namespace bench {

/// Three interfaces in three separate parts of one object; deletes itself.
class OddObject {
 public:
  enum Face : std::size_t { kUnknown, kObjectCleanup, kFileCleanup, kFaces };

  /// gives[a][b]: interface a gives interface b. All do, unless a test changes it.
  std::array<std::array<bool, kFaces>, kFaces> gives = {
      {{true, true, true}, {true, true, true}, {true, true, true}}};
  /// Asked for IUnknown, IObjectCleanup gives itself.
  bool secondIdentity = false;
  /// What it does not have it gives as a null pointer, with success.
  bool nullSuccess = false;

  IUnknown* AsUnknown() { return &unknown_; }

 private:
  HRESULT Query(Face from, const GUID& iid, void** object) {
    *object = nullptr;
    for (const Face to : {kUnknown, kObjectCleanup, kFileCleanup}) {
      if (!SameGuid(iid, *kIids[to])) continue;
      if (!gives[from][to]) return E_NOINTERFACE;
      *object = Pointer(to == kUnknown && from == kObjectCleanup && secondIdentity ? from : to);
      ++references_;
      return S_OK;
    }
    return nullSuccess ? S_OK : E_NOINTERFACE;
  }
  void* Pointer(Face face) {
    if (face == kObjectCleanup) return static_cast<IObjectCleanup*>(&objectCleanup_);
    if (face == kFileCleanup) return static_cast<IFileCallbackCleanup*>(&fileCleanup_);
    return static_cast<IUnknown*>(&unknown_);
  }
  ULONG Release() {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  template <class Interface, Face kFace>
  class Part : public Interface {
   public:
    explicit Part(OddObject& whole) : whole_(whole) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
      return whole_.Query(kFace, iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++whole_.references_; }
    ULONG STDMETHODCALLTYPE Release() override { return whole_.Release(); }

   private:
    OddObject& whole_;
  };
  class ObjectCleanupPart final : public Part<IObjectCleanup, kObjectCleanup> {
   public:
    using Part::Part;
    void STDMETHODCALLTYPE OnCleanup(IWDFObject*) override {}
  };
  class FileCleanupPart final : public Part<IFileCallbackCleanup, kFileCleanup> {
   public:
    using Part::Part;
    void STDMETHODCALLTYPE OnCleanupFile(IWDFFile*) override {}
  };

  static constexpr const GUID* kIids[kFaces] = {&iidOf<IUnknown>, &iidOf<IObjectCleanup>,
                                                &iidOf<IFileCallbackCleanup>};
  std::atomic<ULONG> references_{0};
  Part<IUnknown, kUnknown> unknown_{*this};
  ObjectCleanupPart objectCleanup_{*this};
  FileCleanupPart fileCleanup_{*this};
};

}  // namespace bench
