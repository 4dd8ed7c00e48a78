// Device callbacks: the order of start and stop, and the shutdown guard.

#include <string>
#include <vector>

#include "tests/driver/RigTest.h"
#include "workbench/sensorapi/ClassExtension.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr GUID kInterfaceClass = {
    0x1c60e337, 0x17c9, 0x42f7, {0x92, 0xfa, 0x39, 0xc5, 0x6e, 0x4b, 0x46, 0xe3}};

class DeviceTest : public RigTest {
 protected:
  /// The calls of the driver out of `names`, in their order.
  std::vector<std::string> CallsAmong(const std::vector<std::string>& names) {
    std::vector<std::string> found;
    for (const CallEntry& entry : rig().calls().Calls()) {
      for (const std::string& name : names) {
        if (entry.call == name) found.push_back(name);
      }
    }
    return found;
  }
  bool WorkerRuns() { return rig().redirector().Books().Alive(Resource::kRunningThread) > 0; }
};

TEST_F(DeviceTest, AddingADeviceAsksForNoLockingAndForPowerPolicyOwnership) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  EXPECT_EQ(device()->choices().lockingConstraint, WDF_CALLBACK_CONSTRAINT::None);
  EXPECT_TRUE(device()->choices().ownsPowerPolicy);
}

TEST_F(DeviceTest, ADeviceThatTheFrameworkRefusesFailsTheAdding) {
  Load();
  rig().calls().FailCall("IWDFDriver::CreateDevice", 1, E_ACCESSDENIED);
  EXPECT_EQ(rig().host().AddDevice(), E_ACCESSDENIED);
}

TEST_F(DeviceTest, ACallbackObjectThatCannotBeMadeFailsTheAdding) {
  Load();
  faults().Clear();
  faults().FailImport("InitializeCriticalSectionAndSpinCount", 1, {FALSE, ERROR_NOT_ENOUGH_MEMORY});
  EXPECT_EQ(rig().host().AddDevice(), HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));
}

TEST_F(DeviceTest, TheStartRunsInItsFixedOrder) {
  Start();
  EXPECT_THAT(
      CallsAmong({"IWDFDevice::CreateIoQueue", "IWDFDevice::RetrieveDevicePropertyStore",
                  "IWDFUsbTargetFactory::CreateUsbTargetDevice",
                  "IWDFUsbTargetPipe2::ConfigureContinuousReader",
                  "CoCreateInstance(SensorClassExtension)", "ISensorClassExtension::Initialize",
                  "IWDFDevice::CreateDeviceInterface", "IWDFDevice::AssignDeviceInterfaceState",
                  "IWDFIoTargetStateManagement::Start", "IWDFDevice3::AssignS0IdleSettingsEx"}),
      ElementsAre("IWDFDevice::CreateIoQueue", "IWDFDevice::RetrieveDevicePropertyStore",
                  "IWDFUsbTargetFactory::CreateUsbTargetDevice",
                  "IWDFUsbTargetPipe2::ConfigureContinuousReader",
                  "CoCreateInstance(SensorClassExtension)", "ISensorClassExtension::Initialize",
                  "IWDFDevice::CreateDeviceInterface", "IWDFDevice::AssignDeviceInterfaceState",
                  "IWDFIoTargetStateManagement::Start", "IWDFDevice3::AssignS0IdleSettingsEx"));
}

TEST_F(DeviceTest, TheDeviceInterfaceIsRegisteredAndEnabled) {
  Start();
  const auto interfaces = device()->DeviceInterfaces();
  ASSERT_THAT(interfaces, SizeIs(1));
  EXPECT_TRUE(IsEqualGUID(interfaces[0].id, kInterfaceClass));
  EXPECT_TRUE(interfaces[0].enabled);
}

TEST_F(DeviceTest, TheIdleSettingsAreTheEightNumbers) {
  Start();
  const auto settings = device()->IdleSettings();
  ASSERT_TRUE(settings);
  EXPECT_EQ(settings->Size, 32U);
  EXPECT_EQ(settings->IdleCaps, 1);
  EXPECT_EQ(settings->DxState, 4);
  EXPECT_EQ(settings->IdleTimeout, 100U);
  EXPECT_EQ(settings->UserControlOfIdleSettings, 2);
  EXPECT_EQ(settings->Enabled, 1);
  EXPECT_EQ(settings->PowerUpIdleDeviceOnSystemWake, 0);
  EXPECT_EQ(settings->ExcludeD3Cold, 1);
}

TEST_F(DeviceTest, RefusedIdleSettingsDoNotMatter) {
  Load();
  rig().calls().FailCall("IWDFDevice3::AssignS0IdleSettingsEx", 1, E_INVALIDARG);
  EXPECT_EQ(rig().Start(), S_OK);
  EXPECT_TRUE(rig().sensors().WaitForState(SENSOR_STATE_NO_DATA, clock_.Now() + 10'000) ||
              rig().modem().Snapshot().commands > 0);
}

TEST_F(DeviceTest, TheStopEndsTheWorkerBeforeTheClassExtension) {
  Start();
  bool workerRan = true;
  rig().calls().SetHook([&](const CallEntry& entry) {
    if (entry.call == "ISensorClassExtension::Uninitialize") workerRan = WorkerRuns();
  });
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_FALSE(workerRan);
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::Uninitialize"), 1U);
  rig().calls().SetHook({});
}

TEST_F(DeviceTest, TheStopSendsNothingToTheModem) {
  Start();
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(1000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  ASSERT_TRUE(client->WaitForReports(3, clock_.Now() + 30'000));
  const std::size_t before = rig().modem().Snapshot().commands;
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_EQ(rig().modem().Snapshot().commands, before);
}

TEST_F(DeviceTest, PreparingWithoutADeviceIsUnexpectedAndTouchesNoFlag) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(nullptr), E_UNEXPECTED);
  // A flag that stayed set would keep the shutdown spinning for ever.
  rig().host().SurpriseRemoval();
  // After the shutdown began it is still the missing device that is answered.
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(nullptr), E_UNEXPECTED);
}

TEST_F(DeviceTest, AfterSurpriseRemovalOnlyPowerDownAndSuspendAct) {
  Start();
  rig().host().SurpriseRemoval();
  FxDevice* const fx = device();
  const std::size_t posted = rig().calls().Count("IWDFDevice3::AssignS0IdleSettingsEx");
  const std::size_t started = rig().calls().Count("IWDFIoTargetStateManagement::Start");
  const std::size_t stopped = rig().calls().Count("IWDFIoTargetStateManagement::Stop");
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(fx), kShutdownInProgress);
  EXPECT_EQ(callbacks().pnp->OnD0Entry(fx, WdfPowerDeviceD3), kShutdownInProgress);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoInit(fx), kShutdownInProgress);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoRestart(fx), kShutdownInProgress);
  EXPECT_EQ(rig().calls().Count("IWDFDevice3::AssignS0IdleSettingsEx"), posted);
  EXPECT_EQ(rig().calls().Count("IWDFIoTargetStateManagement::Start"), started);

  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoSuspend(fx), kShutdownInProgress);
  EXPECT_EQ(callbacks().pnp->OnD0Exit(fx, WdfPowerDeviceD3Final), S_OK);
  EXPECT_EQ(rig().calls().Count("IWDFIoTargetStateManagement::Stop"), stopped + 1);
}

TEST_F(DeviceTest, SuspendStopsAndRestartsTheQueueAlsoInAShutdown) {
  Start();
  rig().host().SurpriseRemoval();
  callbacks().selfManagedIo->OnSelfManagedIoSuspend(device());
  EXPECT_THAT(CallsAmong({"IWDFIoQueue::StopSynchronously", "IWDFIoQueue::Start"}),
              ElementsAre("IWDFIoQueue::StopSynchronously", "IWDFIoQueue::Start"));
}

TEST_F(DeviceTest, FlushPurgesTheQueueOnlyOutsideAShutdown) {
  Start();
  callbacks().selfManagedIo->OnSelfManagedIoFlush(device());
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::PurgeSynchronously"), 1U);
  rig().host().SurpriseRemoval();
  callbacks().selfManagedIo->OnSelfManagedIoFlush(device());
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::PurgeSynchronously"), 1U);
}

TEST_F(DeviceTest, RemovalAndStopAreAlwaysAllowed) {
  Start();
  EXPECT_EQ(rig().host().QueryRemove(), S_OK);
  EXPECT_EQ(rig().host().QueryStop(), S_OK);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoStop(device()), S_OK);
  callbacks().selfManagedIo->OnSelfManagedIoCleanup(device());
}

TEST_F(DeviceTest, PowerCallbacksWithoutAContextSucceedUntilTheShutdown) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  EXPECT_EQ(callbacks().pnp->OnD0Entry(device(), WdfPowerDeviceD3), S_OK);
  EXPECT_EQ(callbacks().pnp->OnD0Exit(device(), WdfPowerDeviceD3), S_OK);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoInit(device()), S_OK);
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
  EXPECT_EQ(callbacks().pnp->OnD0Entry(device(), WdfPowerDeviceD3), kShutdownInProgress);
  EXPECT_EQ(callbacks().pnp->OnD0Exit(device(), WdfPowerDeviceD3), kShutdownInProgress);
}

TEST_F(DeviceTest, PowerCallbacksOfADeviceWithoutASensorCoreFail) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  faults().Clear();
  faults().FailImport("CreateEventW", 1);  // the sensor core's first event
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(device()), E_UNEXPECTED);
  faults().Clear();
  EXPECT_EQ(callbacks().pnp->OnD0Entry(device(), WdfPowerDeviceD3), E_FAIL);
  EXPECT_EQ(callbacks().pnp->OnD0Exit(device(), WdfPowerDeviceD3), E_FAIL);
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
}

TEST_F(DeviceTest, OtherCallbacksWithoutAContextTouchNothing) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoRestart(device()), S_OK);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoSuspend(device()), S_OK);
  callbacks().fileCleanup->OnCleanupFile(nullptr);
  EXPECT_THAT(CallsAmong({"IWDFIoQueue::StopSynchronously", "IWDFIoQueue::Start",
                          "ISensorClassExtension::CleanupFile"}),
              IsEmpty());
}

TEST_F(DeviceTest, WithoutAContextSuspendLeavesTheQueueAloneAndFlushPurgesIt) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  faults().Clear();
  // The first lock is the queue callback's, the second the context's.
  faults().FailImport("InitializeCriticalSectionAndSpinCount", 2, {FALSE, ERROR_NOT_ENOUGH_MEMORY});
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(device()), E_POINTER);
  faults().Clear();
  ASSERT_NE(device()->DefaultQueue(), nullptr);
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoSuspend(device()), S_OK);
  callbacks().selfManagedIo->OnSelfManagedIoFlush(device());
  EXPECT_THAT(CallsAmong({"IWDFIoQueue::StopSynchronously", "IWDFIoQueue::Start",
                          "IWDFIoQueue::PurgeSynchronously"}),
              ElementsAre("IWDFIoQueue::PurgeSynchronously"));
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
}

TEST_F(DeviceTest, WithoutASensorCoreTheInitializationPostsNothingAndNoFileIsPassedOn) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  faults().Clear();
  faults().FailImport("CreateEventW", 1);  // the sensor core's first event
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(device()), E_UNEXPECTED);
  faults().Clear();
  EXPECT_EQ(callbacks().selfManagedIo->OnSelfManagedIoInit(device()), S_OK);
  callbacks().fileCleanup->OnCleanupFile(nullptr);
  EXPECT_FALSE(WorkerRuns());
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::CleanupFile"), 0U);
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
}

TEST_F(DeviceTest, ADeviceThatIsAddedAgainComesBackAndDelivers) {
  Start();
  EXPECT_EQ(rig().host().Stop(), S_OK);
  rig().host().RemoveDevice();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  ASSERT_EQ(rig().host().Start(), S_OK);
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(1000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  EXPECT_TRUE(client->WaitForReports(2, clock_.Now() + 30'000));
}

TEST_F(DeviceTest, AnIdleDriverNeverWakesUp) {
  Start();
  clock_.SleepFor(60'000);
  const std::uint64_t before = faults().CallCount("WaitForMultipleObjects");
  clock_.SleepFor(30LL * 86'400'000);  // days; off timers fire after 49.7
  EXPECT_EQ(faults().CallCount("WaitForMultipleObjects"), before);
}

TEST_F(DeviceTest, ASleepingDeviceComesBackAndDelivers) {
  Start();
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(1000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  ASSERT_TRUE(client->WaitForReports(2, clock_.Now() + 30'000));
  EXPECT_EQ(rig().host().PowerDown(), S_OK);
  clock_.SleepFor(10'000);
  const std::size_t asleep = client->Reports().size();
  EXPECT_EQ(rig().host().PowerUp(), S_OK);
  EXPECT_TRUE(client->WaitForReports(asleep + 3, clock_.Now() + 30'000));
}

}  // namespace
}  // namespace bench
