#include "tests/sweep/Trial.h"

#include <cstdlib>
#include <map>
#include <utility>

#include "driver/IoControlCodes.h"
#include "tests/sweep/Procedures.h"
#include "workbench/imports/Imports.h"

namespace bench {

namespace {

// A code that the driver has no other reason to give, so that it is known again in a result.
constexpr HRESULT kCallFails = HRESULT_FROM_WIN32(ERROR_GEN_FAILURE);
constexpr Millis kPatience = 60'000;         // of a client with its request
constexpr Millis kLongestRun = 3600 * 1000;  // simulated; a run takes some minutes at the most

constexpr PROPERTYKEY kLatitude = {
    {0x055c74d8, 0xca6f, 0x47d6, {0x95, 0xc6, 0x1e, 0xd3, 0x63, 0x7a, 0x0f, 0xf4}}, 2};

const char* KindText(MishapKind kind) {
  switch (kind) {
    case MishapKind::kCall:
      return "call";
    case MishapKind::kImport:
      return "import";
    case MishapKind::kRemoval:
      return "removal";
    case MishapKind::kRelease:
      return "release";
    case MishapKind::kNone:
      break;
  }
  return "nothing";
}

/// The code that a caller makes of a failed function.
HRESULT ResultOf(const Failure& failure) {
  if (failure.lastError != 0) return HRESULT_FROM_WIN32(failure.lastError);
  if (failure.result == 0) return E_OUTOFMEMORY;
  const auto code = static_cast<HRESULT>(failure.result);
  return FAILED(code) ? code : HRESULT_FROM_WIN32(static_cast<DWORD>(code));
}

}  // namespace

std::string MishapText(const Mishap& mishap) {
  std::string text = KindText(mishap.kind);
  if (!mishap.name.empty()) text += " " + mishap.name;
  if (mishap.kind != MishapKind::kNone) text += " " + std::to_string(mishap.nth);
  return mishap.andAllAfter ? text + " and all after" : text;
}

Trial::Trial(Clock& clock, CallRecord& calls, RigOptions options, const Mishap& mishap)
    : mishap_(mishap), clock_(clock) {
  options.calls = &calls;
  Listen(options, calls);
  options.beforeLoad = [this](Redirector& redirector, CallRecord& record) {
    const int nth = static_cast<int>(mishap_.nth);
    if (mishap_.kind == MishapKind::kCall) {
      record.FailCall(mishap_.name, nth, kCallFails, mishap_.andAllAfter);
    } else if (mishap_.kind == MishapKind::kImport) {
      redirector.Faults().FailImport(mishap_.name, mishap_.nth,
                                     mishap_.andAllAfter ? Extent::kSameFunction : Extent::kOnce);
    }
    redirector.Faults().SetObserver([&record](std::string_view name, const Failure& failure) {
      record.NoteFailed("import", name, ResultOf(failure));
    });
    record.SetHook([this](const CallEntry&) { OnCall(); });
  };
  rig_ = std::make_unique<Rig>(clock_, std::move(options));
  xml_ = std::make_unique<XmlCalls>(rig_->calls());
  if (mishap_.kind == MishapKind::kRemoval) removal_ = Thread(clock_, [this] { PullOut(); });
}

// What the driver makes of a failing call on its own thread is seen in its trace only. With
// STELVANE_TRACE_NONE in the environment nobody looks, so that trace sites are run without a
// listener too.
void Trial::Listen(RigOptions& options, CallRecord& calls) const {
  if (std::getenv("STELVANE_TRACE_NONE") != nullptr) return;
  const bool called = mishap_.kind == MishapKind::kCall;
  const bool imported = mishap_.kind == MishapKind::kImport && IsUntouchedByTracing(mishap_.name);
  if (!called && !imported) return;
  options.trace = TraceOptions{
      .listener = [&calls](const TraceRecord& message) { NoteProcedure(calls, message); }};
}

Trial::~Trial() {
  clients_.clear();
}

// On the thread of the call, which may hold locks of the driver's.
void Trial::OnCall() {
  if (++calls_ != mishap_.nth || ending_) return;
  if (mishap_.kind != MishapKind::kRemoval && mishap_.kind != MishapKind::kRelease) return;
  happened_ = true;
  stopping_ = true;
  clock_.Notify();
}

// On a thread of its own: the thread of the call may be one that the removal waits for.
void Trial::PullOut() {
  clock_.WaitUntil(kForever, [this] { return stopping_ || ending_; });
  if (stopping_ && rig_->host().device() != nullptr) rig_->host().SurpriseRemoval();
}

bool Trial::Start() {
  return SUCCEEDED(rig_->Start()) && GoesOn();
}

bool Trial::Pass(Millis time) {
  clock_.WaitUntil(clock_.Now() + time, [this] { return stopping_.load(); });
  return GoesOn();
}

bool Trial::Connect(ULONG interval) {
  auto& client = clients_.emplace_back(rig_->NewClient());
  if (FAILED(client->Connect())) return GoesOn();
  client->SetReportInterval(interval);
  client->Subscribe();
  return GoesOn();
}

bool Trial::DisconnectAll() {
  for (const auto& client : clients_) client->Disconnect();
  clients_.clear();
  return GoesOn();
}

bool Trial::Read() {
  if (!clients_.empty()) client().ReadData({kLatitude});
  return GoesOn();
}

bool Trial::SwitchRadio(ULONG state) {
  Host& host = rig_->host();
  const std::string input(reinterpret_cast<const char*>(&state), sizeof state);
  host.SendIoControl(stelvane::kIoctlSwitchRadio, input, 0).Wait(kPatience);
  if (GoesOn())
    host.SendIoControl(stelvane::kIoctlReadRadioState, {}, sizeof state).Wait(kPatience);
  return GoesOn();
}

bool Trial::PowerDownAndUp() {
  if (FAILED(rig_->host().PowerDown())) return false;
  return Pass(1000) && SUCCEEDED(rig_->host().PowerUp()) && GoesOn();
}

bool Trial::Unplug() {
  rig_->host().SurpriseRemoval();
  return false;
}

std::vector<std::string> Trial::End() {
  ending_ = true;  // nobody pulls out what is being removed
  clock_.Notify();
  removal_.Join();
  for (const auto& client : clients_) client->Disconnect();
  rig_->Shutdown();
  clients_.clear();
  std::vector<std::string> findings = rig_->Findings();
  if (clock_.Now() > kLongestRun) {
    findings.push_back("the run took " + std::to_string(clock_.Now() / 1000) + " s");
  }
  happened_ = happened_ || rig_->redirector().Faults().Failed() > 0;
  if (mishap_.kind == MishapKind::kCall) {
    happened_ = rig_->calls().Count(mishap_.name) >= mishap_.nth;
  }
  return findings;
}

std::vector<Trial::Count> Trial::Counts() {
  std::map<std::string, std::uint64_t> calls;
  for (const CallEntry& entry : rig_->calls().Calls()) {
    if (entry.object != kDriverCallee) ++calls[entry.call];
  }
  std::vector<Count> counts;
  for (const auto& [name, count] : calls) counts.push_back({MishapKind::kCall, name, count});
  for (const ImportFact& fact : kImports) {
    const std::uint64_t count = rig_->redirector().Faults().CallCount(fact.name);
    if (fact.failure && count > 0) {
      counts.push_back({MishapKind::kImport, std::string(fact.name), count});
    }
  }
  return counts;
}

}  // namespace bench
