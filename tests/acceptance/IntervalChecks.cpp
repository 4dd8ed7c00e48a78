// Data events come at the current report interval.

#include <array>

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

// Milliseconds. Up to 8 s one request runs at the interval; above, each event has its own.
constexpr std::array<Millis, 14> kIntervals = {1000,    2000,    5000,      8000,     9000,
                                               15'000,  30'000,  60'000,    61'000,   90'000,
                                               300'000, 601'000, 1'801'000, 7'201'000};
constexpr std::size_t kEvents = 6;

std::vector<Millis> Times(const ClientSession& client) {
  std::vector<Millis> times;
  for (const Report& report : client.Reports()) times.push_back(report.time);
  return times;
}

// Watches some events, from the next one on.
Faults Watch(Stand& stand, const ClientSession& client, Millis interval) {
  const Millis from = stand.clock().Now();
  if (!stand.WaitForNextReport(client, interval)) return {"there is no report"};
  const std::size_t first = client.Reports().size() - 1;
  stand.Pass(static_cast<Millis>(kEvents) * interval);
  const auto all = Times(client);
  const std::vector<Millis> times(all.begin() + static_cast<std::ptrdiff_t>(first), all.end());
  const Pace pace{.interval = interval, .until = stand.clock().Now()};
  return JudgePace(times, pace) +
         JudgeLateness(from, {times.front()}, {.interval = interval, .until = times.front()});
}

// From a receiver that knows where it is: a client had its first report.
Faults At(Stand& stand, Millis interval) {
  const Client first = stand.Subscriber(1000);
  if (!stand.WaitForNextReport(*first, 1000)) return {"there is no report"};
  first->Disconnect();
  const Client client = stand.Subscriber(interval);
  return Watch(stand, *client, interval);
}

Faults Changes(Stand& stand) {
  const Client client = stand.Subscriber(2000);
  Faults faults = Watch(stand, *client, 2000);
  for (const Millis interval : {5000, 1000, 90'000, 4000, 20'000, 61'000, 1000}) {
    client->SetReportInterval(static_cast<ULONG>(interval));
    stand.Settle();
    faults = faults + Watch(stand, *client, interval);
  }
  return faults;
}

Faults Fastest(Stand& stand) {
  const Client client = stand.Subscriber(0);
  return Watch(stand, *client, 1000);
}

Faults Fractions(Stand& stand) {
  const Client client = stand.Subscriber(1900);
  return Watch(stand, *client, 1000);
}

Faults SeveralClients(Stand& stand) {
  const Client slow = stand.Subscriber(60'000);
  const Client fast = stand.Subscriber(4000);
  Faults faults = Watch(stand, *fast, 4000) + Watch(stand, *slow, 4000);
  fast->Disconnect();
  stand.Settle();
  return faults + Watch(stand, *slow, 60'000);
}

Faults WithoutInterval(Stand& stand) {
  if (FAILED(stand.Restart())) return {"the device does not come back"};
  const Client client = stand.Connect();
  client->Subscribe();
  if (!stand.WaitForNextReport(*client, 1000)) return {"there is no report"};
  stand.Pass(600'000);
  const auto times = Times(*client);
  return Unless(times.size() == 2 && times[1] - times[0] < 50,
                std::to_string(times.size()) + " data events");
}

std::string Text(Millis interval) {
  return std::to_string(interval / 1000) + " s";
}

}  // namespace

Checks IntervalChecks() {
  Checks checks;
  for (const Millis interval : kIntervals) {
    checks.push_back({"interval: " + Text(interval),
                      "events within a fifth of it, never later than twice it",
                      [interval](Stand& stand) { return At(stand, interval); }});
  }
  checks.push_back({"interval, changed", "the current one counts from its change on", Changes});
  checks.push_back({"interval, fastest", "0 is the minimum, 1 s; never faster", Fastest});
  checks.push_back({"interval, fractions", "events within a fifth of 1.9 s", Fractions,
                    "intervals are kept in whole seconds, rounded down: 1 s"});
  checks.push_back({"interval, several clients", "each gets events at its own", SeveralClients,
                    "each gets them at the smallest, and at its own once it is alone"});
  checks.push_back({"interval, none set", "events no faster than the minimum", WithoutInterval,
                    "one fix, reported twice in a moment: on becoming ready, and as itself"});
  return checks;
}

}  // namespace bench::acceptance
