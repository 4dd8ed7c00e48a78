#include "tests/acceptance/Stand.h"

#include <stdexcept>
#include <utility>

#include "driver/IoControlCodes.h"
#include "workbench/sensorapi/QueuePath.h"

namespace bench::acceptance {

namespace {

constexpr Millis kBringUp = 2000;
// Beyond twice the interval: a start of the receiver, and a command or two on the way.
constexpr Millis kStartTakes = 10'000;

RigOptions Options(const std::shared_ptr<Sky>& sky, DriverShare& share, ModemFaults faults) {
  RigOptions options;
  // The form that carries every field; an engine that searches for as long as it is asked to.
  options.modem.reportForm = 2;
  options.modem.fixTimeout = 0;
  options.modem.faults = std::move(faults);
  options.track = std::make_unique<SteeredTrack>(sky);
  options.observers = {&share};
  return options;
}

}  // namespace

Stand::Stand(ModemFaults faults) {
  rig_ = std::make_unique<Rig>(clock_, Options(sky_, share_, std::move(faults)));
  rig_->calls().SetHook([this](const CallEntry& entry) { share_.OnCall(entry.call); });
  if (FAILED(rig_->Start())) throw std::runtime_error("the device does not start");
  Pass(kBringUp);
}

HRESULT Stand::Add() {
  Host& host = rig_->host();
  host.RemoveDevice();
  const HRESULT added = host.AddDevice();
  const HRESULT result = FAILED(added) ? added : host.Start();
  Pass(kBringUp);
  return result;
}

HRESULT Stand::Restart() {
  const HRESULT stopped = rig_->host().Stop();
  const HRESULT added = Add();
  return FAILED(stopped) ? stopped : added;
}

HRESULT Stand::PlugIn() {
  rig_->host().Stop();  // its failures are those of a device that is gone
  return Add();
}

HRESULT Stand::Sleep(Millis duration) {
  const HRESULT down = rig_->host().PowerDown();
  Pass(duration);
  const HRESULT up = rig_->host().PowerUp();
  Settle();
  return FAILED(down) ? down : up;
}

HRESULT Stand::SwitchRadio(bool on) {
  const ULONG state = on ? 0 : 1;
  const std::string_view input(reinterpret_cast<const char*>(&state), sizeof state);
  const ClientRequest request = rig_->host().SendIoControl(stelvane::kIoctlSwitchRadio, input, 0);
  request.Wait();
  Settle();
  return request.Status();
}

Client Stand::Connect() {
  auto client =
      std::make_unique<ClientSession>(rig_->sensors(), std::make_unique<QueuePath>(rig_->host()));
  if (FAILED(client->Connect())) throw std::runtime_error("a client cannot connect");
  Settle();
  return client;
}

Client Stand::Subscriber(Millis interval) {
  Client client = Connect();
  const SetResult set = client->SetReportInterval(static_cast<ULONG>(interval));
  if (!set.Accepted() || FAILED(client->Subscribe())) {
    throw std::runtime_error("a client cannot subscribe");
  }
  Settle();
  return client;
}

bool Stand::WaitForNextReport(const ClientSession& client, Millis interval) {
  return client.WaitForReports(client.Reports().size() + 1,
                               clock_.Now() + 2 * interval + kStartTakes);
}

std::size_t Stand::Received(const std::string& command) {
  const ModemSnapshot modem = rig_->modem().Snapshot();
  const auto line = modem.commandLines.find(command);
  return line == modem.commandLines.end() ? 0 : line->second;
}

void Stand::Say(std::string_view line) {
  rig_->modem().Inject(
      {.timed = {{.at = 0, .action = ModemAction::kLine, .text = std::string(line)}}});
  Settle();
}

SensorState Stand::State() {
  Variant value;
  const Client client = Connect();
  client->GetProperty({keys::kSensorCommonSet, 3}, &value);
  return static_cast<SensorState>(value.Get().ulVal);
}

std::vector<std::string> Stand::Close() {
  rig_->Shutdown();
  return rig_->Findings();
}

}  // namespace bench::acceptance
