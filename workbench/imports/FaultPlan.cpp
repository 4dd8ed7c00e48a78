#include "workbench/imports/FaultPlan.h"

#include <algorithm>
#include <stdexcept>

#include "workbench/imports/Imports.h"
#include "workbench/imports/LastError.h"

namespace bench {

namespace {

std::size_t Find(std::string_view name) {
  const auto found = std::find_if(kImports.begin(), kImports.end(),
                                  [&](const ImportFact& fact) { return fact.name == name; });
  if (found == kImports.end()) {
    throw std::invalid_argument(std::string(name) + " is not a redirected import");
  }
  return static_cast<std::size_t>(found - kImports.begin());
}

}  // namespace

FaultPlan::FaultPlan() : counts_(kImports.size()) {}

void FaultPlan::FailImport(std::string_view name, std::uint64_t nth, Extent extent) {
  const ImportFact& fact = kImports[Find(name)];
  if (!fact.failure) throw std::invalid_argument(std::string(name) + " cannot fail");
  FailImport(name, nth, *fact.failure, extent);
}

void FaultPlan::FailImport(std::string_view name, std::uint64_t nth, Failure failure,
                           Extent extent) {
  const std::size_t import = Find(name);
  if (!kImports[import].hasResult) throw std::invalid_argument(std::string(name) + " cannot fail");
  const std::lock_guard lock(mutex_);
  plan_.emplace(import, Entry{nth, failure, extent});
  armed_ = true;
}

void FaultPlan::Clear() {
  const std::lock_guard lock(mutex_);
  armed_ = false;
  everything_ = false;
  plan_.clear();
  failed_ = 0;
  for (auto& count : counts_) count = 0;
}

std::uint64_t FaultPlan::CallCount(std::string_view name) const {
  return counts_[Find(name)];
}

std::optional<Failure> FaultPlan::OnCall(std::size_t import) {
  const std::uint64_t call = ++counts_[import];
  if (!armed_) return std::nullopt;
  const std::optional<Failure> failure = Planned(import, call);
  if (failure && observer_) {
    const KeepLastError keep;
    observer_(kImports[import].name, *failure);
  }
  return failure;
}

std::optional<Failure> FaultPlan::Planned(std::size_t import, std::uint64_t call) {
  const KeepLastError keep;
  const std::lock_guard lock(mutex_);
  const auto [first, last] = plan_.equal_range(import);
  for (auto place = first; place != last; ++place) {
    const Entry& entry = place->second;
    if (call != entry.nth && (call < entry.nth || entry.extent == Extent::kOnce)) continue;
    if (entry.extent == Extent::kEverything) everything_ = true;
    ++failed_;
    return entry.failure;
  }
  if (!everything_ || !kImports[import].failure) return std::nullopt;
  ++failed_;
  return kImports[import].failure;
}

}  // namespace bench
