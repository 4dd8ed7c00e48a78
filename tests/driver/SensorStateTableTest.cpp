// The state table as the whole driver lives it: each state that can be reached, met by each event
// that can happen there.

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::Contains;

constexpr SensorState kReady = SENSOR_STATE_READY;
constexpr SensorState kNotAvailable = SENSOR_STATE_NOT_AVAILABLE;
constexpr SensorState kNoData = SENSOR_STATE_NO_DATA;
constexpr SensorState kInitializing = SENSOR_STATE_INITIALIZING;
constexpr SensorState kError = SENSOR_STATE_ERROR;

constexpr const char* kStateNames[] = {"SENSOR_STATE_READY",         "SENSOR_STATE_NOT_AVAILABLE",
                                       "SENSOR_STATE_NO_DATA",       "SENSOR_STATE_INITIALIZING",
                                       "SENSOR_STATE_ACCESS_DENIED", "SENSOR_STATE_ERROR"};

struct Cell {
  SensorState from;
  const char* event;
  SensorState to;
};

class SensorStateTable : public SensorTest, public testing::WithParamInterface<Cell> {
 protected:
  // A start, with a client that is there or one that has gone again.
  void Reach(SensorState state, bool withClient) {
    LoadSensor();
    modem().SetEngineSwitch(state != kNotAvailable);
    StartLoaded();
    if (withClient) client_ = Connect();
    if (!withClient && state == kNoData) Connect();  // comes and goes
    if (state == kReady) SayFix();
    if (withClient && state == kNoData) SayError();
    Settle();
  }

  void Cause(const std::string& event) {
    if (event == "EV_FIRST_CLIENT_CONNECTED") client_ = Connect();
    if (event == "EV_LAST_CLIENT_DISCONNECTED") client_->Disconnect();
    if (event == "EV_DATA_ARRIVED") SayFix();
    if (event == "EV_SINGLE_SHOT_ERROR_RECEIVED") SayError();
    if (event == "EV_RADIO_ON") SwitchRadio(true);
    if (event == "EV_RADIO_OFF") SwitchRadio(false);
    if (event == "EV_DATA_REQUESTED") client_->Subscribe();
    if (event == "EV_REFRESH_REPORTING") client_->SetReportInterval(5000);
    if (event == "EV_INIT") PostInit(*client_);
    if (event == "EV_CLEAR_ASSISTANCE_DATA") PostClear(*client_);
    Settle();
  }

  Client client_;
};

TEST_P(SensorStateTable, LeadsWhereItShould) {
  const Cell& cell = GetParam();
  const std::string event = cell.event;
  const bool isConnect = event == "EV_FIRST_CLIENT_CONNECTED";
  Reach(cell.from, !isConnect);
  Mark();
  const std::size_t raised = rig().sensors().StateHistory().size();
  Cause(event);
  EXPECT_THAT(Log(Doing::kHandled), Contains(event + " in " + kStateNames[cell.from]));
  const auto history = rig().sensors().StateHistory();
  if (cell.from == cell.to) {
    EXPECT_EQ(history.size(), raised) << "a state was raised";
  } else {
    ASSERT_EQ(history.size(), raised + 1);
    EXPECT_EQ(history.back().state, cell.to);
  }
  client_.reset();
}

constexpr Cell kCells[] = {
    {kError, "EV_FIRST_CLIENT_CONNECTED", kInitializing},
    {kNoData, "EV_FIRST_CLIENT_CONNECTED", kInitializing},
    {kNotAvailable, "EV_FIRST_CLIENT_CONNECTED", kNotAvailable},

    {kReady, "EV_LAST_CLIENT_DISCONNECTED", kReady},
    {kNotAvailable, "EV_LAST_CLIENT_DISCONNECTED", kNotAvailable},
    {kNoData, "EV_LAST_CLIENT_DISCONNECTED", kNoData},
    {kInitializing, "EV_LAST_CLIENT_DISCONNECTED", kNoData},

    {kInitializing, "EV_DATA_ARRIVED", kReady},

    {kInitializing, "EV_SINGLE_SHOT_ERROR_RECEIVED", kNoData},
    {kReady, "EV_SINGLE_SHOT_ERROR_RECEIVED", kReady},
    {kNoData, "EV_SINGLE_SHOT_ERROR_RECEIVED", kNoData},
    {kNotAvailable, "EV_SINGLE_SHOT_ERROR_RECEIVED", kNotAvailable},

    {kNotAvailable, "EV_RADIO_ON", kNoData},
    {kReady, "EV_RADIO_ON", kReady},
    {kNoData, "EV_RADIO_ON", kNoData},
    {kInitializing, "EV_RADIO_ON", kInitializing},

    {kReady, "EV_RADIO_OFF", kNotAvailable},
    {kNotAvailable, "EV_RADIO_OFF", kNotAvailable},
    {kNoData, "EV_RADIO_OFF", kNotAvailable},
    {kInitializing, "EV_RADIO_OFF", kNotAvailable},

    {kReady, "EV_DATA_REQUESTED", kReady},
    {kNotAvailable, "EV_DATA_REQUESTED", kNotAvailable},
    {kNoData, "EV_DATA_REQUESTED", kInitializing},
    {kInitializing, "EV_DATA_REQUESTED", kInitializing},

    {kReady, "EV_REFRESH_REPORTING", kReady},
    {kNotAvailable, "EV_REFRESH_REPORTING", kNotAvailable},
    {kNoData, "EV_REFRESH_REPORTING", kNoData},
    {kInitializing, "EV_REFRESH_REPORTING", kInitializing},

    {kReady, "EV_INIT", kReady},
    {kNotAvailable, "EV_INIT", kNotAvailable},
    {kNoData, "EV_INIT", kNoData},
    {kInitializing, "EV_INIT", kInitializing},

    {kReady, "EV_CLEAR_ASSISTANCE_DATA", kReady},
    {kNotAvailable, "EV_CLEAR_ASSISTANCE_DATA", kNotAvailable},
    {kNoData, "EV_CLEAR_ASSISTANCE_DATA", kNoData},
    {kInitializing, "EV_CLEAR_ASSISTANCE_DATA", kInitializing},
};

std::string CellName(const testing::TestParamInfo<Cell>& info) {
  return std::string(info.param.event) + "_in_" + kStateNames[info.param.from];
}

INSTANTIATE_TEST_SUITE_P(EveryReachableCell, SensorStateTable, testing::ValuesIn(kCells), CellName);

using SensorStates = SensorTest;

TEST_F(SensorStates, EventsOfTheBringUpAreHandledInTheStateErrorAndRaiseNothing) {
  StartSensor();
  EXPECT_THAT(Log(Doing::kHandled), testing::ElementsAre("EV_INIT in SENSOR_STATE_ERROR",
                                                         "EV_RADIO_ON in SENSOR_STATE_ERROR"));
  EXPECT_FALSE(State().has_value());
}

TEST_F(SensorStates, AnEngineThatIsSwitchedOffAtTheStartIsNotAvailable) {
  LoadSensor();
  modem().SetEngineSwitch(false);
  StartLoaded();
  EXPECT_EQ(State(), kNotAvailable);
}

TEST_F(SensorStates, AFirstClientOfAReadySensorGetsNoSingleFix) {
  StartSensor();
  auto client = Connect();
  SayFix();
  client.reset();
  Settle();
  ASSERT_EQ(State(), kReady);
  Mark();
  client = Connect();
  EXPECT_THAT(Log(Doing::kHandled),
              testing::ElementsAre("EV_FIRST_CLIENT_CONNECTED in SENSOR_STATE_READY"));
  EXPECT_THAT(Commands(), testing::IsEmpty());
}

TEST_F(SensorStates, TheStateReadyIsRaisedBeforeTheReportThatComesWithIt) {
  StartSensor();
  const auto client = Subscriber(5000);
  std::vector<std::string> calls;
  rig().calls().SetHook([&calls](const CallEntry& entry) {
    if (entry.call.starts_with("ISensorClassExtension::Post")) calls.push_back(entry.call);
  });
  SayFix();
  rig().calls().SetHook({});
  EXPECT_THAT(calls, testing::ElementsAre("ISensorClassExtension::PostStateChange",
                                          "ISensorClassExtension::PostEvent"));
}

TEST_F(SensorStates, ALostFixInStateReadyMeansInitializing) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayFix();
  RunFor(10'000);
  EXPECT_THAT(Log(Doing::kHandled), Contains("EV_FIX_LOST in SENSOR_STATE_READY"));
  EXPECT_EQ(State(), kInitializing);
}

TEST_F(SensorStates, ALostFixInStateInitializingChangesNothing) {
  StartSensor();
  const auto client = Subscriber(5000);
  const std::size_t raised = rig().sensors().StateHistory().size();
  RunFor(11'000);
  EXPECT_THAT(Log(Doing::kHandled), Contains("EV_FIX_LOST in SENSOR_STATE_INITIALIZING"));
  EXPECT_EQ(rig().sensors().StateHistory().size(), raised);
  EXPECT_EQ(Posted("EV_FIX_LOST"), 1U) << "the check stays off";
}

TEST_F(SensorStates, AFixInStateNoDataMeansReady) {
  StartSensor();
  const auto client = Subscriber(5000);
  SayError();
  ASSERT_EQ(State(), kNoData);
  SayFix();
  EXPECT_EQ(State(), kReady);
}

TEST_F(SensorStates, AFixWhileTheRadioIsOffIsNeitherReportedNorKeptFresh) {
  StartSensor();
  const auto client = Subscriber(5000);
  modem().Refuse("AT+XLSRSTOP");  // so that the request goes on
  EXPECT_EQ(SwitchRadio(false), S_OK);
  Mark();
  SayFix();
  EXPECT_THAT(Log(Doing::kHandled), Contains("EV_DATA_ARRIVED in SENSOR_STATE_NOT_AVAILABLE"));
  RunFor(3000);
  EXPECT_TRUE(TimesOfTimer("TIMER_DATA_NO_LONGER_FRESH").empty());
  EXPECT_EQ(ReportCount(), 0U);
  EXPECT_EQ(State(), kNotAvailable);
}

}  // namespace
}  // namespace bench
