#include "modem/EngineBringUp.h"

#include <new>
#include <string>

#include "modem/EngineBringUp.trace.h"

namespace stelvane {

namespace {

constexpr int kEchoRetries = 3;
constexpr DWORD kEchoPauseMs = 300;

// The clock's parameter: no number has a leading zero and there is no time zone. The modem takes
// it in this form; it is meant.
std::string ClockText(const SYSTEMTIME& utc) {
  return '"' + std::to_string(utc.wYear % 100) + "/" + std::to_string(utc.wMonth) + "/" +
         std::to_string(utc.wDay) + "," + std::to_string(utc.wHour) + ":" +
         std::to_string(utc.wMinute) + ":" + std::to_string(utc.wSecond) + '"';
}

}  // namespace

HRESULT EngineBringUp::InitializeEngine() noexcept {
  TRACE(BringUpStarts);
  const EngineUse use(the_.channel);
  RETURN_IF_FAILED(TurnEchoOn(), EchoFailed);
  if (the_.profileSwitch.DisableInternalGnssIfRequested() == 0) {
    // The core counts as initialised although the engine is off; this is meant.
    TRACE(HandedOver);
    return S_OK;
  }
  RETURN_IF_FAILED(the_.engine.SendCommand("AT+XLCSSWITCH?"), SwitchQueryFailed);

  const bool on = the_.answers.engineSwitchOn;
  the_.listener.OnEngineSwitchRead(on);
  the_.radio.radioOff = on ? 0 : 1;

  HRESULT result = the_.engine.SendCommand("AT", "XLCSLQOS", "50");
  if (FAILED(result)) {
    TRACE(QosNotSet, result);
    result = S_OK;
  }
  if (const HRESULT set = SetModemClock(); FAILED(set)) TRACE(ClockNotSet, set);
  the_.supl.ConfigureSupl();
  TRACE(BringUpEnds, result);
  return result;
}

HRESULT EngineBringUp::TurnEchoOn() {
  HRESULT result = the_.engine.SendCommand("ATE1");
  for (int retry = 0; retry < kEchoRetries && FAILED(result); ++retry) {
    TRACE(EchoRetried, result);
    Sleep(kEchoPauseMs);
    result = the_.engine.SendCommand("ATE1");
  }
  return result;
}

HRESULT EngineBringUp::SetModemClock() {
  SYSTEMTIME utc = {};
  GetSystemTime(&utc);
  try {
    return the_.engine.SendCommand("AT", "CCLK", ClockText(utc));
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace stelvane
