// Settings keep what was set, per client, and take the right types and ranges only.

#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

namespace {

constexpr const char* kClearCommand = "AT+XLGNVRAM=7,0";

Faults ReadsAs(const Client& client, const PROPERTYKEY& key, const Variant& expected,
               const std::string& when) {
  Variant value;
  client->GetProperty(key, &value);
  return Unless(value == expected, when + " it reads as something else");
}

Faults Refused(const Client& client, const PROPERTYKEY& key, const Variant& value, HRESULT refusal,
               const std::string& what) {
  const SetResult result = client->SetProperty(key, value);
  return Unless(result.call == S_FALSE && result.refusal == refusal, what + " is not refused");
}

Faults IntervalPerClient(Stand& stand) {
  constexpr PROPERTYKEY kIntervalKey = CommonKey(13);
  const Client fast = stand.Subscriber(3000);
  const Client slow = stand.Subscriber(7000);
  Faults faults = ReadsAs(fast, kIntervalKey, Variant::Ui4(3000), "with both") +
                  ReadsAs(slow, kIntervalKey, Variant::Ui4(3000), "with both, to the slow one,");
  fast->Unsubscribe();
  stand.Settle();
  faults = faults + ReadsAs(slow, kIntervalKey, Variant::Ui4(7000), "with the slow one alone");
  fast->Subscribe();
  stand.Settle();
  faults = faults + ReadsAs(slow, kIntervalKey, Variant::Ui4(3000), "with the fast one again");
  fast->Unsubscribe();
  slow->Unsubscribe();
  stand.Settle();
  return faults + ReadsAs(slow, kIntervalKey, Variant::Ui4(0), "with nobody subscribed");
}

Faults IntervalRange(Stand& stand) {
  const Client client = stand.Connect();
  Faults faults;
  for (const ULONG good : {0UL, 1000UL, 1001UL, 60'000UL, 86'400'000UL}) {
    if (!client->SetReportInterval(good).Accepted()) {
      faults.push_back(std::to_string(good) + " ms is not accepted");
    }
  }
  for (const ULONG bad : {1UL, 500UL, 999UL}) {
    faults = faults + Refused(client, CommonKey(13), Variant::Ui4(bad), E_INVALIDARG,
                              std::to_string(bad) + " ms");
  }
  return faults +
         Refused(client, CommonKey(13), Variant::I4(5000), E_INVALIDARG, "a signed number") +
         Refused(client, CommonKey(13), Variant::R8(5000), E_INVALIDARG, "a double") +
         Refused(client, CommonKey(13), Variant(), E_ACCESSDENIED, "an empty value");
}

Faults Accuracy(Stand& stand) {
  const Client client = stand.Connect();
  const Client other = stand.Connect();
  Faults faults;
  for (const ULONG accuracy : {1UL, 0UL}) {
    if (!client->SetDesiredAccuracy(accuracy).Accepted()) {
      faults.push_back(std::to_string(accuracy) + " is not accepted");
    }
    faults = faults + ReadsAs(client, CommonKey(19), Variant::Ui4(0), "to the client") +
             ReadsAs(other, CommonKey(19), Variant::Ui4(0), "to another client");
  }
  return faults + Refused(client, CommonKey(19), Variant::I4(1), E_INVALIDARG, "a signed number");
}

Faults OwnSettings(Stand& stand) {
  struct Setting {
    DWORD id;
    Variant fresh;
    Variant usual;
  };
  const Setting settings[] = {
      {3, Variant::String("4,7,11,21,41,51"), Variant::String("3,6,10,20,40,50")},
      {4, Variant::Ui4(2), Variant::Ui4(1)},
      {5, Variant::Ui4(2), Variant::Ui4(1)},
  };
  const Client client = stand.Connect();
  const Client other = stand.Connect();
  Faults faults;
  for (const Setting& setting : settings) {
    const std::string what = "setting " + std::to_string(setting.id);
    for (const Variant& value : {setting.fresh, setting.usual}) {
      if (!client->SetProperty(DriverKey(setting.id), value).Accepted()) {
        faults.push_back(what + " is not accepted");
      }
      faults = faults + ReadsAs(client, DriverKey(setting.id), value, what + ", to the client,") +
               ReadsAs(other, DriverKey(setting.id), value, what + ", to another client,");
    }
  }
  return faults;
}

Faults Clears(Stand& stand) {
  const Client client = stand.Connect();
  const std::size_t before = stand.Received(kClearCommand);
  const SetResult result = client->SetProperty(kClearAssistanceData, Variant::Ui4(1));
  stand.Settle();
  return Unless(result.Accepted(), "1 is not accepted") +
         Unless(stand.Received(kClearCommand) == before + 1, "the modem is not told to clear");
}

Faults ClearsNothingElse(Stand& stand) {
  const Client client = stand.Connect();
  const std::size_t before = stand.Received(kClearCommand);
  Faults faults;
  for (const ULONG other : {0UL, 2UL, 0xFFFFFFFFUL}) {
    if (!client->SetProperty(kClearAssistanceData, Variant::Ui4(other)).Accepted()) {
      faults.push_back(std::to_string(other) + " is refused");
    }
  }
  stand.Settle();
  return faults + Unless(stand.Received(kClearCommand) == before, "the modem is told to clear");
}

Faults ClearTypes(Stand& stand) {
  const Client client = stand.Connect();
  const std::size_t before = stand.Received(kClearCommand);
  const Faults faults =
      Refused(client, kClearAssistanceData, Variant::I4(1), E_INVALIDARG, "a signed 1") +
      Refused(client, kClearAssistanceData, Variant::Bool(true), E_INVALIDARG, "a boolean") +
      Refused(client, kClearAssistanceData, Variant::Ui8(1), E_INVALIDARG, "a 64-bit 1") +
      Refused(client, kClearAssistanceData, Variant::String("1"), E_INVALIDARG, "a string") +
      Refused(client, kClearAssistanceData, Variant(), E_INVALIDARG, "an empty value");
  stand.Settle();
  return faults + Unless(stand.Received(kClearCommand) == before, "the modem is told to clear");
}

}  // namespace

Checks SettingChecks() {
  return {
      {"report interval, per client", "keeps what each client has set", IntervalPerClient,
       "kept per client, and reads as the one in force: the smallest of the subscribed clients"},
      {"report interval, range", "0, or the minimum of 1000 ms and above; unsigned 32-bit",
       IntervalRange},
      {"desired accuracy, per client", "keeps what each client has set", Accuracy,
       "kept per client, and reads as the engine's, which stays at its default"},
      {"the driver's own settings", "keep what was set", OwnSettings,
       "they are the device's: the last client to write decides for all"},
      {"clear assistance data", "an unsigned 32-bit 1 clears", Clears},
      {"clear assistance data, values", "any other number is refused", ClearsNothingElse,
       "it is taken without an error and does nothing"},
      {"clear assistance data, types", "any other type is refused", ClearTypes},
  };
}

}  // namespace bench::acceptance
