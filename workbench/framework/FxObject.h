// The COM face of a simulated object: identity, counting and the methods of IWDFObject.
#pragma once

#include "base/ComPtr.h"
#include "platform/WdfCallbacks.h"
#include "platform/WdfObject.h"
#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxBase.h"
#include "workbench/framework/InterfaceNames.h"
#include "workbench/framework/Results.h"

namespace bench {

/// An object with the interface `Primary` and further ones of their own roots.
template <class Primary, class... Extras>
class FxUnknown : public FxBase, public Primary, public Extras... {
 public:
  using FxBase::FxBase;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const std::string call = "IUnknown::QueryInterface(" + InterfaceName(iid) + ")";
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return Invoke(call, [&] {
      void* const found = SameGuid(iid, iidOf<IUnknown>) ? static_cast<Primary*>(this) : Find(iid);
      if (found == nullptr) return E_NOINTERFACE;
      AddReference();
      *object = found;
      return S_OK;
    });
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
  ULONG STDMETHODCALLTYPE Release() override { return DropReference(); }

  const void* Key() const override { return static_cast<const Primary*>(this); }

  /// Gives out one counted reference.
  template <class Interface>
  void HandOut(Interface** place) {
    AddReference();
    *place = this;
  }

 protected:
  /// The interface with that id, IUnknown aside; null if there is none.
  virtual void* Find(const GUID& iid) = 0;

  /// Looks `iid` up among `Interfaces`, all of which `object` has.
  template <class... Interfaces, class Object>
  static void* Match(Object* object, const GUID& iid) {
    void* found = nullptr;
    ((SameGuid(iid, iidOf<Interfaces>) ? void(found = static_cast<Interfaces*>(object)) : void()),
     ...);
    return found;
  }
};

/// Who may end an object with DeleteWdfObject.
enum class DeletedBy { kDriver, kFramework };

/// An object that derives from IWDFObject.
template <class Primary, class... Extras>
class FxObject : public FxUnknown<Primary, Extras...> {
 public:
  FxObject(const World& world, std::string_view kind, DeletedBy deletedBy)
      : FxUnknown<Primary, Extras...>(world, kind), deletedBy_(deletedBy) {}

  HRESULT STDMETHODCALLTYPE DeleteWdfObject() override {
    return this->Invoke("IWDFObject::DeleteWdfObject", [this] {
      if (deletedBy_ == DeletedBy::kFramework) {
        this->Report(rule::kFrameworkOwned, this->name());
        return kInvalidDeviceRequest;
      }
      this->Delete();
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE AssignContext(IObjectCleanup* cleanupCallback, void* context) override {
    return this->Invoke("IWDFObject::AssignContext", [&] {
      context_ = context;
      CallAtCleanup(stelvane::ComPtr<IObjectCleanup>(cleanupCallback));
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE RetrieveContext(void** context) override {
    return this->Invoke("IWDFObject::RetrieveContext", [&] {
      *context = context_;
      return context_ != nullptr ? S_OK : kNotFound;
    });
  }
  void STDMETHODCALLTYPE AcquireLock() override { this->Unexpected("IWDFObject::AcquireLock"); }
  void STDMETHODCALLTYPE ReleaseLock() override { this->Unexpected("IWDFObject::ReleaseLock"); }

  /// Adds a callback for the object's end; null is none.
  void CallAtCleanup(stelvane::ComPtr<IObjectCleanup> callback) {
    if (callback) cleanups_.push_back(std::move(callback));
  }

 protected:
  void CallCleanups() override {
    for (const auto& callback : std::exchange(cleanups_, {})) {
      CallDriverVoid(this->world(), "IObjectCleanup::OnCleanup",
                     [&] { callback->OnCleanup(this); });
    }
  }

 private:
  const DeletedBy deletedBy_;
  void* context_ = nullptr;
  std::vector<stelvane::ComPtr<IObjectCleanup>> cleanups_;
};

}  // namespace bench
