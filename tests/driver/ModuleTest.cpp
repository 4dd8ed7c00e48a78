// Module entry and class factory, through the DLL's exports.

#include <stdexcept>
#include <utility>

#include "platform/WdfCallbacks.h"
#include "tests/driver/RigTest.h"
#include "tests/driver/SensorFace.h"
#include "workbench/console/Program.h"

namespace bench {
namespace {

using testing::IsEmpty;

class ModuleTest : public RigTest {
 protected:
  stelvane::ComPtr<IClassFactory> Factory() {
    stelvane::ComPtr<IClassFactory> factory;
    EXPECT_EQ(rig().module().GetClassObject(kDriverClass, iidOf<IClassFactory>,
                                            reinterpret_cast<void**>(factory.Put())),
              S_OK);
    return factory;
  }
};

TEST_F(ModuleTest, TheVersionRecordSaysOneElevenZero) {
  const UMDF_VERSION_DATA& version = Load().module().Version();
  EXPECT_EQ(version.MajorNumber, 1U);
  EXPECT_EQ(version.MinorNumber, 11U);
  EXPECT_EQ(version.ServiceNumber, 0U);
}

TEST_F(ModuleTest, ASecondRequestForTheDriverClassGivesTheSameCachedFactory) {
  Load();
  EXPECT_EQ(Factory().Get(), Factory().Get());
}

TEST_F(ModuleTest, AnUnknownClassIsNotAvailable) {
  Load();
  void* object = this;
  constexpr CLSID kOther = {1, 2, 3, {4}};
  EXPECT_EQ(rig().module().GetClassObject(kOther, iidOf<IClassFactory>, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ModuleTest, ANullPlaceForTheObjectIsRefused) {
  Load();
  EXPECT_EQ(rig().module().GetClassObject(kDriverClass, iidOf<IClassFactory>, nullptr), E_POINTER);
  EXPECT_EQ(Factory()->CreateInstance(nullptr, iidOf<IUnknown>, nullptr), E_POINTER);
  EXPECT_EQ(Factory()->QueryInterface(iidOf<IClassFactory>, nullptr), E_POINTER);
}

TEST_F(ModuleTest, TheFactoryIsOneObjectByBothItsInterfaces) {
  Load();
  const stelvane::ComPtr<IClassFactory> factory = Factory();
  stelvane::ComPtr<IUnknown> unknown;
  EXPECT_EQ(factory.As(unknown), S_OK);
  EXPECT_EQ(unknown.Get(), factory.Get());
}

TEST_F(ModuleTest, AnInterfaceThatTheFactoryLacksIsRefused) {
  Load();
  void* object = this;
  EXPECT_EQ(rig().module().GetClassObject(kDriverClass, iidOf<IDriverEntry>, &object),
            E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ModuleTest, AggregationIsAllowedForIUnknownOnly) {
  Load();
  const stelvane::ComPtr<IClassFactory> factory = Factory();
  void* object = this;
  EXPECT_EQ(factory->CreateInstance(factory.Get(), iidOf<IDriverEntry>, &object),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->CreateInstance(factory.Get(), iidOf<IUnknown>, &object), S_OK);
  static_cast<IUnknown*>(object)->Release();
}

TEST_F(ModuleTest, TheDriverObjectAnswersIDriverEntryAndIUnknownAndIsDestroyedForOthers) {
  Load();
  const stelvane::ComPtr<IClassFactory> factory = Factory();
  for (const GUID& iid : {iidOf<IDriverEntry>, iidOf<IUnknown>}) {
    void* object = nullptr;
    ASSERT_EQ(factory->CreateInstance(nullptr, iid, &object), S_OK);
    EXPECT_EQ(static_cast<IUnknown*>(object)->Release(), 0U);
  }
  void* object = this;
  EXPECT_EQ(factory->CreateInstance(nullptr, iidOf<IPnpCallback>, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ModuleTest, TheModuleStaysWhileTheServerIsLocked) {
  Load();
  const stelvane::ComPtr<IClassFactory> factory = Factory();
  rig().ReleaseDriver();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_OK);
  factory->LockServer(TRUE);
  EXPECT_EQ(rig().module().CanUnloadNow(), S_FALSE);
  factory->LockServer(FALSE);
  EXPECT_EQ(rig().module().CanUnloadNow(), S_OK);
}

TEST_F(ModuleTest, TheModuleStaysUntilTheDriverObjectIsReleased) {
  Start();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_FALSE);
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_EQ(rig().module().CanUnloadNow(), S_FALSE);
  rig().ReleaseDriver();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_OK);
}

TEST_F(ModuleTest, TheModuleStaysWhileASensorCoreLivesAfterTheDriverObjectWasReleased) {
  RigOptions options;
  options.withheldClasses = {ApiClass::kClassExtension};
  Load(std::move(options));
  const SensorFace face(rig());
  ASSERT_EQ(rig().Start(), S_OK);
  stelvane::ComPtr<ISensorDriver> core(face.Driver());
  ASSERT_TRUE(core);
  rig().ReleaseDriver();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_FALSE);
  core.Reset();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_OK);
}

TEST_F(ModuleTest, TheModuleStaysWhileAnObjectLivesAfterTheDriverObjectWasReleased) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  stelvane::ComPtr<IUnknown> context(callbacks().pnp.Get());
  rig().ReleaseDriver();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_FALSE);  // the callback object lives
  context.Reset();
  EXPECT_EQ(rig().module().CanUnloadNow(), S_OK);
}

TEST_F(ModuleTest, OutOfMemoryForTheClassFactoryIsSaidAndTheNextRequestMakesIt) {
  Redirector redirector(clock_);
  const DriverModule module(ProgramFolder() / "Stelvane.dll", &redirector);
  redirector.Faults().Clear();
  redirector.Faults().FailImport("malloc", 1);
  void* object = this;
  EXPECT_EQ(module.GetClassObject(kDriverClass, iidOf<IClassFactory>, &object), E_OUTOFMEMORY);
  EXPECT_EQ(object, nullptr);
  stelvane::ComPtr<IClassFactory> factory;
  EXPECT_EQ(module.GetClassObject(kDriverClass, iidOf<IClassFactory>,
                                  reinterpret_cast<void**>(factory.Put())),
            S_OK);
  EXPECT_TRUE(factory);
}

TEST_F(ModuleTest, OutOfMemoryForTheDriverObjectIsSaid) {
  Load();
  const stelvane::ComPtr<IClassFactory> factory = Factory();
  void* object = this;
  faults().Clear();
  faults().FailImport("malloc", 1);
  EXPECT_EQ(factory->CreateInstance(nullptr, iidOf<IDriverEntry>, &object), E_OUTOFMEMORY);
  faults().Clear();
  EXPECT_EQ(object, nullptr);
}

TEST_F(ModuleTest, ALockThatCannotBeMadeFailsTheCreationWithItsError) {
  Load();
  const stelvane::ComPtr<IClassFactory> factory = Factory();
  void* object = this;
  faults().Clear();
  faults().FailImport("InitializeCriticalSectionAndSpinCount", 1, {FALSE, ERROR_NOT_ENOUGH_MEMORY});
  EXPECT_EQ(factory->CreateInstance(nullptr, iidOf<IDriverEntry>, &object),
            HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));
  faults().Clear();
  EXPECT_EQ(object, nullptr);
}

TEST_F(ModuleTest, AModuleWhoseLockCannotBeMadeIsNotLoadedAndLeavesNoProvider) {
  Redirector redirector(clock_);
  redirector.Faults().FailImport("InitializeCriticalSectionAndSpinCount", 1);
  EXPECT_THROW(DriverModule(ProgramFolder() / "Stelvane.dll", &redirector), std::runtime_error);
  EXPECT_EQ(redirector.Faults().CallCount("RegisterTraceGuidsW"), 1U);
  EXPECT_THAT(redirector.Tracing().Providers(), IsEmpty());
}

TEST_F(ModuleTest, UnloadingReleasesTheFactoryAndDeletesTheLock) {
  Redirector redirector(clock_);
  {
    const DriverModule module(ProgramFolder() / "Stelvane.dll", &redirector);
    stelvane::ComPtr<IClassFactory> factory;
    ASSERT_EQ(module.GetClassObject(kDriverClass, iidOf<IClassFactory>,
                                    reinterpret_cast<void**>(factory.Put())),
              S_OK);
  }
  EXPECT_EQ(redirector.Books().Report(), "");
}

}  // namespace
}  // namespace bench
