#include "workbench/DemoRun.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "workbench/trace/MessageText.h"

namespace bench {

namespace {

constexpr Millis kDriveLength = 30'000;
constexpr Millis kHandOverLength = 10'000;
constexpr Millis kShowsAllUpTo = 120'000;
constexpr Millis kLook = 100;
constexpr Millis kMinute = 60'000;
constexpr Millis kSettle = 200;         // for what is on its way when the time is over
constexpr Millis kRequestTakes = 5000;  // at the most, undisturbed, until the modem has a request
constexpr const wchar_t* kRegistryKey = L"SOFTWARE\\Tavrel\\Stelvane";

template <class... Arguments>
std::string Format(const char* pattern, Arguments... arguments) {
  char text[160];
  std::snprintf(text, sizeof text, pattern, arguments...);
  return text;
}

double Seconds(Millis time) {
  return static_cast<double>(time) / 1000;
}

std::string Result(HRESULT result) {
  return Format("0x%08lX", static_cast<unsigned long>(result));
}

}  // namespace

DemoRun::DemoRun(const DemoOptions& options, DemoFiles files)
    : options_(options),
      files_(std::move(files)),
      transcript_([this](const AtLine& line) {
        fixes_.OnLine(line);
        if (showsAll_) view_.OnLine(line);
        if (files_.transcript) {
          std::fprintf(files_.transcript.get(), "%s\n", TranscriptText(line).c_str());
        }
        if (files_.runFolder) files_.runFolder->OnLine(line);
      }),
      clock_(options.pace.value_or(options.nmea.empty() ? 1 : 0)) {
  interval_ = IntervalInForce(options_.intervals);
  Millis length = options_.handOver ? kHandOverLength : kDriveLength;
  if (files_.track->Length() != kForever) length = files_.track->Length();
  length = options_.duration.value_or(length);
  showsAll_ = !options_.quiet && (options_.all || length <= kShowsAllUpTo);
  until_ = length;
  rig_ = MakeRig();
}

std::unique_ptr<Rig> DemoRun::MakeRig() {
  auto track = std::make_unique<GatedTrack>(files_.track);
  track_ = track.get();
  RigOptions rig;
  rig.dll = files_.dll;
  rig.modem = files_.modem;
  rig.track = std::move(track);
  rig.observers = {&fixes_, &transcript_};
  if (options_.noAtPort) rig.device.usb.interfaces = {{.endpoints = {}, .claimedEndpoints = {}}};
  if (options_.trace) {
    rig.trace = {.level = *options_.trace,
                 .listener = [this](const TraceRecord& record) { OnTrace(record); }};
  }
  return std::make_unique<Rig>(clock_, std::move(rig));
}

int DemoRun::Run() {
  Announce();
  if (files_.suplConfig) rig_->systemRoot().WriteConfigFile(*files_.suplConfig);
  if (options_.handOver) {
    rig_->redirector().Registry().SetDword(HKEY_LOCAL_MACHINE, kRegistryKey, L"DisableInternalGNSS",
                                           1);
  }
  const HRESULT started = rig_->Start();
  if (showsAll_) {
    for (const auto& [step, result] : rig_->host().Steps()) {
      console_.Line(clock_.Now(), "device   " + step + " " + (result == S_OK ? "" : Result(result)),
                    Tone::kPlain);
    }
  }
  Check(started, "the device does not start");
  if (SUCCEEDED(started)) options_.handOver ? HandOver() : Deliver();

  for (const auto& client : clients_) client->Disconnect();
  rig_->Shutdown();
  if (showsAll_) view_.Show(rig_->sensors());
  Summarize(rig_->modem().Snapshot(), rig_->Findings());
  return faults_.empty() ? 0 : 1;
}

void DemoRun::Announce() const {
  if (options_.quiet) return;
  console_.Line("Stelvane on " + files_.trackText);
  if (!showsAll_) console_.Line("a long run: one line a minute (--all shows everything)");
}

// Nobody connects: the modem leaves the sensor.
void DemoRun::HandOver() {
  Pass(until_);
  const ModemSnapshot modem = rig_->modem().Snapshot();
  const bool handedOver = modem.storedUsbProfile.profile == "MBIM" && modem.restarts == 1;
  if (!handedOver) faults_.push_back("the modem was not handed over");
}

void DemoRun::Deliver() {
  const Millis length = until_;
  if (options_.nmea.empty()) track_->Open(0);
  ConnectClients();
  if (!options_.nmea.empty()) OpenTrack();
  from_ = clock_.Now();
  until_ = from_ + length;
  // Up to one start goes by before the modem sees that the log has begun.
  if (!options_.nmea.empty()) until_ += files_.modem.coldStart;
  if (!showsAll_ && !options_.quiet) nextProgress_ = from_ + kMinute;

  struct Deed {
    Millis at;
    void (DemoRun::*run)();
  };
  std::vector<Deed> deeds;
  if (options_.radioOff) deeds.push_back({from_ + length / 3, &DemoRun::SwitchRadioOn});
  if (options_.simChange) deeds.push_back({from_ + options_.simChange->at, &DemoRun::ChangeSim});
  if (options_.unplug) deeds.push_back({from_ + *options_.unplug, &DemoRun::Unplug});
  std::ranges::sort(deeds, {}, &Deed::at);
  for (const Deed& deed : deeds) {
    if (deed.at >= until_) break;
    Pass(deed.at);
    (this->*deed.run)();
  }
  Pass(until_);
  clock_.SleepFor(kSettle);
  if (showsAll_) view_.Show(rig_->sensors());
  CheckClients();
  CheckSilence();
}

void DemoRun::ConnectClients() {
  for (const unsigned long interval : options_.intervals) {
    auto& client = clients_.emplace_back(rig_->NewClient());
    const std::string name = Format("client %zu", clients_.size());
    Check(client->Connect(), name + " cannot connect");
    if (!client->SetReportInterval(interval).Accepted()) {
      faults_.push_back(name + " cannot set its report interval");
    }
    Check(client->Subscribe(), name + " cannot subscribe");
    if (showsAll_) {
      console_.Line(clock_.Now(),
                    Format("client   %zu subscribed, every %lu ms", clients_.size(), interval),
                    Tone::kPlain);
    }
  }
}

// A log begins when the modem works on the clients' request and has had its start.
void DemoRun::OpenTrack() {
  const Millis deadline = clock_.Now() + kRequestTakes;
  while (!options_.radioOff && clock_.Now() < deadline) {
    const ModemSnapshot modem = rig_->modem().Snapshot();
    const Millis asked = modem.interval.value_or(interval_);
    if (modem.running && modem.lastRequestId > 1 && asked == interval_) break;
    clock_.SleepFor(kLook);
  }
  clock_.SleepFor(files_.modem.coldStart);
  track_->Open(clock_.Now());
}

void DemoRun::Pass(Millis until) {
  while (clock_.Now() < until) {
    if (showsAll_) {
      const Millis look = std::min(until, clock_.Now() + kLook);
      if (rig_->sensors().WaitForEvents(events_ + 1, look)) ++events_;
      view_.Show(rig_->sensors());
    } else {
      clock_.SleepUntil(std::min(until, nextProgress_));
      if (clock_.Now() >= nextProgress_) ShowProgress();
    }
  }
}

void DemoRun::ShowProgress() {
  while (rig_->sensors().WaitForEvents(events_ + 1, 0)) ++events_;
  const Millis passed = nextProgress_ - from_;
  console_.Line(Format(
      "%4lld of %lld min: %zu fixes sent, %zu reports", static_cast<long long>(passed / kMinute),
      static_cast<long long>((until_ - from_) / kMinute), fixes_.Count(), events_));
  nextProgress_ += kMinute;
}

void DemoRun::OnTrace(const TraceRecord& record) {
  const MessageText message = DecodeMessage(files_.traceFormats, record);
  const std::string line = MessageLine(message);
  char time[48];
  std::snprintf(time, sizeof time, "%9.3f %04lx  ", Seconds(record.time), record.thread);
  files_.runFolder->OnTrace(record, time + line);
  if (showsAll_) view_.OnTrace(record.time, line);
}

void DemoRun::CheckClients() {
  const auto fixes = fixes_.All();
  const auto states = rig_->sensors().StateHistory();
  // What came early in the time to settle had as long as any other to reach the clients.
  const DeliveryTerms terms{.interval = interval_, .from = from_, .until = until_ + kSettle / 2};
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    const auto reports = clients_[i]->Reports();
    const DeliveryResult result = CheckDelivery(fixes, states, reports, terms);
    clientLines_.push_back(
        Format("client %zu     every %lu ms: %zu reports; %zu of %zu due fixes "
               "delivered",
               i + 1, options_.intervals[i], reports.size(), result.delivered, result.due));
    for (const std::string& fault : result.faults) {
      faults_.push_back(Format("client %zu: ", i + 1) + fault);
    }
  }
}

void DemoRun::CheckSilence() {
  const Millis from = options_.radioOff ? from_ + (until_ - from_) / 3 : from_;
  const Millis allowed = 2 * interval_ + files_.modem.coldStart + kRequestTakes;
  const Millis silence = LongestSilence(fixes_.All(), from, until_, [this](Millis at) {
    return !Excused(at) && track_->At(at).has_value();
  });
  if (silence > allowed) {
    faults_.push_back(
        Format("the modem had reception and sent no fix for %.0f s; %.0f s at an "
               "interval of %lld ms would be long",
               Seconds(silence), Seconds(allowed), static_cast<long long>(interval_)));
  }
}

// The script takes the reception away, or the modem's voice.
bool DemoRun::Excused(Millis at) const {
  return std::ranges::any_of(files_.modem.faults.timed, [at](const TimedFault& fault) {
    const bool takesFixes =
        fault.action == ModemAction::kLoseFix || fault.action == ModemAction::kSilent;
    return takesFixes && at >= fault.at && at < fault.at + fault.amount;
  });
}

void DemoRun::Check(HRESULT result, const std::string& what) {
  if (FAILED(result)) faults_.push_back(what + ": " + Result(result));
}

void DemoRun::Summarize(const ModemSnapshot& modem, const std::vector<std::string>& left) {
  const std::chrono::duration<double> real = std::chrono::steady_clock::now() - began_;
  console_.Line("");
  console_.Line("Summary");
  console_.Line(
      Format("  time         %.1f s simulated in %.1f s", Seconds(clock_.Now()), real.count()));
  console_.Line(
      Format("  modem        %zu fixes sent, %zu commands received, %zu errors answered, "
             "%zu restarts",
             modem.fixesSent, modem.commands, modem.errorsSent, modem.restarts));
  console_.Line("  SIM          " + modem.imsi);
  if (modem.supl.version.empty() && modem.supl.addressType.empty()) {
    console_.Line("  SUPL         not provisioned");
  } else {
    console_.Line("  SUPL         server \"" + modem.supl.address + "\" port " + modem.supl.port +
                  ", address type " + modem.supl.addressType + ", version " + modem.supl.version);
  }
  console_.Line("  modem clock  " + (modem.clock.empty() ? "not set" : modem.clock));
  console_.Line("  USB profile  " + modem.storedUsbProfile.profile);
  for (const std::string& line : clientLines_) console_.Line("  " + line);
  if (files_.runFolder) console_.Line("  run folder   " + files_.runFolder->Path());
  for (const std::string& finding : left) faults_.push_back("left behind: " + finding);
  if (left.empty()) console_.Line("  left behind  nothing; DllCanUnloadNow says S_OK");
  for (const std::string& fault : faults_) console_.Line("  BROKEN       " + fault, Tone::kBad);
  if (faults_.empty()) console_.Line("  result       all is well", Tone::kGood);
}

}  // namespace bench
