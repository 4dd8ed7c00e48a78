// Decides when the engine is asked for fixes, when fixes become reports, and which state the
// sensor is in.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "base/Sync.h"
#include "modem/ModemControl.h"
#include "sensor/EventQueue.h"
#include "sensor/FixStore.h"
#include "sensor/LeadTimes.h"
#include "sensor/SensorOutput.h"
#include "sensor/Timers.h"

namespace stelvane {

/// HandleEvent and HandleTimer run on the worker thread, one at a time. The atomic fields are read
/// and reset by device callbacks and clients too; the two events are what a client's read waits on.
class SensorStateMachine {
 public:
  struct Partners {
    EventQueue& events;
    Timers& timers;
    LeadTimes& leadTimes;
    FixStore& fixes;
    SensorOutput& output;
  };
  explicit SensorStateMachine(const Partners& partners) : the_(partners) {}
  HRESULT Initialize();

  /// Fresh start, before the worker runs.
  void Reset();
  /// The modem to work with; set before the worker runs, null is never used by it.
  void SetModem(ModemControl* modem) { modem_ = modem; }

  /// May throw std::bad_alloc, also after the state has changed.
  void HandleEvent(std::uint32_t event);
  void HandleTimer(SensorTimer timer);
  /// Bring-up has succeeded: from then on all events are handled.
  bool IsInitialized() const { return initialized_; }

  std::uint32_t State() const { return state_; }
  std::uint32_t CurrentInterval() const { return currentInterval_; }
  /// Drops the memory of a running periodic request, so that the next refresh starts it anew.
  void ForgetInterval() { currentInterval_ = 0; }
  bool IsFixRequestActive() const { return fixRequestActive_; }
  void ClearFixRequest() { fixRequestActive_ = false; }

  /// Set while the last fix is younger than two seconds.
  HANDLE DataFreshHandle() const { return dataFreshEvent_.Get(); }
  bool IsDataFresh() const { return dataFreshEvent_.IsSet(); }
  /// Set whenever the state is not ready.
  HANDLE NotReadyHandle() const { return notReadyEvent_.Get(); }

  /// Radio management, on an I/O thread. Stores `state` as the previous one when `restoreOnly`,
  /// else switches the radio: 0 is on, any other off.
  HRESULT SetRadioState(ModemControl& modem, ULONG state, bool restoreOnly)
      EXCLUDES(initLock_, requestLock_);

 private:
  void ChangeState(std::uint32_t event, std::uint32_t next);
  void OnDataArrived();
  void OnLocationError();
  void OnDataRequested();
  void RefreshReporting();
  HRESULT Restart(std::uint32_t newInterval, std::uint32_t oldInterval);
  HRESULT StartPeriodic(std::uint32_t interval);
  void BringUp() EXCLUDES(initLock_);
  void ClearAssistanceData();
  void CheckFixLost();

  bool RequestRuns() const;
  void StopLocationRequest(ModemControl& modem) EXCLUDES(requestLock_);
  void EndFixRequest();
  HRESULT StartSingleFix();

  const Partners the_;
  ModemControl* modem_ = nullptr;

  std::atomic<std::uint32_t> state_{SENSOR_STATE_ERROR};
  std::atomic<std::uint32_t> currentInterval_{0};  // ms; kNoInterval: no request runs
  std::atomic<bool> fixRequestActive_{false};      // a single fix is outstanding
  bool fakeClient_ = false;                        // reporting runs at 1000 ms for a read
  bool initialized_ = false;

  Event dataFreshEvent_;
  Event notReadyEvent_;
  Event requestStoppedEvent_;  // a location request was stopped successfully
  CriticalSection requestLock_;
  CriticalSection initLock_;
};

}  // namespace stelvane
