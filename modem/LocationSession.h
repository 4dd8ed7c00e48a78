// Location requests and the settings of the running GNSS engine.
#pragma once

#include <atomic>
#include <cstdint>

#include "at/CommandEngine.h"
#include "at/ModemAnswers.h"
#include "modem/ClientTable.h"
#include "modem/RadioState.h"
#include "modem/SuplProvisioning.h"

namespace stelvane {

/// Every procedure returns the command engine's result; a failure is traced there and here changes
/// nothing. The procedures run on the worker thread (the engine switch also on an I/O thread), the
/// field accessors on any.
class LocationSession {
 public:
  struct Partners {
    AtChannel& channel;
    CommandEngine& engine;
    ModemAnswers& answers;
    ModemListener& listener;
    ClientTable& clients;
    RadioState& radio;
    SuplProvisioning& supl;
  };
  explicit LocationSession(const Partners& partners) : the_(partners) {}
  HRESULT Initialize() { return sessionParamLock_.Initialize(); }

  /// Starts a session that reports every `intervalSeconds`, or once when that is 0. The engine use
  /// of an accepted request stays held until StopLocationRequest.
  HRESULT StartLocationRequest(std::uint32_t intervalSeconds) EXCLUDES(sessionParamLock_);
  HRESULT StopLocationRequest();
  /// Re-evaluates `highAccuracy` and sends the quality of service when it changed.
  HRESULT UpdateQos();
  HRESULT SetEngineSwitch(bool off);
  HRESULT ClearAssistanceData();

  std::uint32_t GetLsrField1() EXCLUDES(sessionParamLock_);
  void SetLsrField1(std::uint32_t value) EXCLUDES(sessionParamLock_);
  std::uint32_t GetLsrField2() EXCLUDES(sessionParamLock_);
  void SetLsrField2(std::uint32_t value) EXCLUDES(sessionParamLock_);
  LONG GetHighAccuracy() const { return highAccuracy_; }

 private:
  HRESULT SendStart(std::uint32_t intervalSeconds) REQUIRES(sessionParamLock_);

  const Partners the_;
  // Guards the two fields and is held for the whole of a start.
  CriticalSection sessionParamLock_;
  std::uint32_t lsrField1_ GUARDED_BY(sessionParamLock_) = 1;
  std::uint32_t lsrField2_ GUARDED_BY(sessionParamLock_) = 1;
  std::atomic<LONG> highAccuracy_{0};
};

}  // namespace stelvane
