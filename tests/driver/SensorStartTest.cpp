// How the sensor comes to life: the bring-up, the first client, and what is dropped before.

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using SensorStart = SensorTest;

constexpr Millis kAllRetries = 900;  // three pauses between four tries

TEST_F(SensorStart, TheFirstClientGetsItsSingleFixStartedBeforeTheStateIsRaised) {
  StartSensor();
  std::vector<std::string> before;
  rig().calls().SetHook([&](const CallEntry& entry) {
    if (entry.call == "ISensorClassExtension::PostStateChange") before = Requests();
  });
  const auto client = Connect();
  EXPECT_THAT(before, ElementsAre(kSingleFix));
  ASSERT_EQ(client->States().size(), 1U);
  EXPECT_EQ(client->States()[0].state, SENSOR_STATE_INITIALIZING);
  rig().calls().SetHook({});
}

TEST_F(SensorStart, AFirstClientWhoseSingleFixIsRefusedStillMakesTheSensorInitializing) {
  StartSensor();
  modem().Refuse("AT+XLCSLSR");
  const auto client = Connect();
  EXPECT_EQ(State(), SENSOR_STATE_INITIALIZING);
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix));
  // No single fix is outstanding: the subscription's wish for data asks again.
  modem().ObeyAll();
  EXPECT_EQ(client->Subscribe(), S_OK);
  Settle();
  EXPECT_THAT(Requests(), ElementsAre(kSingleFix, kSingleFix));
}

TEST_F(SensorStart, AStateChangeThatTheClassExtensionRefusesIsIgnored) {
  StartSensor();
  rig().calls().FailCall("ISensorClassExtension::PostStateChange", 1, E_FAIL);
  const auto client = Connect();
  EXPECT_THAT(client->States(), IsEmpty());
  SayFix();
  EXPECT_EQ(State(), SENSOR_STATE_READY);
}

TEST_F(SensorStart, WithoutABringUpTheFirstClientIsDroppedAndNotKeptForLater) {
  LoadSensor();
  modem().Refuse("ATE1");
  StartLoaded();
  RunFor(kAllRetries + 100);
  const auto client = Connect();
  EXPECT_THAT(Log(Doing::kDropped), ElementsAre("EV_FIRST_CLIENT_CONNECTED"));
  modem().ObeyAll();
  PostInit(*client);
  EXPECT_THAT(Log(Doing::kHandled), Contains("EV_RADIO_ON in SENSOR_STATE_ERROR"));
  EXPECT_THAT(Log(Doing::kHandled),
              Not(Contains("EV_FIRST_CLIENT_CONNECTED in SENSOR_STATE_ERROR")));
  EXPECT_FALSE(State().has_value());
  EXPECT_THAT(Requests(), IsEmpty());
}

TEST_F(SensorStart, AFailedBringUpKeepsDroppingUntilOneSucceeds) {
  LoadSensor();
  modem().Refuse("AT+XLCSSWITCH?", 2);
  StartLoaded();
  const auto client = Connect();
  EXPECT_EQ(client->Subscribe(), S_OK);
  PostInit(*client);  // fails too
  PostClear(*client);
  EXPECT_THAT(Log(Doing::kDropped), ElementsAre("EV_FIRST_CLIENT_CONNECTED", "EV_DATA_REQUESTED",
                                                "EV_CLEAR_ASSISTANCE_DATA"));
  PostInit(*client);
  PostClear(*client);
  EXPECT_THAT(Requests(), ElementsAre("AT+XLGNVRAM=7,0"));
}

TEST_F(SensorStart, InitialisingAgainInAnyOtherStateIsIgnored) {
  StartSensor();
  const auto client = Connect();
  Mark();
  PostInit(*client);
  EXPECT_THAT(Log(Doing::kHandled), ElementsAre("EV_INIT in SENSOR_STATE_INITIALIZING"));
  EXPECT_THAT(TimesOf("ATE1"), IsEmpty());
}

TEST_F(SensorStart, EventsThatWaitWhenTheDeviceStopsAreNotHandled) {
  StartSensor();
  auto client = Subscriber(5000);
  modem().Ignore("AT");  // the worker hangs in the next command
  Mark();
  EXPECT_TRUE(client->SetReportInterval(2000).Accepted());
  Settle();
  EXPECT_TRUE(client->SetReportInterval(3000).Accepted());
  Settle();
  client.reset();
  const auto handled = Log(Doing::kHandled);
  EXPECT_EQ(handled.size(), 1U);
  rig().Shutdown();
  EXPECT_EQ(Log(Doing::kHandled), handled);
  EXPECT_THAT(TimesOf(Periodic(3)), IsEmpty());
}

TEST_F(SensorStart, NoCommandIsSentOnTheWayDown) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  Mark();
  rig().Shutdown();
  EXPECT_THAT(Commands(), IsEmpty());
  EXPECT_EQ(EngineUses(), 0);
}

}  // namespace
}  // namespace bench
