// The radio switched off and on under a running sensor: what is stopped, posted and started.

#include <string_view>

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSwitchOff = "AT+XLCSSWITCH=0,1";
constexpr const char* kSwitchOn = "AT+XLCSSWITCH=1";
constexpr ULONG kStorePreviousCode = 0x8905A00C;
constexpr PROPERTYKEY kRadioState = {keys::kSensorCommonSet, 23};
constexpr PROPERTYKEY kPreviousRadioState = {keys::kSensorCommonSet, 24};

class SensorRadio : public SensorTest {
 protected:
  std::vector<std::string> Written() const {
    std::vector<std::string> lines;
    for (const auto& command : Commands()) lines.push_back(command.line);
    return lines;
  }
  void StorePrevious(ULONG state) {
    const std::string_view input(reinterpret_cast<const char*>(&state), sizeof(state));
    const ClientRequest request = rig().host().SendIoControl(kStorePreviousCode, input, 0);
    EXPECT_TRUE(request.Wait());
    EXPECT_EQ(request.Status(), S_OK);
    Settle();
  }
};

TEST_F(SensorRadio, OffStopsAPeriodicRequestFirstAndOnStartsItAgain) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_EQ(SwitchRadio(false), S_OK);
  EXPECT_THAT(Written(), ElementsAre("AT+XLSRSTOP=0,2", kSwitchOff));
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_RADIO_OFF"));
  EXPECT_EQ(EngineUses(), 0);
  Mark();
  EXPECT_EQ(SwitchRadio(true), S_OK);
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_RADIO_ON", "EV_REFRESH_REPORTING"));
  EXPECT_EQ(Written().front(), kSwitchOn);
  EXPECT_THAT(Requests(), ElementsAre(Periodic(5)));
}

TEST_F(SensorRadio, OffStopsAnOutstandingSingleFix) {
  StartSensor();
  const auto client = Connect();
  Mark();
  EXPECT_EQ(SwitchRadio(false), S_OK);
  EXPECT_THAT(Written(), ElementsAre("AT+XLSRSTOP=0,1", kSwitchOff));
}

TEST_F(SensorRadio, OffBetweenTwoSingleFixesStopsNothingAndOnLeavesTheirTimerAlone) {
  StartSensor();
  const auto client = Subscriber(9000);
  const Millis subscribed = clock_.Now() - 1;
  Mark();
  EXPECT_EQ(SwitchRadio(false), S_OK);
  EXPECT_EQ(SwitchRadio(true), S_OK);
  EXPECT_THAT(Written(), ElementsAre(kSwitchOff, kSwitchOn));
  RunUntil(subscribed + 6001);
  EXPECT_THAT(TimesOf(kSingleFix), ElementsAre(subscribed + 6000));
}

TEST_F(SensorRadio, OnStopsNothing) {
  StartSensor();
  const auto client = Subscriber(5000);
  Mark();
  EXPECT_EQ(SwitchRadio(true), S_OK);
  EXPECT_THAT(Written(), ElementsAre(kSwitchOn));
}

TEST_F(SensorRadio, ARefusedSwitchIsReturnedAndPostsNothing) {
  StartSensor();
  constexpr auto kRefusal = static_cast<HRESULT>(0xA0000002);
  modem().Refuse("AT+XLCSSWITCH");
  Mark();
  EXPECT_EQ(SwitchRadio(false), kRefusal);
  EXPECT_EQ(SwitchRadio(true), kRefusal);
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
}

TEST_F(SensorRadio, WhileItIsOffAChangedIntervalStartsNothing) {
  StartSensor();
  const auto client = Subscriber(5000);
  EXPECT_EQ(SwitchRadio(false), S_OK);
  Mark();
  EXPECT_TRUE(client->SetReportInterval(2000).Accepted());
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_REFRESH_REPORTING"));
  EXPECT_THAT(Commands(), IsEmpty());
  EXPECT_EQ(SwitchRadio(true), S_OK);
  EXPECT_THAT(Requests(), ElementsAre(Periodic(2)));
}

TEST_F(SensorRadio, WhileItIsOffAFirstClientGetsNoSingleFix) {
  LoadSensor();
  modem().SetEngineSwitch(false);
  StartLoaded();
  Mark();
  const auto client = Connect();
  EXPECT_THAT(Log(Doing::kPosted), ElementsAre("EV_FIRST_CLIENT_CONNECTED"));
  EXPECT_THAT(Commands(), IsEmpty());
}

TEST_F(SensorRadio, OffTakesTheMarkFromTheLastFixSoThatAReadFailsOnceItIsStale) {
  constexpr PROPERTYKEY kGpsStatus = {keys::kLocationSet, 33};
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  EXPECT_EQ(SwitchRadio(false), S_OK);
  const SensorAnswer fresh = client->ReadData({kLatitude, kGpsStatus});
  EXPECT_EQ(fresh.result, S_OK) << "fresh data are given without a look at the mark";
  ASSERT_THAT(fresh.values.value_or(KeyValues()), testing::SizeIs(2));
  EXPECT_EQ(fresh.values->front().value, Variant::R8(48.125));
  EXPECT_EQ(fresh.values->back().value, Variant::I4(2));
  RunFor(2000);
  EXPECT_EQ(client->ReadData({kLatitude}).result, E_FAIL);
}

TEST_F(SensorRadio, ARestoredStateIsThePreviousOneAndSwitchesNothing) {
  StartSensor();
  const auto client = Connect();
  Mark();
  StorePrevious(6);
  StorePrevious(7);  // no state: ignored
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_THAT(Commands(), IsEmpty());
  Variant value;
  EXPECT_EQ(client->GetProperty(kPreviousRadioState, &value), S_OK);
  EXPECT_EQ(value, Variant::Ui4(6));
  EXPECT_EQ(client->GetProperty(kRadioState, &value), S_OK);
  EXPECT_EQ(value, Variant::Ui4(0));
}

}  // namespace
}  // namespace bench
