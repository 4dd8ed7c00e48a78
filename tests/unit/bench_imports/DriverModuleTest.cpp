#include "workbench/imports/DriverModule.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "tests/unit/bench_imports/ModuleFixture.h"

namespace bench {
namespace {

using DriverModuleTest = ModuleTest;

std::string ErrorOfLoading(const std::filesystem::path& path, Redirector* redirector) {
  try {
    const DriverModule module(path, redirector);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST_F(DriverModuleTest, ImportsAreReplacedBeforeDllMainRuns) {
  redirector_.Time().SetStartTicks(123'456);
  module_ = std::make_unique<DriverModule>(TestModulePath(), &redirector_);
  EXPECT_EQ(redirector_.Faults().CallCount("RegisterTraceGuidsW"), 1u);
  EXPECT_EQ(redirector_.Faults().CallCount("DisableThreadLibraryCalls"), 1u);
  ASSERT_EQ(redirector_.Tracing().Providers().size(), 1u);
  EXPECT_TRUE(IsEqualGUID(redirector_.Tracing().Providers()[0], kTestProvider));
  const auto* const calls =
      reinterpret_cast<const ModuleCalls*>(reinterpret_cast<void*>(module_->Export("moduleCalls")));
  EXPECT_EQ(calls->ticksAtLoad(), 123'456u);
}

TEST_F(DriverModuleTest, ProcessDetachStillGoesThroughTheRedirector) {
  Load();
  module_.reset();
  EXPECT_TRUE(redirector_.Tracing().Providers().empty());
  EXPECT_EQ(redirector_.Books().Alive(Resource::kTraceRegistration), 0u);
}

TEST_F(DriverModuleTest, ExportsAndVersionAreReachable) {
  Load();
  void* object = this;
  EXPECT_EQ(module_->GetClassObject(kTestMessages, kTestMessages, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
  EXPECT_EQ(module_->Version().MajorNumber, 1u);
  EXPECT_EQ(module_->Version().MinorNumber, 11u);
  EXPECT_EQ(module_->Base(), GetModuleHandleA(TEST_MODULE));
}

TEST_F(DriverModuleTest, ImportsAreListedByDllAndName) {
  Load();
  const auto& imports = module_->Imports();
  EXPECT_TRUE(std::any_of(imports.begin(), imports.end(), [](const ImportedFunction& import) {
    return _stricmp(import.dll.c_str(), "advapi32.dll") == 0 && import.name == "TraceMessage";
  }));
}

TEST_F(DriverModuleTest, EveryImportThatTheModuleUsesIsReplaced) {
  Load();
  const std::vector<ImportCalls> calls = redirector_.Calls();
  for (const char* name :
       {"GetTickCount64", "WaitForMultipleObjects", "CreateThread", "RegGetValueW",
        "SetupDiOpenDeviceInfoW", "CoCreateInstance", "malloc"}) {
    EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [&](const ImportCalls& call) {
      return call.name == name;
    })) << name;
  }
}

TEST_F(DriverModuleTest, AModuleWithoutRedirectorKeepsItsImports) {
  const DriverModule plain(TestModulePath());
  const auto* const calls =
      reinterpret_cast<const ModuleCalls*>(reinterpret_cast<void*>(plain.Export("moduleCalls")));
  calls->ticks();
  EXPECT_EQ(redirector_.Faults().CallCount("GetTickCount64"), 0u);
}

TEST_F(DriverModuleTest, TheModuleCanBeLoadedAgainAndIsCaughtAgain) {
  Load();
  module_.reset();
  Load();
  EXPECT_EQ(redirector_.Tracing().Providers().size(), 1u);
}

TEST_F(DriverModuleTest, AMissingFileIsNamed) {
  EXPECT_EQ(ErrorOfLoading("nowhere.dll", &redirector_), "nowhere.dll does not exist");
}

TEST_F(DriverModuleTest, AFileThatIsNoModuleIsRefused) {
  const auto path = std::filesystem::temp_directory_path() / "no-module.dll";
  std::ofstream(path) << "no module";
  EXPECT_NE(ErrorOfLoading(path, &redirector_).find("cannot be loaded, error"), std::string::npos);
  std::filesystem::remove(path);
}

TEST_F(DriverModuleTest, ALackingExportIsNamed) {
  EXPECT_NE(ErrorOfLoading("c:\\windows\\system32\\hid.dll", &redirector_)
                .find("has no export DllGetClassObject"),
            std::string::npos);
}

TEST_F(DriverModuleTest, AModuleThatIsLoadedAlreadyIsRefused) {
  Load();
  EXPECT_NE(ErrorOfLoading(TestModulePath(), nullptr).find("is loaded already"), std::string::npos);
}

TEST_F(DriverModuleTest, ASecondRedirectorIsRefused) {
  EXPECT_THROW(Redirector{clock_}, std::logic_error);
}

TEST(ImportTable, APreviousPointerIsReturnedAndRestored) {
  const DriverModule plain(TestModulePath());
  const auto* const calls =
      reinterpret_cast<const ModuleCalls*>(reinterpret_cast<void*>(plain.Export("moduleCalls")));
  ImportTable table(plain.Base());
  const auto fixed = +[]() -> ULONGLONG { return 42; };
  void* const previous =
      table.Replace("kernel32.DLL", "GetTickCount64", reinterpret_cast<void*>(fixed));
  EXPECT_NE(previous, nullptr);
  EXPECT_EQ(calls->ticks(), 42u);
  table.Restore();
  EXPECT_NE(calls->ticks(), 42u);
  EXPECT_EQ(table.Replace("KERNEL32.dll", "GetTickCount64", previous), previous);
}

TEST(ImportTable, AFunctionThatIsNotImportedIsNotReplaced) {
  const DriverModule plain(TestModulePath());
  ImportTable table(plain.Base());
  EXPECT_EQ(table.Replace("kernel32.dll", "gettickcount64", nullptr), nullptr);
  EXPECT_EQ(table.Replace("ole32.dll", "GetTickCount64", nullptr), nullptr);
}

}  // namespace
}  // namespace bench
