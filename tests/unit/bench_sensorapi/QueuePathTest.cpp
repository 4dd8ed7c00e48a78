#include "workbench/sensorapi/QueuePath.h"

#include "tests/unit/bench_framework/FakeDriver.h"
#include "tests/unit/bench_sensorapi/FakeSensorDriver.h"
#include "tests/unit/bench_sensorapi/SensorTest.h"

namespace bench {
namespace {

using testing::IsEmpty;

/// A device whose queue forwards everything to the class extension.
class QueuePathTest : public testing::Test {
 protected:
  QueuePathTest() {
    bench.host->AddDevice();
    queue = bench.MakeQueue();
    bench.script.onIoControl = [this](IWDFIoRequest* request, ULONG) {
      extension->ProcessIoControl(request);
    };
    bench.script.onCleanupFile = [this](IWDFFile* file) { extension->CleanupFile(file); };
    const ComPtr<IWDFDevice> device(bench.host->device());
    extension->Initialize(device.Get(), driver.Get());
  }
  ~QueuePathTest() override { extension->Uninitialize(); }

  ClientRequest Send(ULONG code, std::string_view input, std::size_t outputSize, IWDFFile* file) {
    const ClientRequest sent = bench.host->SendIoControl(code, input, outputSize, file);
    EXPECT_TRUE(sent.Wait());
    return sent;
  }

  Bench bench;
  const World world{bench.clock, bench.ledger, bench.calls};
  SensorService service{world};
  ComPtr<FakeSensorDriver> driver = MakeApiObject<FakeSensorDriver>(world);
  ComPtr<ClassExtension> extension = MakeApiObject<ClassExtension>(world, service);
  ComPtr<IWDFIoQueue> queue;
};

TEST_F(QueuePathTest, ASessionConnectsWritesReadsAndLeavesThroughTheQueue) {
  driver->properties = {{Key(13), Variant::Ui4(0)}};
  driver->data = SampleReport();
  ClientSession session(service, std::make_unique<QueuePath>(*bench.host));
  EXPECT_EQ(session.Connect(), S_OK);
  EXPECT_EQ(session.Subscribe(), S_OK);
  EXPECT_TRUE(session.SetReportInterval(2000).Accepted());
  const SensorAnswer answer = session.ReadData(ReportKeys());
  ASSERT_TRUE(answer.values);
  const Report report = DecodeReport(0, *answer.values);
  EXPECT_THAT(report.faults, IsEmpty());
  EXPECT_THAT(report.MissingFields(), IsEmpty());
  session.Disconnect();
  EXPECT_THAT(driver->Log(),
              testing::ElementsAre("OnClientConnect 1", "OnClientSubscribeToEvents 1",
                                   "OnSetProperties 1", "OnGetDataFields 1",
                                   "OnClientUnsubscribeFromEvents 1", "OnClientDisconnect 1"));
  EXPECT_THAT(bench.ledger.Violations(), IsEmpty());
}

TEST_F(QueuePathTest, AMessageThatIsNoneIsCompletedAsInvalid) {
  IWDFFile* const file = bench.host->OpenFile();
  EXPECT_EQ(Send(kMessageReadWrite, "garbage", 100, file).Status(), E_INVALIDARG);
  EXPECT_EQ(Send(kMessageReadWrite, "", 100, file).Status(), E_INVALIDARG);
  bench.host->CleanupFile(file);
}

TEST_F(QueuePathTest, AnotherControlCodeIsNotSupported) {
  IWDFFile* const file = bench.host->OpenFile();
  EXPECT_EQ(Send(0x404104, Encode(SensorRequest{}), 100, file).Status(), kNotSupported);
  bench.host->CleanupFile(file);
}

TEST_F(QueuePathTest, AnOutputTooSmallForTheAnswerIsRefused) {
  IWDFFile* const file = bench.host->OpenFile();
  const ClientRequest sent = Send(kMessageReadWrite, Encode(SensorRequest{}), 3, file);
  EXPECT_EQ(sent.Status(), kInsufficientBuffer);
  EXPECT_EQ(sent.Information(), 0u);
  bench.host->CleanupFile(file);
}

TEST_F(QueuePathTest, ARequestAfterUninitializeIsCompletedAndReported) {
  extension->Uninitialize();
  IWDFFile* const file = bench.host->OpenFile();
  EXPECT_EQ(Send(kMessageRead, Encode(SensorRequest{}), 100, file).Status(),
            HRESULT_FROM_WIN32(ERROR_CAN_NOT_COMPLETE));
  EXPECT_EQ(bench.ledger.Count(rule::kAfterUninitialize), 1u);
}

TEST_F(QueuePathTest, AFailingRequestReachesTheSession) {
  ClientSession session(service, std::make_unique<QueuePath>(*bench.host));
  bench.calls.FailCall("IWDFMemory::CopyFromBuffer", 1, E_FAIL);
  EXPECT_EQ(session.Connect(), E_FAIL);
}

TEST_F(QueuePathTest, ARequestThatTheDeviceTakesAlongEndsAsAborted) {
  bench.script.onIoControl = [](IWDFIoRequest*, ULONG) {};  // keeps it
  ClientSession session(service, std::make_unique<QueuePath>(*bench.host));
  HRESULT result = S_OK;
  Thread client(bench.clock, [&] { result = session.Connect(); });
  bench.clock.SleepFor(10);
  extension->Uninitialize();
  queue.Reset();
  bench.host->RemoveDevice();
  client.Join();
  EXPECT_EQ(result, kOperationAborted);
}

}  // namespace
}  // namespace bench
