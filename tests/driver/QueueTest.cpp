// The default queue: private control codes, Sensor API requests, and unknown ones.

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "base/ComObject.h"
#include "tests/driver/RigTest.h"
#include "workbench/sensorapi/QueuePath.h"

namespace bench {
namespace {

constexpr ULONG kReadState = 0x89056000;
constexpr ULONG kReadPrevious = 0x89056004;
constexpr ULONG kSwitch = 0x8905A008;
constexpr ULONG kStorePrevious = 0x8905A00C;
constexpr ULONG kSensorRead = 0x00404108;
constexpr ULONG kSensorReadWrite = 0x0040C108;
constexpr ULONG kUnknown = 0x89056008;
constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x80070032);
constexpr HRESULT kModemError = static_cast<HRESULT>(0xA0000002);
constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8007007A);

std::string Word(ULONG value) {
  std::string bytes(sizeof(value), '\0');
  std::memcpy(bytes.data(), &value, sizeof(value));
  return bytes;
}

/// Of a queue that the driver did not make.
class OtherQueueCallback final : public stelvane::ComObject<IQueueCallbackDeviceIoControl> {
 public:
  void STDMETHODCALLTYPE OnDeviceIoControl(IWDFIoQueue*, IWDFIoRequest*, ULONG, SIZE_T,
                                           SIZE_T) noexcept override {}
};

class QueueTest : public RigTest {
 protected:
  struct Answer {
    HRESULT status;
    std::size_t information;
    std::string output;
    bool operator==(const Answer&) const = default;
  };
  Answer Ask(ULONG code, const std::string& input, std::size_t outputSize) {
    const ClientRequest request = rig().host().SendIoControl(code, input, outputSize);
    EXPECT_TRUE(request.Wait(60'000));
    return {request.Status(), request.Information(), request.Output()};
  }
  /// Starts, and waits until bring-up is over.
  void StartAndSettle(RigOptions options = {}) {
    Start(std::move(options));
    clock_.SleepFor(5000);
  }
  std::size_t Sent(const std::string& line) {
    const auto lines = rig().modem().Snapshot().commandLines;
    const auto found = lines.find(line);
    return found == lines.end() ? 0 : found->second;
  }
};

TEST_F(QueueTest, TheRadioStateIsReadAsOnAndOff) {
  StartAndSettle();
  EXPECT_EQ(Ask(kReadState, "", 4), (Answer{S_OK, 4, Word(0)}));
  EXPECT_EQ(Ask(kSwitch, Word(1), 0), (Answer{S_OK, 4, ""}));
  EXPECT_EQ(Ask(kReadState, "", 4), (Answer{S_OK, 4, Word(1)}));
  EXPECT_EQ(Sent("AT+XLCSSWITCH=0,1"), 1U);
}

TEST_F(QueueTest, ARadioStateThatCannotBeCopiedFailsTheRequest) {
  StartAndSettle();
  rig().calls().FailCall("IWDFMemory::CopyFromBuffer", 1, E_ABORT);
  EXPECT_EQ(Ask(kReadState, "", 4).status, E_ABORT);
  EXPECT_EQ(Ask(kReadState, "", 4), (Answer{S_OK, 4, Word(0)}));
}

TEST_F(QueueTest, AnyOffStateSwitchesTheEngineOffAndZeroOn) {
  StartAndSettle();
  for (ULONG state = 1; state <= 6; ++state) {
    EXPECT_EQ(Ask(kSwitch, Word(state), 0).status, S_OK);
  }
  EXPECT_EQ(Sent("AT+XLCSSWITCH=0,1"), 6U);
  EXPECT_EQ(Ask(kSwitch, Word(0), 0).status, S_OK);
  EXPECT_EQ(Sent("AT+XLCSSWITCH=1"), 1U);
  EXPECT_EQ(Ask(kReadState, "", 4).output, Word(0));
}

TEST_F(QueueTest, ThePreviousRadioStateIsZeroUntilOneIsStored) {
  StartAndSettle();
  EXPECT_EQ(Ask(kReadPrevious, "", 4), (Answer{S_OK, 4, Word(0)}));
  EXPECT_EQ(Ask(kStorePrevious, Word(3), 0), (Answer{S_OK, 4, ""}));
  EXPECT_EQ(Ask(kReadPrevious, "", 4), (Answer{S_OK, 4, Word(3)}));
  EXPECT_EQ(Sent("AT+XLCSSWITCH=0,1"), 0U);
}

TEST_F(QueueTest, ARadioStateAboveSixOrOfAnotherLengthIsIgnored) {
  StartAndSettle();
  const std::size_t before = rig().modem().Snapshot().commands;
  EXPECT_EQ(Ask(kSwitch, Word(7), 0), (Answer{S_OK, 4, ""}));
  EXPECT_EQ(Ask(kSwitch, "", 0), (Answer{S_OK, 4, ""}));
  EXPECT_EQ(Ask(kSwitch, Word(1) + "x", 0), (Answer{S_OK, 4, ""}));
  EXPECT_EQ(Ask(kStorePrevious, Word(7), 0), (Answer{S_OK, 4, ""}));
  EXPECT_EQ(rig().modem().Snapshot().commands, before);
  EXPECT_EQ(Ask(kReadPrevious, "", 4).output, Word(0));
}

TEST_F(QueueTest, AReadWithTooSmallAnOutputWritesNothing) {
  StartAndSettle();
  for (const ULONG code : {kReadState, kReadPrevious}) {
    EXPECT_EQ(Ask(code, "", 0).status, kBufferTooSmall);
    EXPECT_EQ(Ask(code, "", 3), (Answer{kBufferTooSmall, 4, std::string(3, '\0')}));
  }
}

TEST_F(QueueTest, AFailedSwitchIsReturnedAndLeavesTheState) {
  RigOptions options;
  options.modem.faults = *ParseFaults("on AT+XLCSSWITCH=0,1 error 1", "refused switch");
  StartAndSettle(std::move(options));
  EXPECT_EQ(Ask(kSwitch, Word(1), 0), (Answer{kModemError, 4, ""}));
  EXPECT_EQ(Ask(kReadState, "", 4).output, Word(0));
}

TEST_F(QueueTest, SwitchingTheRadioOffRaisesNotAvailableAndOnNoData) {
  StartAndSettle();
  EXPECT_EQ(Ask(kSwitch, Word(2), 0).status, S_OK);
  EXPECT_TRUE(rig().sensors().WaitForState(SENSOR_STATE_NOT_AVAILABLE, clock_.Now() + 10'000));
  EXPECT_EQ(Ask(kSwitch, Word(0), 0).status, S_OK);
  EXPECT_TRUE(rig().sensors().WaitForState(SENSOR_STATE_NO_DATA, clock_.Now() + 10'000));
}

TEST_F(QueueTest, SwitchingTheRadioOffStopsARunningRequest) {
  StartAndSettle();
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(1000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  ASSERT_TRUE(client->WaitForReports(2, clock_.Now() + 30'000));
  EXPECT_EQ(Ask(kSwitch, Word(1), 0).status, S_OK);
  EXPECT_FALSE(rig().modem().Snapshot().running);
  EXPECT_EQ(Ask(kSwitch, Word(0), 0).status, S_OK);
  const std::size_t before = client->Reports().size();
  EXPECT_TRUE(client->WaitForReports(before + 2, clock_.Now() + 30'000));
}

TEST_F(QueueTest, AnUnknownCodeIsNotSupportedAlsoInAShutdown) {
  StartAndSettle();
  EXPECT_EQ(Ask(kUnknown, "", 4), (Answer{kNotSupported, 0, std::string(4, '\0')}));
  rig().host().SurpriseRemoval();
  EXPECT_EQ(Ask(kUnknown, "", 0), (Answer{kNotSupported, 0, ""}));
}

TEST_F(QueueTest, CodesThatDifferInOneBitOrAccessAreNotSupported) {
  StartAndSettle();
  for (const ULONG code : {0x00400108U, 0x00408108U, 0x0040410CU, 0x0040C10CU, 0x0040C109U,
                           0x01404108U, 0x80404108U, 0x8905A000U, 0x89056008U, 0x89056001U}) {
    EXPECT_EQ(Ask(code, "", 4), (Answer{kNotSupported, 0, std::string(4, '\0')}))
        << std::hex << code;
  }
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::ProcessIoControl"), 0U);
}

TEST_F(QueueTest, AShutdownWaitsForTheRequestInFlight) {
  RigOptions options;
  options.modem.faults = *ParseFaults("on AT+XLCSSWITCH=0,1 late 500", "slow switch");
  StartAndSettle(std::move(options));
  const ClientRequest request = rig().host().SendIoControl(kSwitch, Word(1), 0);
  ASSERT_FALSE(request.Wait(100));
  rig().host().SurpriseRemoval();
  EXPECT_TRUE(request.IsCompleted());
}

TEST_F(QueueTest, AClosedFileIsPassedOnUnlessAShutdownHasBegun) {
  StartAndSettle();
  const auto passedOn = [&] { return rig().calls().Count("ISensorClassExtension::CleanupFile"); };
  rig().host().CleanupFile(rig().host().OpenFile());
  EXPECT_EQ(passedOn(), 1U);
  IWDFFile* const late = rig().host().OpenFile();
  rig().host().SurpriseRemoval();
  rig().host().CleanupFile(late);
  EXPECT_EQ(passedOn(), 1U);
}

TEST_F(QueueTest, ADefaultQueueThatExistsAlreadyIsLeftUntouched) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  stelvane::ComPtr<OtherQueueCallback> callback;
  ASSERT_EQ(stelvane::CreateObject(callback), S_OK);
  stelvane::ComPtr<IWDFIoQueue> queue;
  ASSERT_EQ(device()->CreateIoQueue(callback.Get(), TRUE, WdfIoQueueDispatchParallel, FALSE, TRUE,
                                    queue.Put()),
            S_OK);
  queue.Reset();
  ASSERT_EQ(rig().host().Start(), S_OK);
  EXPECT_EQ(rig().calls().Count("IWDFDevice::CreateIoQueue"), 1U);  // the one above
  EXPECT_EQ(rig().host().Stop(), S_OK);                             // with suspend and flush
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::StopSynchronously"), 0U);
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::Start"), 0U);
  EXPECT_EQ(rig().calls().Count("IWDFIoQueue::PurgeSynchronously"), 0U);
}

TEST_F(QueueTest, PrivateAndSensorRequestsInAShutdownAreNotSupported) {
  StartAndSettle();
  rig().host().SurpriseRemoval();
  for (const ULONG code :
       {kReadState, kReadPrevious, kSwitch, kStorePrevious, kSensorRead, kSensorReadWrite}) {
    EXPECT_EQ(Ask(code, Word(0), 4).status, kNotSupported) << std::hex << code;
    EXPECT_EQ(Ask(code, Word(0), 4).information, 0U) << std::hex << code;
  }
}

TEST_F(QueueTest, APrivateRequestWithoutASensorCoreSucceedsWithFourBytes) {
  Load();
  ASSERT_EQ(rig().host().AddDevice(), S_OK);
  faults().Clear();
  faults().FailImport("CreateEventW", 1);
  ASSERT_EQ(callbacks().hardware->OnPrepareHardware(device()), E_UNEXPECTED);
  faults().Clear();
  EXPECT_EQ(Ask(kReadState, "", 4), (Answer{S_OK, 4, std::string(4, '\0')}));
  EXPECT_EQ(callbacks().hardware->OnReleaseHardware(device()), S_OK);
}

TEST_F(QueueTest, WithoutAContextPrivateRequestsFailAndSensorRequestsAreLeftAsTheyAre) {
  Rig rig(clock_);
  ASSERT_EQ(rig.host().AddDevice(), S_OK);
  FaultPlan& plan = rig.redirector().Faults();
  plan.Clear();
  // The first lock is the queue callback's, the second the context's.
  plan.FailImport("InitializeCriticalSectionAndSpinCount", 2, {FALSE, ERROR_NOT_ENOUGH_MEMORY});
  FxDevice* const device = rig.host().device();
  ASSERT_EQ(device->callbacks().hardware->OnPrepareHardware(device), E_POINTER);
  plan.Clear();

  const ClientRequest ofItsOwn = rig.host().SendIoControl(kReadState, "", 4);
  EXPECT_TRUE(ofItsOwn.Wait(1000));
  EXPECT_EQ(ofItsOwn.Status(), E_UNEXPECTED);
  EXPECT_EQ(ofItsOwn.Information(), 4U);
  const ClientRequest ofTheSensor = rig.host().SendIoControl(kSensorRead, "", 4);
  EXPECT_FALSE(ofTheSensor.Wait(1000));

  EXPECT_EQ(device->callbacks().hardware->OnReleaseHardware(device), S_OK);
  rig.Shutdown();
  EXPECT_TRUE(ofTheSensor.IsAbandoned());
  // Kept as it stands: the host is left with a request that nobody completes.
  EXPECT_THAT(rig.Findings(),
              testing::ElementsAre(testing::HasSubstr(std::string(rule::kNeverCompleted))));
}

TEST_F(QueueTest, WithoutAClassExtensionSensorRequestsAreLeftAsTheyAre) {
  RigOptions options;
  options.withheldClasses = {ApiClass::kClassExtension};
  Rig rig(clock_, std::move(options));
  ASSERT_EQ(rig.host().AddDevice(), S_OK);
  FxDevice* const device = rig.host().device();
  ASSERT_EQ(device->callbacks().hardware->OnPrepareHardware(device), E_UNEXPECTED);
  const ClientRequest request = rig.host().SendIoControl(kSensorReadWrite, "", 4);
  EXPECT_FALSE(request.Wait(1000));
  EXPECT_EQ(device->callbacks().hardware->OnReleaseHardware(device), S_OK);
  rig.Shutdown();
  EXPECT_TRUE(request.IsAbandoned());
  EXPECT_THAT(rig.Findings(),
              testing::ElementsAre(testing::HasSubstr(std::string(rule::kNeverCompleted))));
}

TEST_F(QueueTest, ParallelRequestsFromSeveralThreadsAllEnd) {
  StartAndSettle();
  std::vector<ClientRequest> requests;
  for (int round = 0; round < 20; ++round) {
    for (const ULONG code : {kReadState, kReadPrevious, kSwitch, kStorePrevious, kUnknown}) {
      requests.push_back(rig().host().SendIoControl(code, Word(0), 4));
    }
  }
  for (const ClientRequest& request : requests) {
    EXPECT_TRUE(request.Wait(120'000));
    EXPECT_TRUE(request.Status() == S_OK || request.Status() == kNotSupported);
  }
}

TEST_F(QueueTest, AClientThatComesThroughTheQueueGetsItsReports) {
  StartAndSettle();
  const auto client =
      std::make_unique<ClientSession>(rig().sensors(), std::make_unique<QueuePath>(rig().host()));
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(2000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  EXPECT_TRUE(client->WaitForReports(3, clock_.Now() + 30'000));
  client->Disconnect();
}

}  // namespace
}  // namespace bench
