// What a system does to a device in a day.

#include <algorithm>

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

constexpr Millis kRounds = 10;
constexpr Millis kStressInterval = 2000;

Faults Delivers(Stand& stand, const Client& client) {
  return Unless(stand.WaitForNextReport(*client, kStressInterval), "no report comes afterwards");
}

Faults Radio(Stand& stand) {
  const Client client = stand.Subscriber(kStressInterval);
  Faults faults;
  for (Millis round = 0; round < kRounds; ++round) {
    for (const bool on : {false, true}) {
      if (stand.SwitchRadio(on) != S_OK) faults.emplace_back("the radio does not switch");
      stand.Pass(500 * round);
    }
  }
  return faults + Delivers(stand, client);
}

Faults DisableAndEnable(Stand& stand) {
  Faults faults;
  for (Millis round = 0; round < kRounds; ++round) {
    {
      const Client client = stand.Subscriber(kStressInterval);
      stand.Pass(700 * round);
    }
    if (FAILED(stand.Restart())) faults.emplace_back("the device does not come back");
  }
  return faults + Delivers(stand, stand.Subscriber(kStressInterval));
}

Faults Standby(Stand& stand) {
  const Client client = stand.Subscriber(kStressInterval);
  Faults faults;
  for (Millis round = 0; round < kRounds; ++round) {
    stand.Pass(900 * round);
    if (FAILED(stand.Sleep(60'000))) faults.emplace_back("the device does not wake up");
  }
  return faults + Delivers(stand, client);
}

// As many as there are turns, in every stage of coming and going at once.
Faults ManyClients(Stand& stand) {
  constexpr int kTurns = 200;
  constexpr std::size_t kAtOnce = 20;
  constexpr Millis kIntervals[] = {0, 1000, 3000, 8000, 9000, 60'000, 61'000};
  std::vector<Client> clients;
  for (int turn = 0; turn < kTurns; ++turn) {
    const auto number = static_cast<std::size_t>(turn);
    clients.push_back(turn % 3 == 0 ? stand.Connect()
                                    : stand.Subscriber(kIntervals[number % std::size(kIntervals)]));
    if (turn % 5 == 0) clients[number % clients.size()]->Unsubscribe();
    if (clients.size() > kAtOnce) {
      clients.erase(clients.begin() + static_cast<std::ptrdiff_t>(number % kAtOnce));
    }
    stand.Pass(37 * turn % 1000);
  }
  clients.clear();
  stand.Settle();
  const Client client = stand.Subscriber(kStressInterval);
  return Delivers(stand, client) +
         Unless(stand.rig().host().OpenRequests() == 0, "a request is left open");
}

Faults PulledOut(Stand& stand) {
  Faults faults;
  for (Millis round = 0; round < kRounds; ++round) {
    {
      const Client client = stand.Subscriber(kStressInterval);
      stand.Pass(300 * round);
      stand.PullOut();
      client->ReadData({LocationKey(2)});  // of one that does not know yet
    }
    if (FAILED(stand.PlugIn())) faults.emplace_back("the device does not come back");
  }
  return faults + Delivers(stand, stand.Subscriber(kStressInterval));
}

}  // namespace

Checks StressMix() {
  return {
      {"radio off and on", "it delivers afterwards", Radio},
      {"disable and enable", "it delivers afterwards", DisableAndEnable},
      {"standby and back", "it delivers afterwards", Standby},
      {"200 clients come and go", "it delivers afterwards", ManyClients},
      {"pulled out and plugged in", "it delivers afterwards", PulledOut},
  };
}

}  // namespace bench::acceptance
