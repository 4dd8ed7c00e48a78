#include "workbench/rig/Rig.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "workbench/console/Program.h"
#include "workbench/modem/DriveTrack.h"
#include "workbench/rig/PrescribedCalls.h"

namespace bench {

namespace {

constexpr ULONG kAllFlags = 0xFFFFFFFF;

SYSTEMTIME ToSystemTime(Utc time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  SYSTEMTIME result = {};
  result.wYear = static_cast<WORD>(static_cast<int>(date.year()));
  result.wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  result.wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  result.wDayOfWeek = static_cast<WORD>(std::chrono::weekday(day).c_encoding());
  result.wHour = static_cast<WORD>(clock.hours().count());
  result.wMinute = static_cast<WORD>(clock.minutes().count());
  result.wSecond = static_cast<WORD>(clock.seconds().count());
  result.wMilliseconds = static_cast<WORD>(
      std::chrono::duration_cast<std::chrono::milliseconds>(clock.subseconds()).count());
  return result;
}

std::wstring Wide(const std::u16string& text) {
  return {text.begin(), text.end()};
}

}  // namespace

Rig::Rig(Clock& clock, RigOptions options)
    : clock_(clock),
      ownCalls_(options.calls != nullptr ? nullptr : std::make_unique<CallRecord>(clock)),
      calls_(options.calls != nullptr ? *options.calls : *ownCalls_),
      sensors_({clock_, ledger_, calls_}, options.sensorService),
      classes_(sensors_, options.withheldClasses),
      redirector_(clock_) {
  WatchCalls(ledger_, redirector_, kPrescribedUnderLocks);
  auto track = options.track ? std::move(options.track) : std::make_unique<DriveTrack>();
  redirector_.Time().SetStartUtc(options.startUtc.value_or(ToSystemTime(track->Start())));
  redirector_.Time().SetStartTicks(options.startTicks);
  redirector_.Devices().Add(Wide(options.device.instanceId), options.deviceDescription);
  if (options.trace) {
    redirector_.Tracing().SetListener(std::move(options.trace->listener));
    redirector_.Tracing().Enable(options.trace->level, kAllFlags);
  }
  otherLink_ = std::move(options.link);
  if (!otherLink_) {
    modem_ = std::make_unique<Modem>(clock_, options.modem, std::move(track), options.observers);
  }
  if (options.beforeLoad) options.beforeLoad(redirector_, calls_);
  Load(ProgramFolder() / options.dll);

  HRESULT result = calls_.Run(kDriverCallee, "DllGetClassObject", [this] {
    return module_->GetClassObject(kDriverClass, iidOf<IClassFactory>,
                                   reinterpret_cast<void**>(factory_.Put()));
  });
  if (FAILED(result)) throw std::runtime_error("the DLL does not serve the driver's class");
  redirector_.Books().Mark();
  const stelvane::ComPtr<IDriverEntry> driver =
      LoadDriver(*factory_.Get(), {clock_, ledger_, calls_}, result);
  if (!driver) throw std::runtime_error("the DLL makes no driver object");
  UsbLink& link = otherLink_ ? *otherLink_ : *modem_;
  host_ = std::make_unique<Host>(clock_, ledger_, calls_, link, driver.Get(),
                                 std::move(options.device));
}

void Rig::Load(const std::filesystem::path& dll) {
  const CallRecord::Begun begun = calls_.Begin(kDriverCallee, "DllMain");
  try {
    module_ = std::make_unique<DriverModule>(dll, &redirector_);
  } catch (...) {
    calls_.End(begun, E_FAIL);
    throw;
  }
  calls_.End(begun, S_OK);
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
  if (!module_) return;
  ReleaseDriver();
  ledger_.ReportLeaks();
  canUnload_ = module_->CanUnloadNow();
  factory_.Reset();
  module_.reset();
}

std::vector<std::string> Rig::Findings() {
  return FindingsOf(ledger_, redirector_, canUnload_);
}

}  // namespace bench
