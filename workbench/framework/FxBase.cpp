#include "workbench/framework/FxBase.h"

#include <algorithm>

namespace bench {

FxBase::FxBase(const World& world, std::string_view kind)
    : world_(world), name_(world.ledger.NextName(kind)) {}

ULONG FxBase::References() const {
  const std::lock_guard lock(world_.ledger.objectLock());
  return references_;
}

bool FxBase::IsUsable() const {
  const std::lock_guard lock(world_.ledger.objectLock());
  return state_ == State::kLive;
}

ULONG FxBase::AddReference() {
  {
    const std::lock_guard lock(world_.ledger.objectLock());
    if (state_ != State::kDestroyed) return ++references_ + (inTree_ ? 1U : 0U);
  }
  Report(afterwards_, "IUnknown::AddRef");
  return 0;
}

ULONG FxBase::DropReference() {
  ULONG left = 0;
  bool destroyed = false;
  bool tooOften = false;
  {
    const std::lock_guard lock(world_.ledger.objectLock());
    tooOften = references_ == 0;
    if (!tooOften) {
      --references_;
      left = references_ + (inTree_ ? 1U : 0U);
      destroyed = BecomesDestroyed();
    }
  }
  if (tooOften) Report(rule::kOverRelease, "IUnknown::Release");
  if (destroyed) OnDestroyed();
  return left;
}

FxBase::Entered FxBase::Enter(std::string_view call) {
  Entered entered{.begun = world_.calls.Begin(name_, call)};
  if (world_.ledger.Refuses(name_, call)) {
    entered.refused = true;
    entered.refusal = E_UNEXPECTED;
  } else if (!IsUsable()) {
    Report(BrokenBy(call), call);
    entered.refused = true;
    entered.refusal = E_UNEXPECTED;
  } else if (entered.begun.fault) {
    entered.refused = true;
    entered.refusal = *entered.begun.fault;
  }
  return entered;
}

void FxBase::Report(std::string_view rule, std::string_view what) const {
  world_.ledger.Report(rule, name_ + ": " + std::string(what));
}

HRESULT FxBase::Unexpected(std::string_view call) {
  return Invoke(call, [&] {
    Report(rule::kUnexpectedCall, call);
    return E_NOTIMPL;
  });
}

void FxBase::EnterTree(FxBase* parent) {
  const std::lock_guard lock(world_.ledger.objectLock());
  inTree_ = true;
  parent_ = parent;
  if (parent != nullptr) parent->children_.push_back(this);
}

void FxBase::CollectSubtree(std::vector<FxBase*>& childrenFirst) {
  for (FxBase* child : children_) child->CollectSubtree(childrenFirst);
  childrenFirst.push_back(this);
}

void FxBase::Delete(std::string_view afterwards) {
  std::vector<FxBase*> subtree;
  {
    const std::lock_guard lock(world_.ledger.objectLock());
    if (state_ == State::kLive) CollectSubtree(subtree);
  }
  for (FxBase* object : subtree) object->Quiesce();
  {
    const std::lock_guard lock(world_.ledger.objectLock());
    // Another thread may have deleted a part of it meanwhile.
    std::erase_if(subtree, [](const FxBase* object) { return object->state_ != State::kLive; });
    for (FxBase* object : subtree) {
      object->state_ = State::kDeleted;
      object->afterwards_ = afterwards;
    }
  }
  for (FxBase* object : subtree) {
    object->CallCleanups();
    object->OnDeleted();
  }
  for (FxBase* object : subtree) object->LeaveTree();
}

void FxBase::Orphan() {
  LeaveTree();
}

void FxBase::LeaveTree() {
  std::vector<FxBase*> destroyed;
  {
    const std::lock_guard lock(world_.ledger.objectLock());
    if (parent_ != nullptr) std::erase(parent_->children_, this);
    for (FxBase* child : std::exchange(children_, {})) {
      child->parent_ = nullptr;
      child->inTree_ = false;
      if (child->BecomesDestroyed()) destroyed.push_back(child);
    }
    parent_ = nullptr;
    inTree_ = false;
    if (BecomesDestroyed()) destroyed.push_back(this);
  }
  for (FxBase* object : destroyed) object->OnDestroyed();
}

bool FxBase::BecomesDestroyed() {
  if (references_ > 0 || inTree_ || state_ == State::kDestroyed) return false;
  state_ = State::kDestroyed;
  return true;
}

}  // namespace bench
