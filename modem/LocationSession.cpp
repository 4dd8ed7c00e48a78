#include "modem/LocationSession.h"

#include <new>
#include <string>

#include "modem/LocationSession.trace.h"

namespace stelvane {

namespace {

// Twelve fields: the two settable ones, four empty, the interval (empty for a single fix), two
// empty, the constant 2, two empty.
std::string RequestParameters(std::uint32_t field1, std::uint32_t field2,
                              std::uint32_t intervalSeconds) {
  std::string text = std::to_string(field1) + "," + std::to_string(field2) + ",,,,,";
  if (intervalSeconds != 0) text += std::to_string(intervalSeconds);
  return text + ",,,2,,";
}

}  // namespace

HRESULT LocationSession::StartLocationRequest(std::uint32_t intervalSeconds) {
  const ScopedLock lock(sessionParamLock_);
  TRACE(StartBegins, intervalSeconds);
  the_.supl.ConfigureSupl();
  UpdateQos();
  the_.listener.OnLocationRequestStarting();
  const HRESULT result = SendStart(intervalSeconds);
  if (FAILED(result)) {
    TRACE(StartFailed, intervalSeconds, result);
    the_.listener.OnLocationRequestRefused();
  } else {
    TRACE(StartAccepted, intervalSeconds);
    the_.listener.OnLocationRequestAccepted(intervalSeconds != 0);
  }
  return result;
}

HRESULT LocationSession::SendStart(std::uint32_t intervalSeconds) {
  try {
    return the_.engine.SendCommand("AT", "XLCSLSR",
                                   RequestParameters(lsrField1_, lsrField2_, intervalSeconds));
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

HRESULT LocationSession::StopLocationRequest() {
  const std::uint32_t requestId = the_.answers.requestId;
  // At most 12 characters, which a text keeps without asking for memory.
  const std::string parameters = "0," + std::to_string(requestId);
  const HRESULT result = the_.engine.SendCommand("AT", "XLSRSTOP", parameters);
  if (FAILED(result)) {
    TRACE(StopFailed, requestId, result);
    return result;
  }
  // The use that the command engine kept when it started the request.
  the_.channel.ReleaseEngineUse();
  the_.listener.OnLocationRequestStopped();
  return result;
}

HRESULT LocationSession::UpdateQos() {
  const LONG before = highAccuracy_;
  // No client's wish is tested on the way, so the walk always yields 0 and the engine keeps the
  // quality that bring-up set; this is meant.
  highAccuracy_ = 0;
  the_.clients.Walk([this](const ClientEntry&) { return highAccuracy_ != 1; });
  if (highAccuracy_ == before) return S_OK;
  const HRESULT result =
      the_.engine.SendCommand("AT", "XLCSLQOS", highAccuracy_ == 1 ? "15,,150" : "50,,150");
  if (FAILED(result)) TRACE(QosFailed, result);
  return result;
}

HRESULT LocationSession::SetEngineSwitch(bool off) {
  const HRESULT result = the_.engine.SendCommand("AT", "XLCSSWITCH", off ? "0,1" : "1");
  if (FAILED(result)) {
    TRACE(SwitchFailed, ULONG{off}, result);
    return result;
  }
  the_.radio.radioOff = off ? 1 : 0;
  return result;
}

HRESULT LocationSession::ClearAssistanceData() {
  const HRESULT result = the_.engine.SendCommand("AT", "XLGNVRAM", "7,0");
  if (FAILED(result)) TRACE(ClearFailed, result);
  return result;
}

std::uint32_t LocationSession::GetLsrField1() {
  const ScopedLock lock(sessionParamLock_);
  return lsrField1_;
}

void LocationSession::SetLsrField1(std::uint32_t value) {
  const ScopedLock lock(sessionParamLock_);
  lsrField1_ = value;
}

std::uint32_t LocationSession::GetLsrField2() {
  const ScopedLock lock(sessionParamLock_);
  return lsrField2_;
}

void LocationSession::SetLsrField2(std::uint32_t value) {
  const ScopedLock lock(sessionParamLock_);
  lsrField2_ = value;
}

}  // namespace stelvane
