// The sensor's states: when it is ready, when it is not, and what clients get in each.

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

constexpr Millis kHour = 3'600'000;
constexpr Millis kStateInterval = 5000;
constexpr SensorState kReady = SENSOR_STATE_READY;
constexpr SensorState kNoData = SENSOR_STATE_NO_DATA;
constexpr SensorState kInitializing = SENSOR_STATE_INITIALIZING;
constexpr SensorState kNotAvailable = SENSOR_STATE_NOT_AVAILABLE;

/// Takes reception away while it lives.
class NoReception {
 public:
  explicit NoReception(Stand& stand) : sky_(stand.sky()) { sky_.reception = false; }
  ~NoReception() { sky_.reception = true; }
  NoReception(const NoReception&) = delete;
  NoReception& operator=(const NoReception&) = delete;

 private:
  Sky& sky_;
};

std::vector<StateChange> StatesSince(Stand& stand, std::size_t mark) {
  const auto all = stand.rig().sensors().StateHistory();
  return {all.begin() + static_cast<std::ptrdiff_t>(mark), all.end()};
}
std::size_t Mark(Stand& stand) {
  return stand.rig().sensors().StateHistory().size();
}

Faults AfterAStart(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const std::size_t mark = Mark(stand);
  const NoReception none(stand);
  stand.Settle();
  const Faults faults = JudgeStates(StatesSince(stand, mark), {});
  const Client client = stand.Connect();
  return faults + JudgeStates(StatesSince(stand, mark), {kInitializing});
}

Faults ReadyAfterAFix(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const std::size_t mark = Mark(stand);
  Client client;
  Faults faults;
  {
    const NoReception none(stand);
    client = stand.Subscriber(kStateInterval);
    stand.Pass(60'000);
    faults = JudgeStates(StatesSince(stand, mark), {kInitializing}) +
             Unless(client->Reports().empty(), "there is a report without a fix");
  }
  stand.WaitForNextReport(*client, kStateInterval);
  stand.Pass(60'000);
  const auto states = StatesSince(stand, mark);
  return faults + JudgeStates(states, {kInitializing, kReady}) +
         JudgeReady(states, client->Reports());
}

Faults FixWithoutRadius(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  stand.sky().errorRadius = false;
  const Client client = stand.Subscriber(kStateInterval);
  const bool came = stand.WaitForNextReport(*client, kStateInterval);
  stand.sky().errorRadius = true;
  if (!came) return {"there is no report"};
  const Report report = client->Reports().back();
  return Unless(stand.State() == kReady, "the sensor is not ready") +
         Unless(report.errorRadius == 0.0, "the error radius is not 0");
}

Faults DataHasAPosition(Stand& stand) {
  const Client client = stand.Subscriber(1000);
  stand.Pass(60'000);
  return JudgePositions(client->Reports());
}

// The modem's request has ended with its client, and nothing of it is on the way any more.
bool LetTheModemRest(Stand& stand) {
  const Client client = stand.Subscriber(kStateInterval);
  const bool came = stand.WaitForNextReport(*client, kStateInterval);
  stand.Settle();
  return came;
}

// The line breaks off before its coordinates are whole.
void SayCutReport(Stand& stand) {
  for (const char* line : {"+XLCSLSR: 0,48.1 N", "OK", "$GPGGA,1", "OK"}) stand.Say(line);
}

Faults CutReport(Stand& stand) {
  if (!LetTheModemRest(stand)) return {"there is no report before"};
  stand.Settle();
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const NoReception none(stand);
  const Client client = stand.Subscriber(kStateInterval);
  SayCutReport(stand);
  return Unless(stand.State() == kInitializing, "the sensor is not initializing") +
         Unless(client->Reports().empty(), "there is a report");
}

Faults CutReportBehindALateOne(Stand& stand) {
  {
    const Client client = stand.Subscriber(kStateInterval);
    if (!stand.WaitForNextReport(*client, kStateInterval)) return {"there is no report before"};
    stand.rig().modem().Inject({.reactions = {{.command = "AT+XLSRSTOP",
                                               .reaction = Reaction::kStraggle,
                                               .count = 1,
                                               .delay = 50}}});
  }
  stand.Settle();
  const NoReception none(stand);
  const Client client = stand.Subscriber(kStateInterval);
  stand.Pass(3 * kStateInterval);  // the fix counts as lost
  const std::size_t before = client->Reports().size();
  SayCutReport(stand);
  return Unless(client->Reports().size() == before + 1, "there is not one report") +
         JudgePositions(client->Reports());
}

// Coordinates that are there and empty.
Faults EmptyPosition(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const NoReception none(stand);
  const Client client = stand.Subscriber(kStateInterval);
  stand.Settle();
  const std::string report = "+XLCSLSR: 0,,,12,2014/7/3,12:30:00" + std::string(54, ',') + "0";
  for (const std::string& line :
       {report, std::string("OK"), std::string("$GPGGA,1"), std::string("OK")}) {
    stand.Say(line);
  }
  stand.Settle();
  const auto reports = client->Reports();
  return Unless(
      !reports.empty() && reports.back().latitude == 0.0 && reports.back().longitude == 0.0,
      "there is no report of 0, 0");
}

Faults ReadWithoutAFix(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const NoReception none(stand);
  const Client client = stand.Connect();
  const Millis asked = stand.clock().Now();
  const SensorAnswer answer = client->ReadData(ReportKeys());
  return Unless(answer.result == E_FAIL, "the read does not fail") +
         Unless(!answer.values || answer.values->empty(), "it gives values") +
         Unless(stand.clock().Now() - asked <= 2000, "it takes longer than 2 s");
}

Faults LossAndReturn(Stand& stand, Millis interval) {
  const Client client = stand.Subscriber(interval);
  if (!stand.WaitForNextReport(*client, interval)) return {"there is no report"};
  // The loss is watched from the first report that the interval has brought.
  if (!stand.WaitForNextReport(*client, interval)) return {"there is no second report"};
  const std::size_t mark = Mark(stand);
  const std::size_t reports = client->Reports().size();
  Faults faults;
  {
    const NoReception none(stand);
    stand.Pass(3 * interval + 5000);
    faults = JudgeStates(StatesSince(stand, mark), {kInitializing}) +
             Unless(client->Reports().size() == reports, "there is a report without a fix");
  }
  if (!stand.WaitForNextReport(*client, interval)) faults.push_back("no report comes again");
  stand.Pass(interval);
  return faults + JudgeStates(StatesSince(stand, mark), {kInitializing, kReady});
}

Faults WaitsForHours(Stand& stand, Millis interval) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const std::size_t mark = Mark(stand);
  Client client;
  Faults faults;
  {
    const NoReception none(stand);
    client = stand.Subscriber(interval);
    stand.Pass(6 * kHour);
    faults = JudgeStates(StatesSince(stand, mark), {kInitializing}) +
             Unless(stand.State() == kInitializing, "the sensor is not initializing");
  }
  if (!stand.WaitForNextReport(*client, interval)) faults.push_back("no report comes");
  return faults + JudgeStates(StatesSince(stand, mark), {kInitializing, kReady});
}

Faults EngineGivesUp(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const std::size_t mark = Mark(stand);
  Client client;
  {
    const NoReception none(stand);
    client = stand.Subscriber(kStateInterval);
    stand.Pass(60'000);
    stand.Say("+XLCSLSR: ERROR: no position");
  }
  Faults faults = JudgeStates(StatesSince(stand, mark), {kInitializing, kNoData});
  if (!stand.WaitForNextReport(*client, kStateInterval)) faults.push_back("no report comes");
  return faults + JudgeStates(StatesSince(stand, mark), {kInitializing, kNoData, kReady});
}

Faults RadioOff(Stand& stand) {
  const Client client = stand.Subscriber(kStateInterval);
  if (!stand.WaitForNextReport(*client, kStateInterval)) return {"there is no report"};
  const std::size_t mark = Mark(stand);
  Faults faults = Unless(stand.SwitchRadio(false) == S_OK, "the radio is not switched off");
  const std::size_t reports = client->Reports().size();
  stand.Pass(60'000);
  faults = faults + Unless(client->Reports().size() == reports, "there is a report");
  faults = faults + Unless(stand.SwitchRadio(true) == S_OK, "the radio is not switched on");
  if (!stand.WaitForNextReport(*client, kStateInterval)) faults.push_back("no report comes again");
  return faults + JudgeStates(StatesSince(stand, mark), {kNotAvailable, kNoData, kReady});
}

}  // namespace

Checks StateChecks() {
  return {
      {"state after a start", "initializing or no data first", AfterAStart},
      {"ready", "only after a valid fix with an error radius", ReadyAfterAFix},
      {"ready, no error radius", "not ready", FixWithoutRadius,
       "ready, with an error radius of 0: a field that the modem leaves empty reads so"},
      {"data", "only with latitude and longitude", DataHasAPosition},
      {"data, report cut short", "none without latitude and longitude", CutReport},
      {"data, cut short behind a late one", "none without latitude and longitude",
       CutReportBehindALateOne,
       "reported with the fix of the late report, which came when nobody had asked for it"},
      {"data, empty coordinates", "none without latitude and longitude", EmptyPosition,
       "reported as 0, 0: a field that the modem leaves empty reads so"},
      {"read without a fix", "fails in time, without values", ReadWithoutAFix},
      {"fix lost and found, 5 s", "initializing, and ready again",
       [](Stand& stand) { return LossAndReturn(stand, kStateInterval); }},
      {"fix lost and found, 61 s", "initializing, and ready again",
       [](Stand& stand) { return LossAndReturn(stand, 61'000); }},
      {"six hours without a fix, 5 s", "initializing without limit while a client waits",
       [](Stand& stand) { return WaitsForHours(stand, kStateInterval); }},
      {"six hours without a fix, 61 s", "initializing without limit while a client waits",
       [](Stand& stand) { return WaitsForHours(stand, 61'000); }},
      {"the engine gives up", "initializing without limit while a client waits", EngineGivesUp,
       "no data once the modem says that there is no position; ready when a fix comes"},
      {"radio off and on", "not available meanwhile, ready again", RadioOff},
  };
}

}  // namespace bench::acceptance
