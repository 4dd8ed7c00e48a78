// COM's rules of QueryInterface, tried on a driver's callback object.
#include <cstddef>
#include <vector>

#include "platform/WdfCallbacks.h"
#include "workbench/framework/DriverCall.h"

namespace bench {

namespace {

constexpr const GUID* kCallbackInterfaces[] = {
    &iidOf<IUnknown>,
    &iidOf<IDriverEntry>,
    &iidOf<IPnpCallback>,
    &iidOf<IPnpCallbackHardware>,
    &iidOf<IPnpCallbackSelfManagedIo>,
    &iidOf<IFileCallbackCleanup>,
    &iidOf<IQueueCallbackDeviceIoControl>,
    &iidOf<IObjectCleanup>,
    &iidOf<IRequestCallbackRequestCompletion>,
    &iidOf<IUsbTargetPipeContinuousReaderCallbackReadComplete>,
    &iidOf<IUsbTargetPipeContinuousReaderCallbackReadersFailed>,
};

// The object's interfaces and which of them each gives: rows and columns are those it gives itself.
class Interfaces {
 public:
  Interfaces(const World& world, IUnknown& object, const GUID* further)
      : world_(world), object_(object) {
    for (const GUID* iid : kCallbackInterfaces) Add(iid);
    if (further != nullptr) Add(further);
    for (const Interface& from : pointers_) {
      std::vector<bool>& row = gives_.emplace_back();
      for (const Interface& to : pointers_) row.push_back(bool(Ask(*from.pointer.Get(), *to.iid)));
    }
  }

  void Check() const {
    for (std::size_t a = 0; a < pointers_.size(); ++a) {
      CheckIdentity(a);
      for (std::size_t b = 0; b < pointers_.size(); ++b) {
        if (!gives_[a][b]) ReportMissing(a, b);
      }
    }
  }

 private:
  struct Interface {
    const GUID* iid;
    // Of the interface `iid`; every interface begins with IUnknown's methods.
    stelvane::ComPtr<IUnknown> pointer;
  };

  void Add(const GUID* iid) {
    if (auto given = Ask(object_, *iid)) pointers_.push_back({iid, std::move(given)});
  }

  stelvane::ComPtr<IUnknown> Ask(IUnknown& from, const GUID& iid) const {
    stelvane::ComPtr<IUnknown> given;
    *given.Put() = static_cast<IUnknown*>(AskFor(world_, from, iid));
    return given;
  }

  void CheckIdentity(std::size_t a) const {
    const auto identity = Ask(object_, iidOf<IUnknown>);
    const auto same = Ask(*pointers_[a].pointer.Get(), iidOf<IUnknown>);
    if (identity && (!same || same.Get() == identity.Get())) return;
    world_.ledger.Report(rule::kIdentity, "IUnknown by way of " + InterfaceName(*pointers_[a].iid));
  }

  // `a` does not give `b`, though the object has both.
  void ReportMissing(std::size_t a, std::size_t b) const {
    std::string_view rule = rule::kNotTransitive;  // each is reached by way of the object
    if (a == b) {
      rule = rule::kNotReflexive;
    } else if (gives_[b][a]) {
      rule = rule::kNotSymmetric;
    }
    world_.ledger.Report(rule, InterfaceName(*pointers_[a].iid) + " does not give " +
                                   InterfaceName(*pointers_[b].iid));
  }

  const World& world_;
  IUnknown& object_;
  std::vector<Interface> pointers_;
  std::vector<std::vector<bool>> gives_;
};

}  // namespace

void CheckQueryInterface(const World& world, IUnknown& object, const GUID* further) {
  Interfaces(world, object, further).Check();
}

}  // namespace bench
