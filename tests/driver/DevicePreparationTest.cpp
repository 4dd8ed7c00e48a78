// Preparation of a device: what fails it, what does not, and what it leaves behind.

#include <string>
#include <utility>

#include "tests/driver/RigTest.h"
#include "workbench/sensorapi/ClassExtension.h"

namespace bench {
namespace {

class DevicePreparation : public RigTest {
 protected:
  HRESULT Prepare() {
    EXPECT_EQ(rig().host().AddDevice(), S_OK);
    return rig().host().PrepareHardware();
  }
  bool WorkerRuns() { return rig().redirector().Books().Alive(Resource::kRunningThread) > 0; }
};

TEST_F(DevicePreparation, AContextThatCannotBeMadeFailsThePreparationWithEPointer) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  faults().Clear();
  // The first lock is the queue callback's, the second the context's.
  faults().FailImport("InitializeCriticalSectionAndSpinCount", 2, {FALSE, ERROR_NOT_ENOUGH_MEMORY});
  EXPECT_EQ(rig().host().PrepareHardware(), E_POINTER);
}

TEST_F(DevicePreparation, AnUnreadableDescriptionFailsThePreparationBeforeTheCoreIsMade) {
  RigOptions options;
  options.deviceDescription.reset();
  Load(std::move(options));
  EXPECT_EQ(Prepare(), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
  EXPECT_EQ(rig().calls().Count("IWDFUsbTargetFactory::CreateUsbTargetDevice"), 0U);
  EXPECT_FALSE(WorkerRuns());
  // The context is there all the same: without one this would succeed.
  EXPECT_EQ(callbacks().pnp->OnD0Entry(device(), WdfPowerDeviceD3Final), E_FAIL);
}

TEST_F(DevicePreparation, AnErrorOfTheDescriptionThatIsAResultAlreadyIsKept) {
  constexpr auto kNoSuchDevice = static_cast<HRESULT>(0xE000020B);
  Load();
  faults().FailImport("SetupDiGetDevicePropertyW", 1, {FALSE, static_cast<DWORD>(kNoSuchDevice)});
  EXPECT_EQ(Prepare(), kNoSuchDevice);
}

TEST_F(DevicePreparation, ASecondOneOverwritesTheContextWithoutReleasingTheFirst) {
  Rig rig(clock_);
  ASSERT_EQ(rig.host().AddDevice(), S_OK);
  FxDevice* const device = rig.host().device();
  IPnpCallbackHardware* const hardware = device->callbacks().hardware.Get();
  rig.redirector().Faults().Clear();
  rig.redirector().Faults().FailImport("CreateEventW", 1);  // the sensor core's first event
  ASSERT_EQ(hardware->OnPrepareHardware(device), E_UNEXPECTED);
  EXPECT_EQ(hardware->OnPrepareHardware(device), S_OK);
  EXPECT_EQ(hardware->OnReleaseHardware(device), S_OK);
  rig.ReleaseDriver();
  EXPECT_EQ(rig.module().CanUnloadNow(), S_FALSE);  // the first context lives
  rig.Shutdown();
  EXPECT_THAT(rig.Findings(),
              testing::Contains(testing::HasSubstr(std::string(rule::kModuleInUse))));
}

TEST_F(DevicePreparation, AnInstanceIdThatCannotBeReadDoesNotFailThePreparation) {
  // The first call asks for the length, the second for the text.
  for (const int nth : {1, 2}) {
    VirtualClock clock;
    Rig rig(clock);
    rig.calls().FailCall("IWDFDevice::RetrieveDeviceInstanceId", nth, E_FAIL);
    EXPECT_EQ(rig.Start(), S_OK);
    EXPECT_EQ(rig.redirector().Faults().CallCount("SetupDiCreateDeviceInfoList"), 0U);
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), testing::IsEmpty());
  }
}

TEST_F(DevicePreparation, AnInstanceIdThatIsTooLongDoesNotFailThePreparation) {
  RigOptions options;
  options.device.instanceId = std::u16string(300, u'x');
  Load(std::move(options));
  EXPECT_EQ(Prepare(), S_OK);
}

TEST_F(DevicePreparation, ADeviceListThatCannotBeMadeDoesNotFailThePreparation) {
  Load();
  faults().FailImport("SetupDiCreateDeviceInfoList", 1);
  EXPECT_EQ(Prepare(), S_OK);
}

TEST_F(DevicePreparation, ADeviceThatCannotBeOpenedDoesNotFailThePreparationAndLeavesTheListOpen) {
  Load();
  faults().FailImport("SetupDiOpenDeviceInfoW", 1);
  EXPECT_EQ(Prepare(), S_OK);
  Audit& books = rig().redirector().Books();
  EXPECT_EQ(books.Alive(Resource::kDeviceInfoList), 1U);  // kept as it stands
  for (const Leak& leak : books.Leaks()) {
    if (leak.kind == Resource::kDeviceInfoList) books.Give(leak.kind, leak.value);
  }
}

TEST_F(DevicePreparation, BuffersThatCannotBeAllocatedAreUnexpected) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  // The allocations before them: the queue callback and the context.
  faults().Clear();
  faults().FailImport("malloc", 3);
  EXPECT_EQ(rig().host().PrepareHardware(), E_UNEXPECTED);
  EXPECT_EQ(faults().Failed(), 1U);
}

TEST_F(DevicePreparation,
       AMissingClassExtensionIsUnexpectedAndTheRunningCoreIsStoppedByTheRelease) {
  RigOptions options;
  options.withheldClasses = {ApiClass::kClassExtension};
  Load(std::move(options));
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  EXPECT_EQ(callbacks().hardware->OnPrepareHardware(device()), E_UNEXPECTED);
  EXPECT_TRUE(WorkerRuns());
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
  EXPECT_FALSE(WorkerRuns());
}

TEST_F(DevicePreparation, EachFailureOfTheClassExtensionOrTheInterfaceIsReturned) {
  for (const char* call :
       {"CoCreateInstance(SensorClassExtension)", "ISensorClassExtension::Initialize",
        "IWDFDevice::CreateDeviceInterface", "IWDFDevice::AssignDeviceInterfaceState"}) {
    VirtualClock clock;
    Rig rig(clock);
    rig.calls().FailCall(call, 1, E_ACCESSDENIED);
    EXPECT_EQ(rig.Start(), E_ACCESSDENIED) << call;
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), testing::IsEmpty()) << call;
  }
}

TEST_F(DevicePreparation, AMissingDeviceValueFailsTheStart) {
  for (const char16_t* name :
       {u"DevManufacturer", u"DevModel", u"DevFriendlyName", u"DevSerialNumber"}) {
    VirtualClock clock;
    RigOptions options;
    options.device.registry[u""].erase(name);
    Rig rig(clock, std::move(options));
    EXPECT_EQ(rig.Start(), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    rig.Shutdown();
    EXPECT_THAT(rig.Findings(), testing::IsEmpty());
  }
}

TEST_F(DevicePreparation, ADefaultQueueThatCannotBeCreatedDoesNotFailThePreparation) {
  Load();
  rig().calls().FailCall("IWDFDevice::CreateIoQueue", 1, E_FAIL);
  EXPECT_EQ(rig().Start(), S_OK);
  // Suspend and flush leave the queue alone that is not there.
  EXPECT_EQ(rig().host().Stop(), S_OK);
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::StopSynchronously"), 0U);
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::PurgeSynchronously"), 0U);
}

}  // namespace
}  // namespace bench
