// Clients that come, go, subscribe and set intervals: what each of it posts.

#include "tests/driver/SensorFaceTest.h"
#include "workbench/framework/FxFile.h"
#include "workbench/sensorapi/PortableDeviceCollections.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using SensorClient = SensorTest;

TEST_F(SensorClient, TwoConnectsOfTheSameClientPostOnce) {
  StartSensor();
  Mark();
  const auto client = rig().NewClient();
  EXPECT_EQ(client->Connect(), S_OK);
  EXPECT_EQ(client->Connect(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_FIRST_CLIENT_CONNECTED"));
}

TEST_F(SensorClient, ASecondClientPostsNothing) {
  StartSensor();
  const auto first = Connect();
  Mark();
  const auto second = Connect();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorClient, ADisconnectRefreshesTheReportingAndTheLastOneIsToldToo) {
  StartSensor();
  auto first = Connect();
  auto second = Connect();
  Mark();
  first.reset();
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING"));
  second.reset();
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING", "EV_REFRESH_REPORTING",
                                               "EV_LAST_CLIENT_DISCONNECTED"));
}

TEST_F(SensorClient, TheLastOneToLeaveWhileTheSensorSearchesStopsTheSingleFix) {
  StartSensor();
  auto client = Connect();
  client.reset();
  Settle();
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, "AT+XLSRSTOP=0,1"));
  EXPECT_EQ(State(), SENSOR_STATE_NO_DATA);
  EXPECT_EQ(EngineUses(), 0);
}

TEST_F(SensorClient, TheLastOneToLeaveAfterItsFixStopsNothing) {
  StartSensor();
  auto client = Connect();
  SayFix();
  client.reset();
  Settle();
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix));
  EXPECT_EQ(State(), SENSOR_STATE_READY);
}

TEST_F(SensorClient, TheOnlyClientThatSubscribesWithoutAnIntervalWantsData) {
  StartSensor();
  const auto client = Connect();
  Mark();
  EXPECT_EQ(client->Subscribe(), S_OK);
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_DATA_REQUESTED"));
}

TEST_F(SensorClient, OneOfTwoThatSubscribesWithoutAnIntervalPostsNothing) {
  StartSensor();
  const auto first = Connect();
  const auto second = Connect();
  Mark();
  EXPECT_EQ(second->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorClient, UnsubscribingWithoutAnIntervalPostsNothing) {
  StartSensor();
  const auto client = PlainSubscriber();
  Mark();
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorClient, WithAnIntervalEachChangeOfTheSubscriptionRefreshesTheReporting) {
  StartSensor();
  const auto client = Connect();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  Mark();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  Settle();
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING", "EV_REFRESH_REPORTING"));
}

TEST_F(SensorClient, AnIntervalThatIsSetRefreshesTheReporting) {
  StartSensor();
  const auto client = Connect();
  Mark();
  EXPECT_TRUE(client->SetReportInterval(5000).Accepted());
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING"));
}

TEST_F(SensorClient, HalfASecondIsRefusedAndPostsNothing) {
  StartSensor();
  const auto client = Connect();
  Mark();
  const SetResult set = client->SetReportInterval(500);
  EXPECT_EQ(set.call, S_FALSE);
  EXPECT_EQ(set.refusal, E_INVALIDARG);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

// Calls that the class extension would not make.
class SensorDriverFace : public SensorFaceTest {
 protected:
  void SetUp() override {
    StartWithFace();
    file_ = &Make<FxFile>(rig().sensors().world(), nullptr, "client file");
    Mark();
  }
  void TearDown() override {
    file_->Delete();
    SensorFaceTest::TearDown();
  }
  ComPtr<IPortableDeviceKeyCollection> Keys(std::vector<PROPERTYKEY> wanted) {
    return ComPtr<IPortableDeviceKeyCollection>(
        MakeApiObject<PortableDeviceKeyCollection>(rig().sensors().world(), std::move(wanted))
            .Get());
  }

  FxFile* file_ = nullptr;
};

TEST_F(SensorDriverFace, AnUnknownClientThatDisconnectsFromAnEmptyTableIsTheLastOne) {
  EXPECT_EQ(Face()->OnClientDisconnect(file_, sensorId_), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted),
              ElementsAre("EV_REFRESH_REPORTING", "EV_LAST_CLIENT_DISCONNECTED"));
}

TEST_F(SensorDriverFace, AnUnknownClientThatDisconnectsLeavesTheOthersThere) {
  const auto client = Connect();
  Mark();
  EXPECT_EQ(Face()->OnClientDisconnect(file_, sensorId_), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING"));
}

TEST_F(SensorDriverFace, ASubscriptionOfAnUnknownClientIsOnlyTraced) {
  EXPECT_EQ(Face()->OnClientSubscribeToEvents(file_, sensorId_), S_OK);
  EXPECT_EQ(Face()->OnClientUnsubscribeFromEvents(file_, sensorId_), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorDriverFace, AReadWithoutFieldsOrWithoutAPlaceForTheValuesIsRefused) {
  ComPtr<IPortableDeviceValues> values;
  EXPECT_EQ(Face()->OnGetDataFields(file_, sensorId_, nullptr, values.Put()), E_INVALIDARG);
  EXPECT_EQ(Face()->OnGetDataFields(file_, sensorId_, Keys({kLatitude}).Get(), nullptr),
            E_INVALIDARG);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorDriverFace, AReadThatFailsHandsItsEmptyValuesBack) {
  ComPtr<IPortableDeviceValues> values;
  EXPECT_EQ(Face()->OnGetDataFields(file_, sensorId_, Keys({kLatitude}).Get(), values.Put()),
            E_FAIL);
  ASSERT_TRUE(values);
  DWORD count = 1;
  EXPECT_EQ(values->GetCount(&count), S_OK);
  EXPECT_EQ(count, 0U);
}

TEST_F(SensorDriverFace, AReadWithoutAValueContainerFailsAsItsCreationDoes) {
  rig().calls().FailCall("CoCreateInstance(PortableDeviceValues)", 1, E_OUTOFMEMORY);
  ComPtr<IPortableDeviceValues> values;
  EXPECT_EQ(Face()->OnGetDataFields(file_, sensorId_, Keys({kLatitude}).Get(), values.Put()),
            E_OUTOFMEMORY);
  EXPECT_FALSE(values);
}

TEST_F(SensorDriverFace, WmiIsAcceptedAndDoesNothing) {
  EXPECT_EQ(Face()->OnProcessWmi(nullptr, nullptr), S_OK);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_THAT(Commands(), IsEmpty());
}

}  // namespace
}  // namespace bench
