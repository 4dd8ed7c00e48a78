#include "sensor/SensorStateMachine.h"

#include "sensor/Calendar.h"
#include "sensor/Events.h"
#include "sensor/SensorStateMachine.trace.h"
#include "sensor/StateTable.h"

namespace stelvane {

namespace {

constexpr std::uint32_t kFreshMs = 2000;
constexpr std::uint32_t kFakeClientInterval = 1000;  // ms
constexpr std::uint32_t kNextFixNearSeconds = 2;
constexpr std::uint64_t kMsPerSecond = 1000;
constexpr std::int64_t kCheckToleranceMs = 50;

// In 32 bits: for kNoInterval this is 0xFFFFFFFE, about 49.7 days and not "off"; it is meant.
std::uint32_t Twice(std::uint32_t interval) {
  return 2 * interval;
}

std::uint32_t SecondsSince(const SYSTEMTIME& time) {
  SYSTEMTIME now = {};
  GetSystemTime(&now);
  return AgeInSeconds(time, now);
}

}  // namespace

HRESULT SensorStateMachine::Initialize() {
  HRESULT result = requestLock_.Initialize();
  if (SUCCEEDED(result)) result = initLock_.Initialize();
  if (SUCCEEDED(result)) result = dataFreshEvent_.Create(Event::Reset::kManual, false);
  if (SUCCEEDED(result)) result = notReadyEvent_.Create(Event::Reset::kManual, true);
  if (SUCCEEDED(result)) result = requestStoppedEvent_.Create(Event::Reset::kManual, false);
  return result;
}

void SensorStateMachine::Reset() {
  fakeClient_ = false;
  fixRequestActive_ = false;
  currentInterval_ = kNoInterval;
}

void SensorStateMachine::HandleEvent(std::uint32_t event) {
  TRACE(EventHandled, EventName(event), SensorStateName(state_));
  if (!IsExpectedEvent(event)) TRACE(UnexpectedEvent, event);
  if (const auto next = NextState(state_, event, fixRequestActive_, currentInterval_);
      next != state_) {
    ChangeState(event, next);
  }
  switch (event) {
    case EV_DATA_ARRIVED:
      return OnDataArrived();
    case EV_SINGLE_SHOT_ERROR_RECEIVED:
      return OnLocationError();
    case EV_DATA_REQUESTED:
      return OnDataRequested();
    case EV_REFRESH_REPORTING:
      return RefreshReporting();
    case EV_LAST_CLIENT_DISCONNECTED:
      if (fixRequestActive_) StopLocationRequest(*modem_);
      return;
    case EV_INIT:
      return BringUp();
    case EV_INIT_SUPL:
      modem_->Supl().ConfigureSupl();
      return;
    case EV_CLEAR_ASSISTANCE_DATA:
      return ClearAssistanceData();
    default:  // the state change is all
      return;
  }
}

void SensorStateMachine::ChangeState(std::uint32_t event, std::uint32_t next) {
  TRACE(StateChanged, SensorStateName(state_), SensorStateName(next));
  if (state_ == SENSOR_STATE_READY) notReadyEvent_.Set();
  if (event == EV_FIRST_CLIENT_CONNECTED) StartSingleFix();
  state_ = next;
  the_.output.PostStateChange(static_cast<SensorState>(next));
  if (next == SENSOR_STATE_READY) {
    the_.output.SendDataReport(modem_->Clients(), the_.fixes.LastFix().record);
    notReadyEvent_.Clear();
  } else if (next != SENSOR_STATE_INITIALIZING) {
    the_.fixes.Invalidate();
  }
}

void SensorStateMachine::OnDataArrived() {
  if (state_ != SENSOR_STATE_READY) return;
  dataFreshEvent_.Set();
  the_.timers.Arm(TIMER_DATA_NO_LONGER_FRESH, kFreshMs);
  fixRequestActive_ = false;
  const std::uint32_t interval = currentInterval_;
  const FixRecord fix = the_.fixes.PublishedFix().record;
  const std::uint32_t age = AgeInSeconds(the_.output.LastReportedFixTime(), fix.fixTime);
  if (interval != kNoInterval && age * kMsPerSecond < interval) {
    TRACE(NotYetDue, age, interval);
  } else {
    the_.output.SendDataReport(modem_->Clients(), fix);
    the_.timers.Arm(TIMER_CHECK_FIX_LOST, Twice(interval));
  }
  // Long intervals run as single fixes; TIMER_PRGN starts the next.
  if (interval > kLongestPeriodicInterval) EndFixRequest();
}

void SensorStateMachine::OnLocationError() {
  EndFixRequest();
  the_.timers.Arm(TIMER_CHECK_FIX_LOST, Twice(currentInterval_));
}

void SensorStateMachine::OnDataRequested() {
  if (state_ == SENSOR_STATE_NOT_AVAILABLE) return;
  if (fixRequestActive_) {
    TRACE(FixRequestRuns);
    return;
  }
  const std::uint32_t interval = currentInterval_;
  if (interval > kLongestPeriodicInterval) {
    if (const HRESULT result = StartSingleFix(); FAILED(result)) TRACE(SingleFixFailed, result);
    return;
  }
  const std::uint32_t age = SecondsSince(the_.output.LastReportTime());
  const bool nextFixIsNear = (std::uint64_t{age} + kNextFixNearSeconds) * kMsPerSecond >= interval;
  if (nextFixIsNear || interval == kFakeClientInterval || fakeClient_) {
    TRACE(NextFixIsNear, age, interval);
    return;
  }
  TRACE(FakeClientStarts, interval, age);
  fakeClient_ = true;
  // Milliseconds less seconds, as plain numbers: the fake client stays for nearly the whole
  // interval. It is meant.
  the_.timers.Arm(TIMER_REMOVE_FAKE_CLIENT, interval - age);
  RefreshReporting();
}

void SensorStateMachine::RefreshReporting() {
  if (state_ != SENSOR_STATE_READY && state_ != SENSOR_STATE_NO_DATA &&
      state_ != SENSOR_STATE_INITIALIZING) {
    return;
  }
  const std::uint32_t newInterval =
      fakeClient_ ? kFakeClientInterval : modem_->Clients().RequiredInterval();
  const std::uint32_t oldInterval = currentInterval_;
  HRESULT result = S_OK;
  if (newInterval != oldInterval) result = Restart(newInterval, oldInterval);
  if (FAILED(result)) {
    TRACE(RefreshFailed, result);
    return;
  }
  currentInterval_ = newInterval;
  the_.timers.Arm(TIMER_CHECK_FIX_LOST,
                  newInterval == kNoInterval ? kTimerOff : Twice(newInterval));
}

HRESULT SensorStateMachine::Restart(std::uint32_t newInterval, std::uint32_t oldInterval) {
  TRACE(IntervalChanges, oldInterval, newInterval);
  const EngineUse use(modem_->Channel());
  if (RequestRuns()) StopLocationRequest(*modem_);
  if (oldInterval > kLongestPeriodicInterval && oldInterval != kNoInterval) {
    the_.timers.Arm(TIMER_PRGN, kTimerOff);
  }
  currentInterval_ = kNoInterval;
  the_.timers.Arm(TIMER_CHECK_FIX_LOST, kTimerOff);
  if (newInterval <= kLongestPeriodicInterval) return StartPeriodic(newInterval);
  if (newInterval != kNoInterval) {
    the_.timers.Arm(TIMER_PRGN, newInterval - the_.leadTimes.For(newInterval));
  }
  if (fixRequestActive_.exchange(false)) the_.events.Post(EV_DATA_REQUESTED);
  return S_OK;
}

HRESULT SensorStateMachine::StartPeriodic(std::uint32_t interval) {
  const auto seconds = static_cast<std::uint32_t>(interval / kMsPerSecond);
  const HRESULT result = modem_->Session().StartLocationRequest(seconds);
  if (SUCCEEDED(result)) return result;
  StopLocationRequest(*modem_);
  return modem_->Session().StartLocationRequest(seconds);
}

void SensorStateMachine::BringUp() {
  if (state_ != SENSOR_STATE_ERROR) return;
  const ScopedLock lock(initLock_);
  const HRESULT result = modem_->BringUp().InitializeEngine();
  if (FAILED(result)) {
    TRACE(BringUpFailed, result);
    return;
  }
  initialized_ = true;
}

void SensorStateMachine::ClearAssistanceData() {
  const EngineUse use(modem_->Channel());
  const bool restart = RequestRuns();
  if (restart) StopLocationRequest(*modem_);
  if (const HRESULT result = modem_->Session().ClearAssistanceData(); FAILED(result)) {
    TRACE(AssistanceNotCleared, result);
  }
  if (!restart) return;
  // Without an interval this asks for one of 4294967 seconds, as it stands.
  const auto seconds = static_cast<std::uint32_t>(currentInterval_ / kMsPerSecond);
  if (const HRESULT result = modem_->Session().StartLocationRequest(seconds); FAILED(result)) {
    TRACE(RestartFailed, result);
  }
}

void SensorStateMachine::HandleTimer(SensorTimer timer) {
  TRACE(TimerFired, TimerName(timer));
  switch (timer) {
    case TIMER_DATA_NO_LONGER_FRESH:
      return dataFreshEvent_.Clear();
    case TIMER_REMOVE_FAKE_CLIENT:
      // Set first, so that the refresh sees a change and restarts at the clients' own interval.
      currentInterval_ = kFakeClientInterval;
      fakeClient_ = false;
      return RefreshReporting();
    case TIMER_PRGN:
      the_.events.Post(EV_DATA_REQUESTED);
      return the_.timers.Arm(TIMER_PRGN, currentInterval_);
    case TIMER_CHECK_FIX_LOST:
      return CheckFixLost();
  }
}

void SensorStateMachine::CheckFixLost() {
  const std::uint32_t age = SecondsSince(the_.output.LastReportTime());
  const std::int64_t limit = std::int64_t{Twice(currentInterval_)} - kCheckToleranceMs;
  if (static_cast<std::int64_t>(age * kMsPerSecond) <= limit) return;
  TRACE(FixLost, age);
  the_.events.Post(EV_FIX_LOST);
}

bool SensorStateMachine::RequestRuns() const {
  return currentInterval_ <= kLongestPeriodicInterval || fixRequestActive_;
}

void SensorStateMachine::StopLocationRequest(ModemControl& modem) {
  const ScopedLock lock(requestLock_);
  if (const HRESULT result = modem.Session().StopLocationRequest(); FAILED(result)) {
    TRACE(StopFailed, result);
    return;
  }
  fixRequestActive_ = false;
  requestStoppedEvent_.Set();
}

void SensorStateMachine::EndFixRequest() {
  const bool stopped = requestStoppedEvent_.IsSet();
  fixRequestActive_ = false;
  if (stopped) {
    requestStoppedEvent_.Clear();
  } else {
    // The use that the command engine kept when the request was accepted.
    modem_->Channel().ReleaseEngineUse();
  }
}

HRESULT SensorStateMachine::StartSingleFix() {
  const HRESULT result = modem_->Session().StartLocationRequest(0);
  if (SUCCEEDED(result)) {
    fixRequestActive_ = true;
    requestStoppedEvent_.Clear();
  }
  return result;
}

HRESULT SensorStateMachine::SetRadioState(ModemControl& modem, ULONG state, bool restoreOnly) {
  const ScopedLock lock(initLock_);
  if (restoreOnly) {
    modem.Radio().previousRadioState = state;
    return S_OK;
  }
  if (state != 0 && RequestRuns()) {
    StopLocationRequest(modem);
    currentInterval_ = kNoInterval;
  }
  const HRESULT result = modem.Session().SetEngineSwitch(state != 0);
  TRACE(RadioSwitched, state, result);
  if (FAILED(result)) return result;
  if (state == 0) {
    the_.events.Post(EV_RADIO_ON);
    the_.events.Post(EV_REFRESH_REPORTING);
  } else {
    the_.events.Post(EV_RADIO_OFF);
  }
  return result;
}

}  // namespace stelvane
