// The host: the order of callbacks, failures on the way, idle control and the registry.
#include <gmock/gmock.h>

#include <stdexcept>

#include "tests/unit/bench_framework/FakeDriver.h"
#include "workbench/framework/Text.h"

namespace bench {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Script::DeviceStep Fails(HRESULT result) {
  return [result](IWDFDevice*) { return result; };
}

TEST(Host, AWholeLifeCallsTheDriverInOrder) {
  Bench bench;
  EXPECT_EQ(bench.host->AddDevice(), S_OK);
  EXPECT_EQ(bench.host->Start(), S_OK);
  EXPECT_EQ(bench.host->PowerDown(), S_OK);
  EXPECT_EQ(bench.host->PowerUp(), S_OK);
  EXPECT_EQ(bench.host->Stop(), S_OK);
  bench.host->RemoveDevice();
  bench.host->Unload();
  EXPECT_THAT(bench.StepNames(),
              ElementsAre("OnInitialize", "OnDeviceAdd", "OnPrepareHardware", "OnD0Entry",
                          "OnSelfManagedIoInit", "OnSelfManagedIoSuspend", "OnD0Exit", "OnD0Entry",
                          "OnSelfManagedIoRestart", "OnSelfManagedIoSuspend", "OnD0Exit",
                          "OnSelfManagedIoFlush", "OnSelfManagedIoCleanup", "OnReleaseHardware",
                          "OnDeinitialize"));
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
  EXPECT_THAT(bench.ledger.Alive(), IsEmpty());
}

TEST(Host, AFailedPrepareIsFollowedByReleaseOnly) {
  Bench bench;
  bench.script.onPrepare = Fails(E_ABORT);
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->Start(), E_ABORT);
  EXPECT_THAT(bench.StepNames(),
              ElementsAre("OnInitialize", "OnDeviceAdd", "OnPrepareHardware", "OnReleaseHardware"));
  bench.host->RemoveDevice();
  EXPECT_EQ(bench.host->device(), nullptr);
}

TEST(Host, AFailedD0EntryIsFollowedByReleaseOnly) {
  Bench bench;
  bench.script.onD0Entry = Fails(E_ABORT);
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->Start(), E_ABORT);
  EXPECT_THAT(bench.StepNames(), ElementsAre("OnInitialize", "OnDeviceAdd", "OnPrepareHardware",
                                             "OnD0Entry", "OnReleaseHardware"));
}

TEST(Host, AFailedInitIsFollowedByD0ExitFlushCleanupAndRelease) {
  Bench bench;
  bench.script.onIoInit = Fails(E_ABORT);
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->Start(), E_ABORT);
  EXPECT_THAT(bench.StepNames(),
              ElementsAre("OnInitialize", "OnDeviceAdd", "OnPrepareHardware", "OnD0Entry",
                          "OnSelfManagedIoInit", "OnD0Exit", "OnSelfManagedIoFlush",
                          "OnSelfManagedIoCleanup", "OnReleaseHardware"));
}

TEST(Host, StopFromPoweredDownDoesNotSuspendAgain) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->Start();
  bench.host->PowerDown();
  const auto before = bench.StepNames().size();
  EXPECT_EQ(bench.host->Stop(), S_OK);
  auto names = bench.StepNames();
  names.erase(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(before));
  EXPECT_THAT(names,
              ElementsAre("OnSelfManagedIoFlush", "OnSelfManagedIoCleanup", "OnReleaseHardware"));
}

TEST(Host, StopGivesTheFirstFailureAndGoesOnToTheEnd) {
  Bench bench;
  bench.script.onSuspend = Fails(E_ABORT);
  bench.script.onRelease = Fails(E_FAIL);
  bench.host->AddDevice();
  bench.host->Start();
  EXPECT_EQ(bench.host->Stop(), E_ABORT);
  EXPECT_EQ(bench.StepNames().back(), "OnReleaseHardware");
}

TEST(Host, ASecondDeviceOnTheSameDriverIsNotInitialisedAgain) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->RemoveDevice();
  bench.host->AddDevice();
  EXPECT_THAT(bench.StepNames(), ElementsAre("OnInitialize", "OnDeviceAdd", "OnDeviceAdd"));
  EXPECT_EQ(bench.host->device()->name(), "device 2");
}

TEST(Host, AStepOutOfOrderIsTheTestsMistake) {
  Bench bench;
  EXPECT_THROW(bench.host->PrepareHardware(), std::logic_error);
  EXPECT_THROW(bench.host->SurpriseRemoval(), std::logic_error);
  bench.host->AddDevice();
  EXPECT_THROW(bench.host->D0Entry(WdfPowerDeviceD3), std::logic_error);
  bench.host->Start();
  EXPECT_THROW(bench.host->ReleaseHardware(), std::logic_error);
  EXPECT_THROW(bench.host->RemoveDevice(), std::logic_error);
  EXPECT_THROW(bench.host->SelfManagedIoRestart(), std::logic_error);
}

TEST(Host, AVetoOfAQueryIsHandedBackAndChangesNothing) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->Start();
  EXPECT_EQ(bench.host->QueryRemove(), S_OK);
  EXPECT_EQ(bench.host->QueryStop(), E_ABORT);
  EXPECT_EQ(bench.host->PowerDown(), S_OK);
}

TEST(Host, SurpriseRemovalReachesTheDriverInAnyState) {
  Bench bench;
  int removals = 0;
  bench.script.onSurpriseRemoval = [&](IWDFDevice*) { ++removals; };
  bench.host->AddDevice();
  bench.host->SurpriseRemoval();
  bench.host->Start();
  bench.host->SurpriseRemoval();
  bench.host->Stop();
  bench.host->SurpriseRemoval();
  EXPECT_EQ(removals, 3);
}

TEST(Host, ADeviceThatWasPulledOutIsPluggedInWhenItIsAddedAgain) {
  Bench bench;
  ASSERT_EQ(bench.host->AddDevice(), S_OK);
  bench.host->SurpriseRemoval();
  EXPECT_TRUE(bench.host->usb().IsUnplugged());
  bench.host->RemoveDevice();
  ASSERT_EQ(bench.host->AddDevice(), S_OK);
  EXPECT_FALSE(bench.host->usb().IsUnplugged());
}

TEST(Host, AHookCanUnplugTheDeviceAtAChosenCall) {
  Bench bench;
  std::vector<std::string> order;
  bench.script.onSurpriseRemoval = [&](IWDFDevice*) { order.push_back("removed"); };
  bench.script.onPrepare = [&](IWDFDevice* device) {
    for (int i = 0; i < 2; ++i) {
      ComPtr<IWDFDriver> driver;
      device->GetDriver(driver.Put());
      order.push_back("called");
    }
    return S_OK;
  };
  bench.host->AddDevice();
  bench.calls.SetHook([&](const CallEntry& entry) {
    const bool chosen = entry.call == "IWDFDevice::GetDriver" && bench.calls.Count(entry.call) == 2;
    if (chosen) bench.host->SurpriseRemoval();
  });
  EXPECT_EQ(bench.host->Start(), S_OK);
  EXPECT_THAT(order, ElementsAre("called", "removed", "called"));
  EXPECT_TRUE(bench.host->usb().IsUnplugged());
}

TEST(Host, ADriverThatAddsNoDeviceLeavesTheHostWithoutOne) {
  Bench bench;
  bench.script.onDeviceAdd = [](IWDFDriver*, IWDFDeviceInitialize*) { return S_OK; };
  EXPECT_EQ(bench.host->AddDevice(), S_OK);
  EXPECT_EQ(bench.host->device(), nullptr);
  bench.host->Unload();
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Host, TheDeviceInitIsOutOfReachAfterDeviceAdd) {
  Bench bench;
  ComPtr<IWDFDeviceInitialize> kept;
  bench.script.onDeviceAdd = [&](IWDFDriver*, IWDFDeviceInitialize* init) {
    kept = ComPtr(init);
    return S_OK;
  };
  bench.host->AddDevice();
  kept->SetPowerPolicyOwnership(TRUE);
  EXPECT_EQ(bench.ledger.Count(rule::kDeletedObject), 1U);
}

TEST(Host, AnExceptionOutOfACallbackIsCaughtByName) {
  Bench bench;
  bench.script.onPrepare = [](IWDFDevice*) -> HRESULT { throw std::runtime_error("x"); };
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->Start(), E_UNEXPECTED);
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre("exception left a callback: IPnpCallbackHardware::OnPrepareHardware"));
}

class Factory final : public CountedObject<IClassFactory> {
 public:
  Factory(Script& script, bool knowsDriverEntry)
      : script_(script), knowsDriverEntry_(knowsDriverEntry) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    *object = nullptr;
    if (SameGuid(iid, iidOf<IDriverEntry>) && !knowsDriverEntry_) return E_NOINTERFACE;
    const ComPtr<IDriverEntry> driver(new FakeDriver(script_));
    return driver->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  Script& script_;
  const bool knowsDriverEntry_;
};

TEST(Host, TheDriverIsLoadedByEitherInterfaceOfTheFactory) {
  Bench bench;
  for (const bool knowsDriverEntry : {true, false}) {
    const ComPtr<IClassFactory> factory(new Factory(bench.script, knowsDriverEntry));
    HRESULT result = E_PENDING;
    EXPECT_TRUE(LoadDriver(*factory.Get(), bench.host->world(), result));
    EXPECT_EQ(result, S_OK);
  }
}

TEST(Idle, StopIdleFailsBeforeTheFirstWorkingStateAndCountsAllTheSame) {
  Bench bench;
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->device()->StopIdle(TRUE), kInvalidDeviceRequest);
  bench.host->Start();
  EXPECT_EQ(bench.host->device()->StopIdle(TRUE), S_OK);
  EXPECT_EQ(bench.host->device()->IdleHolds(), 2);
}

TEST(Idle, AStopThatIsPlannedToFailIsStillMatchedByAResume) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->Start();
  bench.calls.FailCall("IWDFDevice2::StopIdle", 1, E_ABORT);
  EXPECT_EQ(bench.host->device()->StopIdle(TRUE), E_ABORT);
  bench.host->device()->ResumeIdle();
  bench.host->Stop();
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST(Idle, AStopThatDoesNotWaitForTheWorkingStateIsCounted) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->Start();
  bench.host->device()->StopIdle(TRUE);
  EXPECT_EQ(bench.host->device()->UnwaitedStopIdles(), 0);
  bench.host->device()->StopIdle(FALSE);
  EXPECT_EQ(bench.host->device()->UnwaitedStopIdles(), 1);
}

TEST(Idle, TheRuleAboutTheFirstWorkingStateCanBeLifted) {
  DevicePlan plan;
  plan.stopIdleNeedsD0 = false;
  Bench bench(plan);
  bench.host->AddDevice();
  EXPECT_EQ(bench.host->device()->StopIdle(TRUE), S_OK);
}

TEST(Idle, ResumeWithoutStopIsCaught) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->device()->ResumeIdle();
  EXPECT_EQ(bench.ledger.Count(rule::kIdleBalance), 1U);
  EXPECT_EQ(bench.host->device()->IdleHolds(), 0);
}

TEST(Idle, AHoldLeftAtTheReleaseIsCaught) {
  Bench bench;
  bench.host->AddDevice();
  bench.host->Start();
  bench.host->device()->StopIdle(TRUE);
  bench.host->device()->StopIdle(TRUE);
  bench.host->device()->ResumeIdle();
  bench.host->Stop();
  EXPECT_THAT(bench.ledger.Violations(),
              ElementsAre("idle balance: device 1: 1 StopIdle without ResumeIdle"));
}

TEST(Idle, TheSettingsAreKeptAndAWrongSizeIsRefused) {
  Bench bench;
  bench.host->AddDevice();
  WUDF_DEVICE_POWER_POLICY_IDLE_SETTINGS settings{};
  EXPECT_EQ(bench.host->device()->AssignS0IdleSettingsEx(&settings), E_INVALIDARG);
  EXPECT_FALSE(bench.host->device()->IdleSettings().has_value());
  settings.Size = sizeof settings;
  settings.IdleTimeout = 100;
  EXPECT_EQ(bench.host->device()->AssignS0IdleSettingsEx(&settings), S_OK);
  EXPECT_EQ(bench.host->device()->IdleSettings().value().IdleTimeout, 100U);
}

TEST(DeviceFacts, TheInitChoicesAreKept) {
  Bench bench;
  bench.host->AddDevice();
  EXPECT_TRUE(bench.host->device()->choices().ownsPowerPolicy);
  EXPECT_EQ(bench.host->device()->choices().lockingConstraint, WDF_CALLBACK_CONSTRAINT::None);
}

TEST(DeviceFacts, TheInstanceIdIsMeasuredFirstAndThenCopied) {
  Bench bench;
  bench.host->AddDevice();
  DWORD length = 0;
  EXPECT_EQ(bench.host->device()->RetrieveDeviceInstanceId(nullptr, &length), S_OK);
  ASSERT_EQ(length, DevicePlan{}.instanceId.size() + 1);
  std::vector<WCHAR> id(length);
  EXPECT_EQ(bench.host->device()->RetrieveDeviceInstanceId(id.data(), &length), S_OK);
  EXPECT_EQ(TextOf(id.data()), DevicePlan{}.instanceId);
  length = 5;
  EXPECT_EQ(bench.host->device()->RetrieveDeviceInstanceId(id.data(), &length),
            kInsufficientBuffer);
}

TEST(DeviceFacts, ADeviceInterfaceIsEnabledOnlyOnceItWasCreated) {
  Bench bench;
  bench.host->AddDevice();
  const GUID id = iidOf<IWDFDevice>;
  EXPECT_EQ(bench.host->device()->AssignDeviceInterfaceState(&id, nullptr, TRUE), kNotFound);
  EXPECT_EQ(bench.host->device()->CreateDeviceInterface(&id, nullptr), S_OK);
  EXPECT_FALSE(bench.host->device()->DeviceInterfaces().at(0).enabled);
  EXPECT_EQ(bench.host->device()->AssignDeviceInterfaceState(&id, nullptr, TRUE), S_OK);
  EXPECT_TRUE(bench.host->device()->DeviceInterfaces().at(0).enabled);
}

ComPtr<IWDFNamedPropertyStore> OpenStore(Bench& bench, PCWSTR subkey, HRESULT& result) {
  ComPtr<IWDFNamedPropertyStore> store;
  result = bench.host->device()->RetrieveDevicePropertyStore(subkey, WdfPropertyStoreNormal,
                                                             store.Put(), nullptr);
  return store;
}

TEST(PropertyStore, DefaultValuesAreStringsUnderBothKeys) {
  Bench bench;
  bench.host->AddDevice();
  for (const PCWSTR subkey : {static_cast<PCWSTR>(nullptr), L"\\"}) {
    HRESULT result = E_PENDING;
    const auto store = OpenStore(bench, subkey, result);
    ASSERT_EQ(result, S_OK);
    PROPVARIANT value{};
    ASSERT_EQ(store->GetNamedValue(L"DevModel", &value), S_OK);
    EXPECT_EQ(value.vt, VT_LPWSTR);
    EXPECT_EQ(TextOf(value.pwszVal), u"GNSS 1");
    PropVariantClear(&value);
  }
}

TEST(PropertyStore, AMissingValueAndAMissingKeyAreNotFound) {
  Bench bench;
  bench.host->AddDevice();
  HRESULT result = E_PENDING;
  const auto store = OpenStore(bench, nullptr, result);
  PROPVARIANT value{};
  EXPECT_EQ(store->GetNamedValue(L"Nothing", &value), kFileNotFound);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_FALSE(OpenStore(bench, L"Nowhere", result));
  EXPECT_EQ(result, kFileNotFound);
}

TEST(PropertyStore, NumbersAndBytesKeepTheirTypes) {
  DevicePlan plan;
  plan.registry[u"Sub"] = {{u"Number", 7U}, {u"Bytes", std::vector<std::uint8_t>{1, 2, 3}}};
  Bench bench(plan);
  bench.host->AddDevice();
  HRESULT result = E_PENDING;
  const auto store = OpenStore(bench, L"Sub", result);
  PROPVARIANT value{};
  store->GetNamedValue(L"Number", &value);
  EXPECT_EQ(value.vt, VT_UI4);
  EXPECT_EQ(value.ulVal, 7U);
  store->GetNamedValue(L"Bytes", &value);
  EXPECT_EQ(value.vt, VT_BLOB);
  ASSERT_EQ(value.blob.cbSize, 3U);
  EXPECT_EQ(value.blob.pBlobData[2], 3);
  PropVariantClear(&value);
}

TEST(PropertyStore, AStoreReleasedTooEarlyIsCaught) {
  Bench bench;
  bench.host->AddDevice();
  HRESULT result = E_PENDING;
  auto store = OpenStore(bench, nullptr, result);
  IWDFNamedPropertyStore* const stale = store.Get();
  store.Reset();
  PROPVARIANT value{};
  EXPECT_EQ(stale->GetNamedValue(L"DevModel", &value), E_UNEXPECTED);
  EXPECT_EQ(bench.ledger.Count(rule::kDeletedObject), 1U);
}

}  // namespace
}  // namespace bench
