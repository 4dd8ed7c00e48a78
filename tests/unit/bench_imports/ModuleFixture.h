// The test module, loaded with redirected imports on a virtual clock.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "tests/unit/bench_imports/module/TestModule.h"
#include "workbench/clock/VirtualClock.h"
#include "workbench/imports/DriverModule.h"
#include "workbench/imports/Redirector.h"

namespace bench {

/// The test module lies beside the test program.
inline std::filesystem::path TestModulePath() {
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  return std::filesystem::path(program).parent_path() / TEST_MODULE;
}

class ModuleTest : public ::testing::Test {
 protected:
  void Load() {
    module_ = std::make_unique<DriverModule>(TestModulePath(), &redirector_);
    calls_ = reinterpret_cast<const ModuleCalls*>(
        reinterpret_cast<void*>(module_->Export("moduleCalls")));
    ASSERT_NE(calls_, nullptr);
    redirector_.Books().Mark();
    redirector_.Faults().Clear();
  }
  const ModuleCalls& Dll() { return *calls_; }

  VirtualClock clock_;
  Redirector redirector_{clock_};
  std::unique_ptr<DriverModule> module_;
  const ModuleCalls* calls_ = nullptr;
};

/// With the module loaded from the start.
class LoadedModuleTest : public ModuleTest {
 protected:
  void SetUp() override { Load(); }
};

/// A callable run by a thread that the module creates.
template <typename Body>
HANDLE StartInModule(const ModuleCalls& dll, Body& body) {
  return dll.createThread(
      [](void* argument) -> DWORD {
        (*static_cast<Body*>(argument))();
        return 0;
      },
      &body, 0);
}

}  // namespace bench
