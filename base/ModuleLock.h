// The module lock: while it is held, the DLL must stay loaded.
#pragma once

#include <atomic>

namespace stelvane {

/// Number of living objects and server locks; DllCanUnloadNow answers by it.
inline constinit std::atomic<long> moduleLockCount{0};

/// Holds the module for the lifetime of an object.
class ModuleReference {
 public:
  ModuleReference() { ++moduleLockCount; }
  ~ModuleReference() { --moduleLockCount; }
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;
};

}  // namespace stelvane
