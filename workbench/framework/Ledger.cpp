#include "workbench/framework/Ledger.h"

#include <algorithm>

#include "workbench/framework/FxBase.h"

namespace bench {

Ledger::Ledger() = default;
Ledger::~Ledger() = default;

void Ledger::Report(std::string_view rule, std::string_view what) {
  const std::lock_guard lock(reportLock_);
  violations_.push_back({std::string(rule), std::string(what)});
}

std::vector<std::string> Ledger::Violations() const {
  const std::lock_guard lock(reportLock_);
  std::vector<std::string> lines;
  for (const Entry& entry : violations_) lines.push_back(entry.rule + ": " + entry.what);
  return lines;
}

std::size_t Ledger::Count(std::string_view rule) const {
  const std::lock_guard lock(reportLock_);
  return static_cast<std::size_t>(
      std::ranges::count_if(violations_, [&](const Entry& entry) { return entry.rule == rule; }));
}

std::vector<std::string> Ledger::Alive() const {
  const std::lock_guard lock(objectLock_);
  std::vector<std::string> lines;
  for (const auto& object : objects_) {
    if (object->state_ == FxBase::State::kDestroyed) continue;
    lines.push_back(object->name_ + " (" + std::to_string(object->references_) + " references)");
  }
  return lines;
}

void Ledger::ReportLeaks() {
  std::vector<std::string> leaks;
  {
    const std::lock_guard lock(objectLock_);
    for (const auto& object : objects_) {
      if (object->references_ == 0) continue;
      leaks.push_back(object->name_ + ": " + std::to_string(object->references_) + " left");
    }
  }
  for (const std::string& leak : leaks) Report(rule::kLeak, leak);
}

void Ledger::WaitForDeleted() {
  std::vector<FxBase*> deleted;
  {
    const std::lock_guard lock(objectLock_);
    for (const auto& object : objects_) {
      if (object->state_ != FxBase::State::kLive) deleted.push_back(object.get());
    }
  }
  for (FxBase* object : deleted) object->Quiesce();
}

std::string Ledger::NextName(std::string_view kind) {
  const std::lock_guard lock(reportLock_);
  auto place = lastNumber_.find(kind);
  if (place == lastNumber_.end()) place = lastNumber_.emplace(kind, 0).first;
  return std::string(kind) + " " + std::to_string(++place->second);
}

void Ledger::Adopt(std::unique_ptr<FxBase> object) {
  const std::lock_guard lock(objectLock_);
  byPointer_.emplace(object->Key(), object.get());
  objects_.push_back(std::move(object));
}

FxBase* Ledger::Find(const void* interfacePointer) const {
  const std::lock_guard lock(objectLock_);
  const auto place = byPointer_.find(interfacePointer);
  return place == byPointer_.end() ? nullptr : place->second;
}

}  // namespace bench
