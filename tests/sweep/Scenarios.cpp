#include "tests/sweep/Scenarios.h"

#include <memory>

#include "tests/driver/TraceAll.h"
#include "workbench/SuplText.h"

namespace bench {

namespace {

constexpr Millis kBringUp = 200;  // takes some milliseconds a command when nothing is wrong

RigOptions Plain() {
  RigOptions options;
  TraceIfAsked(options);
  return options;
}

// The first fix comes soon: a sweep runs thousands of times.
RigOptions QuickFix() {
  RigOptions options = Plain();
  options.modem.coldStart = 300;
  options.modem.hotStart = 100;
  return options;
}

RigOptions Traced() {
  RigOptions options;
  options.trace = TraceOptions{.listener = [](const TraceRecord&) {}};
  return options;
}

RigOptions RadioOff() {
  RigOptions options = QuickFix();
  options.modem.engineOn = false;
  return options;
}

void WriteConfigFile(Trial& trial) {
  trial.rig().systemRoot().WriteConfigFile(kDemoSuplConfig);
}

void HandOverByRegistry(Trial& trial) {
  trial.rig().redirector().Registry().SetDword(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tavrel\\Stelvane",
                                               L"DisableInternalGNSS", 1);
}

void StartAndStop(Trial& trial) {
  static_cast<void>(trial.Start());
}

void BringUp(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Pass(kBringUp));
}

void HandOver(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Pass(5000));
}

void ThreeClients(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Connect(1000) && trial.Connect(2000) &&
                    trial.Connect(5000) && trial.Pass(2500) && trial.Read() &&
                    trial.DisconnectAll() && trial.Pass(500));
}

void LongIntervals(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Connect(20'000) && trial.Pass(45'000) &&
                    trial.DisconnectAll() && trial.Pass(500));
}

void SwitchRadio(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Pass(kBringUp) && trial.Connect(1000) &&
                    trial.SwitchRadio(0) && trial.Pass(1500) && trial.SwitchRadio(1) &&
                    trial.Pass(500));
}

void PowerCycle(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Connect(1000) && trial.Pass(1500) &&
                    trial.PowerDownAndUp() && trial.Pass(2500));
}

void ChangeSim(Trial& trial) {
  if (!trial.Start() || !trial.Pass(kBringUp)) return;
  trial.rig().modem().SetSim("999990123456789");
  static_cast<void>(trial.Connect(1000) && trial.Pass(500));
}

void Unplug(Trial& trial) {
  static_cast<void>(trial.Start() && trial.Connect(1000) && trial.Pass(1500) && trial.Unplug());
}

constexpr Scenario kScenarios[] = {
    {"start-stop", "a device starts and stops, with a trace listener", Traced, nullptr,
     StartAndStop},
    {"bring-up", "the engine is brought up, without a SUPL file", Plain, nullptr, BringUp},
    {"hand-over", "the registry hands the modem over", Plain, HandOverByRegistry, HandOver},
    {"periodic", "three clients, one of which reads too", QuickFix, nullptr, ThreeClients},
    {"long-intervals", "single fixes every 20 s", QuickFix, nullptr, LongIntervals},
    {"supl", "the modem is given its SUPL settings", Plain, WriteConfigFile, BringUp},
    {"radio", "the radio is switched on and off", RadioOff, nullptr, SwitchRadio},
    {"power-cycle", "the device sleeps and wakes", QuickFix, nullptr, PowerCycle},
    {"sim-change", "another SIM is provisioned", QuickFix, WriteConfigFile, ChangeSim},
    {"removal", "the device is pulled out while a client listens", QuickFix, nullptr, Unplug},
};

}  // namespace

std::span<const Scenario> Scenarios() {
  return kScenarios;
}

}  // namespace bench
