#include "workbench/imports/Redirector.h"

#include <atomic>
#include <stdexcept>

#include "workbench/imports/Hooks.h"
#include "workbench/imports/Imports.h"

namespace bench {

namespace {
std::atomic<Redirector*> current{nullptr};
}  // namespace

Redirector::Redirector(Clock& clock) : time_(clock), tracing_(clock), originals_(kImports.size()) {
  Redirector* none = nullptr;
  if (!current.compare_exchange_strong(none, this)) {
    throw std::logic_error("only one redirector can exist at a time");
  }
}

Redirector::~Redirector() {
  Detach(true);
  current = nullptr;
}

Redirector& Redirector::Current() {
  return *current;
}

void Redirector::Attach(HMODULE module) {
  module_ = module;
  table_ = ImportTable(module);
  for (const std::span<const Hook> hooks :
       {TimeHooks(), ResourceHooks(), SystemHooks(), CountedHooks()}) {
    for (const Hook& hook : hooks) {
      const ImportFact& fact = kImports[hook.import];
      originals_[hook.import] = table_.Replace(fact.dll, fact.name, hook.replacement);
    }
  }
}

void Redirector::Detach(bool loaded) {
  if (loaded) table_.Restore();
  table_ = ImportTable();
  module_ = nullptr;
}

std::vector<ImportCalls> Redirector::Calls() const {
  std::vector<ImportCalls> calls;
  for (std::size_t i = 0; i < kImports.size(); ++i) {
    if (originals_[i] == nullptr) continue;
    calls.push_back(
        {std::string(kImports[i].name), faults_.CallCount(i), kImports[i].failure.has_value()});
  }
  return calls;
}

std::uintptr_t Redirector::OffsetOf(const void* address) const {
  return reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module_);
}

}  // namespace bench
