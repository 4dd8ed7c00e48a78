#include "workbench/sensorapi/ClientSession.h"

#include "tests/unit/bench_sensorapi/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClientSessionTest : public RunningSensorTest {
 protected:
  ClientSession session{service};
};

TEST_F(ClientSessionTest, TellsTheDriverOfEachStepForItsOwnSensor) {
  EXPECT_EQ(session.Connect(), S_OK);
  EXPECT_EQ(session.Subscribe(), S_OK);
  EXPECT_EQ(session.Unsubscribe(), S_OK);
  session.Disconnect();
  EXPECT_THAT(driver->Log(),
              ElementsAre("OnClientConnect 1", "OnClientSubscribeToEvents 1",
                          "OnClientUnsubscribeFromEvents 1", "OnClientDisconnect 1"));
}

TEST_F(ClientSessionTest, EachHasItsOwnFile) {
  ClientSession other(service);
  session.Connect();
  other.Connect();
  EXPECT_NE(session.File(), other.File());
  EXPECT_THAT(driver->Log(), ElementsAre("OnClientConnect 1", "OnClientConnect 2"));
}

TEST_F(ClientSessionTest, ItsEndDisconnectsOnce) {
  {
    ClientSession brief(service);
    brief.Connect();
    brief.Disconnect();
  }
  EXPECT_THAT(driver->Log(), ElementsAre("OnClientConnect 1", "OnClientDisconnect 1"));
}

TEST_F(ClientSessionTest, AnythingButConnectNeedsAConnection) {
  EXPECT_EQ(session.Subscribe(), kInvalidState);
  EXPECT_EQ(session.SetReportInterval(1000).call, kInvalidState);
  EXPECT_EQ(session.ReadData(ReportKeys()).result, kInvalidState);
  EXPECT_THAT(driver->Log(), IsEmpty());
}

TEST_F(ClientSessionTest, ARefusedConnectionIsNone) {
  driver->results["OnClientConnect"] = E_ACCESSDENIED;
  EXPECT_EQ(session.Connect(), E_ACCESSDENIED);
  EXPECT_EQ(session.Subscribe(), kInvalidState);
  PostState(SENSOR_STATE_READY);
  EXPECT_THAT(session.States(), IsEmpty());
}

TEST_F(ClientSessionTest, ARefusedSubscriptionGetsNothing) {
  driver->results["OnClientSubscribeToEvents"] = E_FAIL;
  session.Connect();
  EXPECT_EQ(session.Subscribe(), E_FAIL);
  EXPECT_TRUE(FAILED(Post(SampleReport())));
}

TEST_F(ClientSessionTest, OnlySubscribersGetReports) {
  ClientSession other(service);
  session.Connect();
  other.Connect();
  other.Subscribe();
  EXPECT_EQ(Post(SampleReport()), S_OK);
  EXPECT_THAT(session.Reports(), IsEmpty());
  ASSERT_EQ(other.Reports().size(), 1u);
  EXPECT_EQ(other.Reports()[0].satellitesInView, 2);
}

TEST_F(ClientSessionTest, ReportsStayReadableAfterDisconnectAndNoMoreCome) {
  ClientSession other(service);
  other.Connect();
  other.Subscribe();
  session.Connect();
  session.Subscribe();
  Post(SampleReport());
  session.Disconnect();
  Post(SampleReport());
  EXPECT_EQ(session.Reports().size(), 1u);
  EXPECT_EQ(other.Reports().size(), 2u);
}

TEST_F(ClientSessionTest, WaitsForReportsOnTheClock) {
  session.Connect();
  session.Subscribe();
  const Thread poster(clock, [&] {
    for (int i = 0; i < 3; ++i) {
      clock.SleepFor(1000);
      Post(SampleReport());
    }
  });
  EXPECT_FALSE(session.WaitForReports(2, 1999));
  EXPECT_EQ(clock.Now(), 1999);
  EXPECT_TRUE(session.WaitForReports(3, kForever));
  EXPECT_EQ(clock.Now(), 3000);
  EXPECT_EQ(session.Reports().at(1).time, 2000);
  EXPECT_EQ(service.WaitForEvents(3, 3000), true);
}

TEST_F(ClientSessionTest, WaitsForAStateOnTheClock) {
  session.Connect();
  const Thread poster(clock, [&] {
    clock.SleepFor(10);
    PostState(SENSOR_STATE_INITIALIZING);
    clock.SleepFor(10);
    PostState(SENSOR_STATE_READY);
  });
  EXPECT_TRUE(session.WaitForState(SENSOR_STATE_READY, kForever));
  EXPECT_EQ(clock.Now(), 20);
  EXPECT_FALSE(session.WaitForState(SENSOR_STATE_ERROR, 30));
}

TEST_F(ClientSessionTest, AListenerHearsWhatTheClientsAreTold) {
  struct Listener final : SensorListener {
    void OnReport(const PostedEvent& event) override { subscribers.push_back(event.subscribers); }
    void OnState(const StateChange& change) override { states.push_back(change.state); }
    std::vector<std::size_t> subscribers;
    std::vector<SensorState> states;
  } listener;
  service.SetListener(&listener);
  session.Connect();
  session.Subscribe();
  PostState(SENSOR_STATE_READY);
  Post(SampleReport());
  service.SetListener(nullptr);
  Post(SampleReport());
  EXPECT_THAT(listener.states, ElementsAre(SENSOR_STATE_READY));
  EXPECT_THAT(listener.subscribers, ElementsAre(1u));
}

TEST_F(ClientSessionTest, SetsTheIntervalAndTheAccuracyThroughTheirProperties) {
  driver->properties = {{Key(13), Variant::Ui4(0)}, {Key(19), Variant::Ui4(0)}};
  session.Connect();
  EXPECT_TRUE(session.SetReportInterval(5000).Accepted());
  EXPECT_TRUE(session.SetDesiredAccuracy(1).Accepted());
  EXPECT_TRUE(driver->properties[0].value == Variant::Ui4(5000));
  EXPECT_TRUE(driver->properties[1].value == Variant::Ui4(1));
}

TEST_F(ClientSessionTest, ARefusedKeySaysWhy) {
  session.Connect();
  const SetResult result = session.SetProperty(Key(99), Variant::Bool(true));
  EXPECT_EQ(result.call, S_FALSE);
  EXPECT_EQ(result.refusal, kNotFound);
  EXPECT_FALSE(result.Accepted());
}

TEST_F(ClientSessionTest, AFailedWriteHasNoRefusal) {
  driver->results["OnSetProperties"] = E_UNEXPECTED;
  session.Connect();
  const SetResult result = session.SetReportInterval(1000);
  EXPECT_EQ(result.call, E_UNEXPECTED);
  EXPECT_EQ(result.refusal, std::nullopt);
}

TEST_F(ClientSessionTest, ReadsAPropertyOrItsRefusal) {
  driver->properties = {{Key(6), Variant::String("Tavrel")}};
  session.Connect();
  Variant value;
  EXPECT_EQ(session.GetProperty(Key(6), &value), S_OK);
  EXPECT_TRUE(value == Variant::String("Tavrel"));
  EXPECT_EQ(session.GetProperty(Key(99), &value), S_FALSE);
  EXPECT_TRUE(value == Variant::Error(kNotFound));
}

TEST_F(ClientSessionTest, SuccessWithoutValuesIsReported) {
  driver->results["OnGetProperties"] = S_FALSE;  // and the fake gives no set
  session.Connect();
  Variant value;
  EXPECT_EQ(session.GetProperty(Key(6), &value), kNotFound);
  EXPECT_EQ(ledger.Count(rule::kNoResult), 1u);
}

TEST_F(ClientSessionTest, ReadsDataAndBlocksAsLongAsTheDriver) {
  driver->data = SampleReport();
  driver->readDelay = 1800;
  session.Connect();
  SensorAnswer answer;
  Thread reader(clock, [&] { answer = session.ReadData({LocationKey(3), LocationKey(2)}); });
  clock.SleepFor(1799);
  EXPECT_FALSE(answer.values);
  reader.Join();
  EXPECT_EQ(clock.Now(), 1800);
  EXPECT_EQ(answer.result, S_OK);
  ASSERT_TRUE(answer.values);
  EXPECT_EQ(DecodeReport(0, *answer.values).longitude, -16.3738);
}

TEST_F(ClientSessionTest, TwoReadsBlockSideBySide) {
  driver->data = SampleReport();
  driver->readDelay = 1800;
  session.Connect();
  {
    const Thread first(clock, [&] { session.ReadData(ReportKeys()); });
    const Thread second(clock, [&] { session.ReadData(ReportKeys()); });
  }
  EXPECT_EQ(clock.Now(), 1800);
}

TEST_F(ClientSessionTest, ListsWhatTheSensorSupports) {
  driver->properties = {{Key(13), Variant::Ui4(0)}};
  driver->data = SampleReport();
  session.Connect();
  EXPECT_EQ(session.SupportedProperties().keys.size(), 1u);
  EXPECT_EQ(session.SupportedDataFields().keys.size(), driver->data.size());
  const SensorAnswer events = session.SupportedEvents();
  ASSERT_EQ(events.events.size(), 2u);
  EXPECT_TRUE(SameGuid(events.events[1], kSensorEventStateChanged));
}

TEST_F(ClientSessionTest, WithoutAClassExtensionNothingIsReached) {
  ASSERT_EQ(extension->Uninitialize(), S_OK);
  EXPECT_EQ(session.Connect(), kInvalidState);
  EXPECT_THAT(ledger.Violations(), IsEmpty()) << "the driver did nothing wrong";
}

TEST_F(ClientSessionTest, ItsEndAfterTheClassExtensionsIsNoMistake) {
  session.Connect();
  ASSERT_EQ(extension->Uninitialize(), S_OK);
  session.Disconnect();
  EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST_F(ClientSessionTest, LeavesNoReferenceBehind) {
  driver->data = SampleReport();
  session.Connect();
  session.Subscribe();
  session.ReadData(ReportKeys());
  Post(SampleReport());
  session.Disconnect();
  ASSERT_EQ(extension->Uninitialize(), S_OK);
  extension.Reset();
  driver.Reset();
  device.Reset();
  ledger.ReportLeaks();
  EXPECT_THAT(ledger.Violations(), IsEmpty());
  EXPECT_THAT(ledger.Alive(), IsEmpty());
}

}  // namespace
}  // namespace bench
