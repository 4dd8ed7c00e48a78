#include "workbench/sensorapi/ClassExtension.h"

#include "tests/unit/bench_sensorapi/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr HRESULT kCanNotComplete = HRESULT_FROM_WIN32(ERROR_CAN_NOT_COMPLETE);
constexpr HRESULT kNobodySubscribed = HRESULT_FROM_WIN32(ERROR_OBJECT_NOT_FOUND);

class ClassExtensionTest : public SensorTest {
 protected:
  // Each test ends the class extension by itself, or never initializes it.
  void Recreate(SensorService::Options options) {
    tolerant.emplace(world, options);
    extension = MakeApiObject<ClassExtension>(world, *tolerant);
  }

  std::optional<SensorService> tolerant;
};

TEST_F(ClassExtensionTest, InitializeAsksForTheSensorBeforeItReturns) {
  EXPECT_EQ(Initialize(), S_OK);
  EXPECT_EQ(calls.Count("ISensorDriver::OnGetSupportedSensorObjects"), 1u);
  EXPECT_EQ(extension->SensorId(), kFakeSensorId);
  EXPECT_EQ(service.Extension(), extension.Get());
  EXPECT_EQ(extension->Uninitialize(), S_OK);
  EXPECT_EQ(service.Extension(), nullptr);
}

TEST_F(ClassExtensionTest, InitializeNeedsBothObjects) {
  EXPECT_EQ(extension->Initialize(nullptr, driver.Get()), E_POINTER);
  EXPECT_EQ(extension->Initialize(device.Get(), nullptr), E_POINTER);
  EXPECT_EQ(service.Extension(), nullptr);
}

TEST_F(ClassExtensionTest, AnObjectThatIsNoSensorDriverIsRefused) {
  EXPECT_EQ(extension->Initialize(device.Get(), device.Get()), E_NOINTERFACE);
}

TEST_F(ClassExtensionTest, TheDriversFailureToNameItsSensorFailsInitialize) {
  driver->results["OnGetSupportedSensorObjects"] = E_ACCESSDENIED;
  EXPECT_EQ(Initialize(), E_ACCESSDENIED);
  EXPECT_EQ(driver->References(), 1u) << "let go of after the failure";
}

TEST_F(ClassExtensionTest, NoSensorObjectFailsInitialize) {
  driver->givesObjects = false;
  EXPECT_EQ(Initialize(), kNotFound);
}

TEST_F(ClassExtensionTest, AFailureToNameTheSensorCanBeTolerated) {
  driver->results["OnGetSupportedSensorObjects"] = E_NOTIMPL;
  Recreate({.tolerateFailedEnumeration = true});
  EXPECT_EQ(Initialize(), S_OK);
  EXPECT_EQ(extension->SensorId(), "");
  EXPECT_EQ(PostState(SENSOR_STATE_READY, "any"), S_OK);
  EXPECT_EQ(extension->Uninitialize(), S_OK);
}

TEST_F(ClassExtensionTest, EnumerationCanBeSwitchedOff) {
  Recreate({.enumerateSensors = false});
  EXPECT_EQ(Initialize(), S_OK);
  EXPECT_EQ(calls.Count("ISensorDriver::OnGetSupportedSensorObjects"), 0u);
  EXPECT_EQ(extension->Uninitialize(), S_OK);
}

TEST_F(ClassExtensionTest, ASecondInitializeIsRefused) {
  ASSERT_EQ(Initialize(), S_OK);
  EXPECT_EQ(Initialize(), HRESULT_FROM_WIN32(ERROR_ALREADY_INITIALIZED));
  EXPECT_EQ(extension->Uninitialize(), S_OK);
}

TEST_F(ClassExtensionTest, UninitializeLetsGoOfDeviceAndDriver) {
  ASSERT_EQ(Initialize(), S_OK);
  EXPECT_EQ(device->References(), 2u);
  EXPECT_EQ(driver->References(), 2u);
  EXPECT_EQ(extension->Uninitialize(), S_OK);
  EXPECT_EQ(device->References(), 1u);
  EXPECT_EQ(driver->References(), 1u);
}

TEST_F(ClassExtensionTest, UninitializeAfterAFailedStartIsNoMistake) {
  EXPECT_EQ(extension->Uninitialize(), kCanNotComplete);
  EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST_F(ClassExtensionTest, EveryCallAfterUninitializeIsReported) {
  ASSERT_EQ(Initialize(), S_OK);
  ASSERT_EQ(extension->Uninitialize(), S_OK);
  EXPECT_EQ(Post(SampleReport()), kCanNotComplete);
  EXPECT_EQ(PostState(SENSOR_STATE_READY), kCanNotComplete);
  EXPECT_EQ(extension->CleanupFile(nullptr), kCanNotComplete);
  EXPECT_EQ(extension->Uninitialize(), kCanNotComplete);
  EXPECT_EQ(ledger.Count(rule::kAfterUninitialize), 4u);
  EXPECT_THAT(service.StateHistory(), IsEmpty());
}

TEST_F(ClassExtensionTest, CallsBeforeInitializeAreReported) {
  EXPECT_EQ(Post(SampleReport()), kCanNotComplete);
  EXPECT_EQ(PostState(SENSOR_STATE_READY), kCanNotComplete);
  EXPECT_EQ(ledger.Count(rule::kNotInitialized), 2u);
}

TEST_F(ClassExtensionTest, ReleasingItInitializedIsReported) {
  ASSERT_EQ(Initialize(), S_OK);
  extension.Reset();
  EXPECT_EQ(ledger.Count(rule::kNeverUninitialized), 1u);
  EXPECT_EQ(driver->References(), 1u);
  EXPECT_EQ(service.Extension(), nullptr);
}

TEST_F(ClassExtensionTest, InitializeFailsByCount) {
  calls.FailCall("ISensorClassExtension::Initialize", 1, E_OUTOFMEMORY);
  EXPECT_EQ(Initialize(), E_OUTOFMEMORY);
  EXPECT_EQ(calls.Count("ISensorDriver::OnGetSupportedSensorObjects"), 0u);
}

class PostEventTest : public RunningSensorTest {
 protected:
  void SetUp() override {
    RunningSensorTest::SetUp();
    ASSERT_EQ(session.Connect(), S_OK);
    ASSERT_EQ(session.Subscribe(), S_OK);
  }

  ClientSession session{service};
};

TEST_F(PostEventTest, ReachesTheHistoryWithItsTime) {
  clock.SleepFor(700);
  EXPECT_EQ(Post(SampleReport()), S_OK);
  ASSERT_EQ(service.EventHistory().size(), 1u);
  const PostedEvent event = service.EventHistory()[0];
  EXPECT_EQ(event.report.time, 700);
  EXPECT_EQ(event.subscribers, 1u);
  EXPECT_EQ(event.report.latitude, 48.2082);
  EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST_F(PostEventTest, KeepsNothingOfTheDriversObjects) {
  auto values = MakeApiObject<PortableDeviceValues>(world, SampleReport());
  auto list = MakeApiObject<PortableDeviceValuesCollection>(world);
  list->Add(values.Get());
  ASSERT_EQ(extension->PostEvent(Wide(kFakeSensorId).data(), list.Get()), S_OK);
  values->SetFloatValue(LocationKey(2), 0);
  EXPECT_EQ(list->References(), 1u);
  EXPECT_EQ(values->References(), 2u);
  EXPECT_EQ(session.Reports().at(0).latitude, 48.2082);
}

TEST_F(PostEventTest, WithoutASubscriberFailsAndIsNotInTheHistory) {
  ASSERT_EQ(session.Unsubscribe(), S_OK);
  EXPECT_EQ(Post(SampleReport()), kNobodySubscribed);
  EXPECT_THAT(service.EventHistory(), IsEmpty());
  EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST_F(PostEventTest, ForAnotherSensorIsReported) {
  EXPECT_EQ(Post(SampleReport(), "{other}"), E_INVALIDARG);
  EXPECT_EQ(extension->PostEvent(nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(ledger.Count(rule::kWrongSensor), 2u);
}

TEST_F(PostEventTest, AnEmptyOrMissingCollectionIsRefused) {
  EXPECT_EQ(PostSets({}), E_INVALIDARG);
  EXPECT_EQ(ledger.Count(rule::kMalformedEvent), 1u);
  EXPECT_EQ(extension->PostEvent(Wide(kFakeSensorId).data(), nullptr), E_POINTER);
}

TEST_F(PostEventTest, AnEventNeedsTimeStampAndEventIdOfTheRightType) {
  EXPECT_EQ(Post(SampleReportWithout(keys::kTimestamp)), E_INVALIDARG);
  EXPECT_EQ(Post(SampleReportWith(keys::kTimestamp, Variant::Ui8(1))), E_INVALIDARG);
  EXPECT_EQ(Post(SampleReportWithout(keys::kEventId)), E_INVALIDARG);
  EXPECT_EQ(Post(SampleReportWith(keys::kEventId, Variant::String("x"))), E_INVALIDARG);
  EXPECT_EQ(ledger.Count(rule::kMalformedEvent), 4u);
  EXPECT_THAT(session.Reports(), IsEmpty());
}

TEST_F(PostEventTest, OneMalformedSetHoldsBackAll) {
  EXPECT_EQ(PostSets({SampleReport(), SampleReportWithout(keys::kTimestamp)}), E_INVALIDARG);
  EXPECT_THAT(session.Reports(), IsEmpty());
}

TEST_F(PostEventTest, SeveralSetsAreSeveralReports) {
  EXPECT_EQ(PostSets({SampleReport(), SampleReport()}), S_OK);
  EXPECT_EQ(session.Reports().size(), 2u);
}

TEST_F(PostEventTest, DeparturesFromTheFieldsAreReportedButDelivered) {
  KeyValues values = SampleReportWithout(LocationKey(7));
  Replace(&values, LocationKey(2), Variant::R4(1));
  EXPECT_EQ(Post(values), S_OK);
  ASSERT_EQ(ledger.Count(rule::kBadReport), 1u);
  EXPECT_THAT(ledger.Violations()[0], HasSubstr("latitude: type 4, no heading"));
  EXPECT_EQ(session.Reports().size(), 1u);
}

TEST_F(PostEventTest, FailsByCountWithoutDelivering) {
  calls.FailCall("ISensorClassExtension::PostEvent", 2, E_FAIL);
  EXPECT_EQ(Post(SampleReport()), S_OK);
  EXPECT_EQ(Post(SampleReport()), E_FAIL);
  EXPECT_EQ(Post(SampleReport()), S_OK);
  EXPECT_EQ(session.Reports().size(), 2u);
}

TEST_F(PostEventTest, AReleasedCollectionIsReported) {
  auto* const gone = MakeApiObject<PortableDeviceValuesCollection>(world).Detach();
  gone->Release();
  EXPECT_TRUE(FAILED(extension->PostEvent(Wide(kFakeSensorId).data(), gone)));
  EXPECT_THAT(ledger.Violations(), ElementsAre(HasSubstr(gone->name())));
}

using PostStateChangeTest = PostEventTest;

TEST_F(PostStateChangeTest, ReachesEverySessionAndTheHistoryWithItsTime) {
  ClientSession other(service);
  ASSERT_EQ(other.Connect(), S_OK);
  clock.SleepFor(250);
  EXPECT_EQ(PostState(SENSOR_STATE_INITIALIZING), S_OK);
  ASSERT_EQ(service.StateHistory().size(), 1u);
  EXPECT_EQ(service.StateHistory()[0].time, 250);
  EXPECT_EQ(service.StateHistory()[0].state, SENSOR_STATE_INITIALIZING);
  EXPECT_EQ(session.States().size(), 1u);
  EXPECT_EQ(other.States().size(), 1u) << "although it is not subscribed";
}

TEST_F(PostStateChangeTest, AStateOutOfRangeIsReported) {
  EXPECT_EQ(PostState(static_cast<SensorState>(SENSOR_STATE_MAX + 1)), E_INVALIDARG);
  EXPECT_EQ(ledger.Count(rule::kBadState), 1u);
  EXPECT_THAT(service.StateHistory(), IsEmpty());
}

TEST_F(PostStateChangeTest, ForAnotherSensorIsReported) {
  EXPECT_EQ(PostState(SENSOR_STATE_READY, "{other}"), E_INVALIDARG);
  EXPECT_EQ(ledger.Count(rule::kWrongSensor), 1u);
}

TEST_F(PostStateChangeTest, CanBeWaitedForOnTheClock) {
  const Thread poster(clock, [&] {
    clock.SleepFor(400);
    PostState(SENSOR_STATE_READY);
  });
  EXPECT_FALSE(service.WaitForState(SENSOR_STATE_READY, 399));
  EXPECT_TRUE(service.WaitForState(SENSOR_STATE_READY, 1000));
  EXPECT_EQ(clock.Now(), 400);
}

using CleanupFileTest = PostEventTest;

TEST_F(CleanupFileTest, OfASubscriberUnsubscribesAndThenDisconnects) {
  EXPECT_EQ(extension->CleanupFile(session.File()), S_OK);
  EXPECT_THAT(driver->Log(),
              ElementsAre("OnClientConnect 1", "OnClientSubscribeToEvents 1",
                          "OnClientUnsubscribeFromEvents 1", "OnClientDisconnect 1"));
}

TEST_F(CleanupFileTest, OfAClientThatIsNotSubscribedOnlyDisconnects) {
  ASSERT_EQ(session.Unsubscribe(), S_OK);
  EXPECT_EQ(extension->CleanupFile(session.File()), S_OK);
  EXPECT_THAT(driver->Log(),
              ElementsAre("OnClientConnect 1", "OnClientSubscribeToEvents 1",
                          "OnClientUnsubscribeFromEvents 1", "OnClientDisconnect 1"));
}

TEST_F(CleanupFileTest, OfAFileThatNeverConnectedDoesNothing) {
  const ClientSession never(service);
  EXPECT_EQ(extension->CleanupFile(never.File()), S_OK);
  EXPECT_EQ(extension->CleanupFile(nullptr), E_POINTER);
  EXPECT_EQ(driver->Log().size(), 2u);
}

}  // namespace
}  // namespace bench
