// The part of a simulated object that no interface shows: its name, count, place in the tree and
// the guard around each of its methods.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/framework/World.h"

namespace bench {

/// The count holds the driver's references only; the framework's own hold is the place in the tree.
/// An object with neither is destroyed: it keeps its memory but not its contents, and every further
/// use is a violation. All methods from any thread.
class FxBase {
 public:
  FxBase(const World& world, std::string_view kind);
  virtual ~FxBase() = default;
  FxBase(const FxBase&) = delete;
  FxBase& operator=(const FxBase&) = delete;

  const std::string& name() const { return name_; }
  const World& world() const { return world_; }
  ULONG References() const;
  bool IsUsable() const;

  /// Ends the object and everything below it. Running callbacks are waited for. From now on methods
  /// break the rule `afterwards`; references that are still out have to be released all the same.
  void Delete(std::string_view afterwards = rule::kDeletedObject);
  /// The framework lets go of the object without ending it: it lives on while it is referenced.
  void Orphan();

  /// The address that callers know the object by.
  virtual const void* Key() const = 0;

 protected:
  friend class Ledger;

  ULONG AddReference();
  ULONG DropReference();

  /// Stops what runs on the object's behalf, before anything of the subtree is marked as deleted.
  virtual void Quiesce() {}
  /// Called once at the object's end in the tree: the driver's own clean-up callbacks, and then
  /// letting go of its callback objects.
  virtual void CallCleanups() {}
  virtual void OnDeleted() {}
  /// Called once when nothing holds the object any more: to free what it contains.
  virtual void OnDestroyed() {}
  /// The rule that a call on the dead object breaks.
  virtual std::string_view BrokenBy(std::string_view) const { return afterwards_; }

  void Report(std::string_view rule, std::string_view what) const;
  /// The object behind an interface pointer that the driver passed; a pointer to anything else is
  /// reported and gives null, and so is an object that was deleted.
  template <class Object>
  Object* FindObject(const void* interfacePointer) const {
    auto* const found = dynamic_cast<Object*>(world_.ledger.Find(interfacePointer));
    if (found == nullptr) {
      Report(rule::kForeignObject, "argument");
    } else if (!found->IsUsable()) {
      Report(rule::kDeletedObject, "argument " + found->name());
      return nullptr;
    }
    return found;
  }
  /// A method that the driver under test has no business calling.
  HRESULT Unexpected(std::string_view call);

  // The guard around a method: notes the call, and keeps it from happening when it is planned to
  // fail or the object is dead.
  template <class Body>
  HRESULT Invoke(std::string_view call, Body body) {
    const Entered entered = Enter(call);
    const HRESULT result = entered.refused ? entered.refusal : body();
    world_.calls.End(entered.begun, result);
    return result;
  }
  template <class Value, class Body>
  Value InvokeFor(std::string_view call, Value refused, Body body) {
    const Entered entered = Enter(call);
    Value value = entered.refused ? refused : body();
    world_.calls.End(entered.begun, entered.refusal);
    return value;
  }
  template <class Body>
  void InvokeVoid(std::string_view call, Body body) {
    const Entered entered = Enter(call);
    if (!entered.refused) body();
    world_.calls.End(entered.begun, entered.refusal);
  }

 private:
  enum class State { kLive, kDeleted, kDestroyed };
  struct Entered {
    CallRecord::Begun begun;
    bool refused = false;
    HRESULT refusal = S_OK;
  };

  Entered Enter(std::string_view call);
  void CollectSubtree(std::vector<FxBase*>& childrenFirst);
  void LeaveTree();
  bool BecomesDestroyed();

  const World world_;
  const std::string name_;
  // Guarded by the ledger's object lock.
  State state_ = State::kLive;
  std::string_view afterwards_ = rule::kDeletedObject;
  ULONG references_ = 0;
  bool inTree_ = false;
  FxBase* parent_ = nullptr;
  std::vector<FxBase*> children_;

  template <class Object, class... Args>
  friend Object& Make(const World& world, FxBase* parent, Args&&... args);
  void EnterTree(FxBase* parent);
};

/// Makes an object in the tree below `parent` (null: at the root). Its first reference is still to
/// be handed out.
template <class Object, class... Args>
Object& Make(const World& world, FxBase* parent, Args&&... args) {
  auto owned = std::make_unique<Object>(world, std::forward<Args>(args)...);
  Object& object = *owned;
  world.ledger.Adopt(std::move(owned));
  object.EnterTree(parent);
  return object;
}

}  // namespace bench
