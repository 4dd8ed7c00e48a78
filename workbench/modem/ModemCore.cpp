#include "workbench/modem/ModemCore.h"

#include <utility>

namespace bench {

namespace {

constexpr std::int32_t kSuccess = 0;
constexpr std::uint8_t kClassRequestToInterface = 0x21;
constexpr std::uint8_t kSetControlLineState = 0x22;

ModemSnapshot AtPowerOn(const ModemOptions& options) {
  ModemSnapshot state;
  state.echo = options.echo;
  state.engineOn = options.engineOn;
  state.engineRunning = options.engineOn;
  state.imsi = options.imsi;
  state.usbProfile = options.usbProfile;
  state.storedUsbProfile = options.usbProfile;
  return state;
}

}  // namespace

Modem::Core::Core(Clock& clock, ModemOptions options, std::unique_ptr<TrackSource> track,
                  std::vector<ModemObserver*> observers)
    : clock_(clock),
      options_(std::move(options)),
      observers_(std::move(observers)),
      state_(AtPowerOn(options_)),
      port_(agenda_,
            [this](std::string chunk) {
              state_.bytesOut += chunk.size();
              happenings_.emplace_back(Chunk{std::move(chunk)});
            }),
      engine_(agenda_, std::move(track), options_, clock.Now(),
              {.onFix =
                   [this](Millis due, const LocationRequest& request, const GnssFix& fix) {
                     SendReport(due, request.id, !request.interval, false, fix);
                   },
               .onNoFix = [this](Millis due) { SendFixError(due); }}),
      reportForm_(options_.reportForm),
      reportShape_(options_.reportShape) {
  // What goes wrong from the start does so before the host's first request.
  const Millis now = clock_.Now();
  Plan(now, options_.faults);
  agenda_.RunUntil(now);
  thread_ = Thread(clock_, [this] { Run(); });
}

Modem::Core::~Core() {
  stopping_ = true;
  Wake();
  thread_.Join();
}

std::int32_t Modem::Core::ControlRequested(const ControlRequest& request) {
  const std::lock_guard lock(mutex_);
  ++state_.controlRequests;
  const bool known =
      request.requestType == kClassRequestToInterface && request.request == kSetControlLineState;
  if (known && stalls_ == 0) return kSuccess;
  if (stalls_ > 0) --stalls_;
  ++state_.stalledControlRequests;
  return options_.stallStatus;
}

void Modem::Core::HostWrote(std::string_view bytes) {
  {
    const std::lock_guard lock(mutex_);
    state_.bytesIn += bytes.size();
    inbox_ += bytes;
  }
  Wake();
}

void Modem::Core::SetSink(ByteSink sink) {
  const std::lock_guard lock(sinkMutex_);
  sink_ = std::move(sink);
}

ModemSnapshot Modem::Core::Snapshot() const {
  const std::lock_guard lock(mutex_);
  ModemSnapshot snapshot = state_;
  snapshot.lastRequestId = engine_.LastId();
  if (const auto& running = engine_.Running()) {
    snapshot.running = running->id;
    snapshot.interval = running->interval;
  }
  return snapshot;
}

void Modem::Core::Wake() {
  wake_ = true;
  clock_.Notify();
}

void Modem::Core::Run() {
  while (!stopping_) {
    const Millis now = clock_.Now();
    std::vector<Happening> happenings;
    Millis next = kForever;
    {
      const std::lock_guard lock(mutex_);
      TakeInput(now);
      agenda_.RunUntil(now);
      next = agenda_.Next();
      happenings.swap(happenings_);
    }
    HandOut(happenings);
    clock_.WaitUntil(next, [this] { return wake_.exchange(false); });
  }
}

void Modem::Core::HandOut(const std::vector<Happening>& happenings) {
  for (const Happening& happening : happenings) {
    if (const auto* command = std::get_if<CommandSeen>(&happening)) {
      for (ModemObserver* observer : observers_) observer->OnCommand(command->at, command->line);
    } else if (const auto* sent = std::get_if<SentFix>(&happening)) {
      for (ModemObserver* observer : observers_) observer->OnFixSent(*sent);
    } else if (const auto* chunk = std::get_if<Chunk>(&happening)) {
      const Millis now = clock_.Now();
      for (ModemObserver* observer : observers_) observer->OnAnswer(now, chunk->bytes);
      const std::lock_guard lock(sinkMutex_);
      if (sink_) sink_(chunk->bytes);
    }
  }
}

void Modem::Core::Say(Millis now, std::string_view text) {
  if (!Deaf(now)) port_.Write(now, text);
}

Modem::Modem(Clock& clock, ModemOptions options, std::unique_ptr<TrackSource> track,
             std::vector<ModemObserver*> observers)
    : core_(std::make_unique<Core>(clock, std::move(options), std::move(track),
                                   std::move(observers))) {}
Modem::~Modem() = default;

std::int32_t Modem::OnControlRequest(const ControlRequest& request) {
  return core_->ControlRequested(request);
}

std::int32_t Modem::OnHostWrite(std::string_view bytes) {
  core_->HostWrote(bytes);
  return kSuccess;
}

void Modem::SetSink(ByteSink sink) {
  core_->SetSink(std::move(sink));
}
ModemSnapshot Modem::Snapshot() const {
  return core_->Snapshot();
}
void Modem::Inject(ModemFaults faults) {
  core_->Inject(std::move(faults));
}

void Modem::SetSim(std::string imsi) {
  Inject({.timed = {{.action = ModemAction::kSim, .text = std::move(imsi)}}, .reactions = {}});
}

}  // namespace bench
