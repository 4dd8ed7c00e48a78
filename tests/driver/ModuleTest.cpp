// Module entry, class factory and tracing, through the DLL's exports.

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/WdfCallbacks.h"
#include "tests/driver/RigTest.h"
#include "tests/driver/SensorFace.h"
#include "workbench/console/Program.h"

namespace bench {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr GUID kControlGuid = {
    0xf4acaab5, 0xc82f, 0x4f79, {0xbf, 0x37, 0xc0, 0x4f, 0x93, 0xc0, 0x13, 0x89}};
// The messages of driver/Driver.cpp.
constexpr GUID kDriverMessages = {
    0xb9f2a9b6, 0x26c8, 0x4f5e, {0x8d, 0x0c, 0x3d, 0x9f, 0x6a, 0x1c, 0x7e, 0x42}};
constexpr ULONG kAllFlags = 0xFFFFFFFF;

class ModuleTest : public RigTest {
 protected:
  stelvane::ComPtr<IClassFactory> Factory() {
    stelvane::ComPtr<IClassFactory> factory;
    EXPECT_EQ(rig().module().GetClassObject(kDriverClass, iidOf<IClassFactory>,
                                            reinterpret_cast<void**>(factory.Put())),
              S_OK);
    return factory;
  }
  std::vector<USHORT> DriverMessageNumbers() {
    std::vector<USHORT> numbers;
    for (const TraceRecord& message : rig().redirector().Tracing().TakeMessages()) {
      if (IsEqualGUID(message.message, kDriverMessages)) numbers.push_back(message.number);
    }
    return numbers;
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

TEST_F(ModuleTest, LoadingRegistersTheControlGuidAndNothingElse) {
  const std::vector<GUID> providers = Load().redirector().Tracing().Providers();
  ASSERT_THAT(providers, SizeIs(1));
  EXPECT_TRUE(IsEqualGUID(providers[0], kControlGuid));
}

TEST_F(ModuleTest, UnloadingUnregistersTheProvider) {
  Load();
  rig().Shutdown();
  EXPECT_THAT(rig().redirector().Tracing().Providers(), IsEmpty());
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

TEST_F(ModuleTest, AFailedTraceRegistrationIsIgnoredAndEverySiteStaysSilent) {
  RigOptions options;
  options.beforeLoad = [](Redirector& redirector, CallRecord&) {
    redirector.Faults().FailImport("RegisterTraceGuidsW", 1);
  };
  Load(std::move(options));
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, kAllFlags);
  EXPECT_EQ(rig().Start(), S_OK);
  EXPECT_EQ(faults().CallCount("TraceMessage"), 0U);
}

TEST_F(ModuleTest, WithoutAListenerNoTraceMessageIsCalled) {
  Start();
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(rig().sensors().WaitForState(SENSOR_STATE_READY, clock_.Now() + 60'000));
  client->Disconnect();
  EXPECT_EQ(faults().CallCount("TraceMessage"), 0U);
}

TEST_F(ModuleTest, AListenerWithOtherFlagsOrNoLevelGetsNothing) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, 0x2);
  ASSERT_EQ(rig().Start(), S_OK);
  EXPECT_THAT(rig().redirector().Tracing().TakeMessages(), IsEmpty());
  rig().redirector().Tracing().Enable(0, kAllFlags);
  ASSERT_EQ(rig().host().Stop(), S_OK);
  EXPECT_THAT(rig().redirector().Tracing().TakeMessages(), IsEmpty());
}

TEST_F(ModuleTest, TheControlCallbackRefusesOtherRequests) {
  Load();
  EXPECT_EQ(rig().redirector().Tracing().Control(10), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(rig().redirector().Tracing().Control(0), ERROR_INVALID_PARAMETER);
}

TEST_F(ModuleTest, TheBannerComesFirstWhenADeviceIsAdded) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, kAllFlags);
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  // Nine banner messages and the callback's entry, then its exit; the initialisation comes before.
  EXPECT_THAT(DriverMessageNumbers(),
              ElementsAre(23, 25, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20));
}

TEST_F(ModuleTest, SomeOfTheBannerIsSeenAtEachLevel) {
  struct Row {
    UCHAR level;
    std::size_t messages;
  };
  for (const Row& row : {Row{1, 5}, Row{2, 6}, Row{3, 7}, Row{4, 8 + 4}, Row{5, 9 + 4}}) {
    VirtualClock clock;
    Rig rig(clock);
    rig.redirector().Tracing().Enable(row.level, kAllFlags);
    ASSERT_EQ(rig.host().AddDevice(), S_OK);
    const auto messages = rig.redirector().Tracing().TakeMessages();
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(),
                            [](const TraceRecord& message) {
                              return IsEqualGUID(message.message, kDriverMessages);
                            }),
              static_cast<std::ptrdiff_t>(row.messages))
        << "level " << int{row.level};
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), testing::IsEmpty());
  }
}

TEST_F(ModuleTest, TheBannerCarriesDateAndTimeAsTwoTexts) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_CRITICAL, kAllFlags);
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  const auto messages = rig().redirector().Tracing().TakeMessages();
  const auto built = std::find_if(messages.begin(), messages.end(), [](const TraceRecord& m) {
    return IsEqualGUID(m.message, kDriverMessages) && m.number == 13;
  });
  ASSERT_NE(built, messages.end());
  const std::string bytes(built->arguments.begin(), built->arguments.end());
  // "Jun  3 2014" and "16:24:48", each with its terminator.
  ASSERT_THAT(bytes, SizeIs(12 + 9));
  EXPECT_EQ(bytes[3], ' ');
  EXPECT_EQ(bytes[11], '\0');
  EXPECT_EQ(bytes[14], ':');
  EXPECT_EQ(bytes[17], ':');
}

TEST_F(ModuleTest, EveryMessageCarriesItsGuidAndASequenceNumber) {
  Load();
  rig().redirector().Tracing().Enable(TRACE_LEVEL_VERBOSE, kAllFlags);
  ASSERT_EQ(rig().Start(), S_OK);
  clock_.SleepFor(1000);
  std::vector<ULONG> flags;
  for (const TraceRecord& message : rig().redirector().Tracing().TakeMessages()) {
    flags.push_back(message.flags & (TRACE_MESSAGE_GUID | TRACE_MESSAGE_SEQUENCE));
  }
  EXPECT_FALSE(flags.empty());
  EXPECT_THAT(flags, Each(ULONG{TRACE_MESSAGE_GUID | TRACE_MESSAGE_SEQUENCE}));
}

}  // namespace
}  // namespace bench
