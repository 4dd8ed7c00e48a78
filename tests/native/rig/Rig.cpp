#include "workbench/rig/Rig.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "base/ModuleLock.h"
#include "driver/Module.h"
#include "driver/Trace.h"
#include "tests/native/Native.h"
#include "workbench/modem/DriveTrack.h"

namespace bench {

namespace {

SYSTEMTIME ToSystemTime(Utc time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::milliseconds>(time - day));
  SYSTEMTIME result = {};
  result.wYear = static_cast<WORD>(static_cast<int>(date.year()));
  result.wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  result.wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  result.wHour = static_cast<WORD>(clock.hours().count());
  result.wMinute = static_cast<WORD>(clock.minutes().count());
  result.wSecond = static_cast<WORD>(clock.seconds().count());
  result.wMilliseconds = static_cast<WORD>(clock.subseconds().count());
  return result;
}

}  // namespace

Rig::Kernel::Kernel(Clock& clock, TraceSession& session) {
  native::UseClock(&clock);
  native::UseTraceSession(&session);
}

Rig::Kernel::~Kernel() {
  native::UseTraceSession(nullptr);
  native::UseClock(nullptr);
}

Rig::Rig(Clock& clock, RigOptions options)
    : clock_(clock),
      redirector_(clock),
      kernel_(clock, redirector_.Tracing()),
      calls_(clock),
      sensors_({clock_, ledger_, calls_}, options.sensorService),
      classes_(sensors_, options.withheldClasses) {
  auto track = options.track ? std::move(options.track) : std::make_unique<DriveTrack>();
  native::SetStartTime(options.startUtc.value_or(ToSystemTime(track->Start())));
  native::SetStartTicks(options.startTicks);
  native::SetDeviceDescription(options.deviceDescription);
  otherLink_ = std::move(options.link);
  if (!otherLink_) {
    modem_ = std::make_unique<Modem>(clock_, options.modem, std::move(track), options.observers);
  }
  stelvane::trace::RegisterTracing();
  loaded_ = stelvane::InitializeModule();

  redirector_.Books().Mark();
  HRESULT result = stelvane::GetClassObject(kDriverClass, iidOf<IClassFactory>,
                                            reinterpret_cast<void**>(factory_.Put()));
  if (FAILED(result)) throw std::runtime_error("the module does not serve the driver's class");
  const stelvane::ComPtr<IDriverEntry> driver =
      LoadDriver(*factory_.Get(), {clock_, ledger_, calls_}, result);
  if (!driver) throw std::runtime_error("the module makes no driver object");
  UsbLink& link = otherLink_ ? *otherLink_ : *modem_;
  host_ = std::make_unique<Host>(clock_, ledger_, calls_, link, driver.Get(),
                                 std::move(options.device));
}

Rig::~Rig() {
  Shutdown();
}

HRESULT Rig::Start() {
  const HRESULT added = host_->AddDevice();
  return FAILED(added) ? added : host_->Start();
}

void Rig::ReleaseDriver() {
  if (std::exchange(released_, true)) return;
  if (host_->device() != nullptr) {
    host_->Stop();
    host_->RemoveDevice();
  }
  host_->Unload();
}

void Rig::Shutdown() {
  if (!std::exchange(loaded_, false)) return;
  ReleaseDriver();
  ledger_.ReportLeaks();
  canUnload_ = stelvane::moduleLockCount == 0;
  factory_.Reset();
  stelvane::trace::UnregisterTracing();
  stelvane::TerminateModule();
}

std::vector<std::string> Rig::Findings() {
  std::vector<std::string> findings = ledger_.Violations();
  if (!canUnload_) findings.push_back("the module is still locked");
  if (const std::string books = redirector_.Books().Report(); !books.empty()) {
    findings.push_back(books);
  }
  return findings;
}

}  // namespace bench
