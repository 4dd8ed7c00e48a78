#include "sensor/SensorCore.h"

#include <objbase.h>

#include <new>

#include "sensor/SensorCore.trace.h"

namespace stelvane {

HRESULT SensorCore::InitializeObject() {
  HRESULT result = PlainObject::InitializeObject();
  if (SUCCEEDED(result)) result = events_.Initialize();
  if (SUCCEEDED(result)) result = leadTimes_.Initialize();
  if (SUCCEEDED(result)) result = fixes_.Initialize();
  if (SUCCEEDED(result)) result = output_.Initialize();
  if (SUCCEEDED(result)) result = machine_.Initialize();
  if (SUCCEEDED(result)) result = driver_.Initialize();
  if (SUCCEEDED(result)) result = modemLock_.Initialize();
  if (SUCCEEDED(result)) result = stopEvent_.Create(Event::Reset::kManual, false);
  return result;
}

HRESULT SensorCore::Start(IWDFDevice* device) {
  ComPtr<ModemControl> modem;
  HRESULT result = ModemControl::Create(*this, modem);
  if (FAILED(result)) TRACE(ModemNotMade, result);
  {
    const ScopedLock lock(modemLock_);
    modem_ = modem;
  }
  machine_.SetModem(modem.Get());
  machine_.Reset();
  timers_.AllOff();
  leadTimes_.SetDefaults();
  if (SUCCEEDED(result)) result = Prepare(device, *modem.Get());
  stopEvent_.Clear();
  if (FAILED(result)) {
    TRACE(StartFailed, result);
    return result;
  }
  workerThread_.Reset(CreateThread(nullptr, 0, &WorkerEntry, this, 0, nullptr));
  if (workerThread_.Get() == nullptr) {
    // The start counts as done all the same; it is meant.
    TRACE(WorkerNotStarted, GetLastError());
  } else {
    TRACE(Started);
  }
  return result;
}

HRESULT SensorCore::Prepare(IWDFDevice* device, ModemControl& modem) {
  HRESULT result = values_.Read(device);
  if (SUCCEEDED(result)) result = modem.Bind(device);
  if (SUCCEEDED(result)) result = output_.MakeSensorId();
  return result;
}

HRESULT SensorCore::Stop() {
  TRACE(StopBegins);
  stopEvent_.Set();
  if (workerThread_.Get() != nullptr) {
    WaitForSingleObject(workerThread_.Get(), INFINITE);
    workerThread_.Reset(nullptr);
  }
  ComPtr<ModemControl> modem;
  {
    const ScopedLock lock(modemLock_);
    modem = std::move(modem_);
  }
  if (modem) modem->CloseModemControl();
  output_.ForgetSensorId();
  output_.SetClassExtension(nullptr);
  TRACE(Stopped);
  return S_OK;
}

HRESULT SensorCore::PowerUp() {
  const ComPtr<ModemControl> modem = Modem();
  if (!modem) {
    TRACE(NoModemToPowerUp);
    return E_FAIL;
  }
  const HRESULT result = modem->Channel().StartReading(true);
  if (FAILED(result)) {
    TRACE(ReadingNotStarted, result);
  } else if (modem->Channel().EngineUseCount() >= 1) {
    Resume(*modem.Get());
  }
  return result;
}

void SensorCore::Resume(ModemControl& modem) {
  const std::uint32_t interval = machine_.CurrentInterval();
  const bool fixRequestActive = machine_.IsFixRequestActive();
  if (interval <= kLongestPeriodicInterval || fixRequestActive) {
    modem.Channel().ReleaseEngineUse();
  }
  if (interval <= kLongestPeriodicInterval) {
    machine_.ForgetInterval();
    PostSensorEvent(EV_REFRESH_REPORTING);
  } else if (fixRequestActive) {
    machine_.ClearFixRequest();
    PostSensorEvent(EV_DATA_REQUESTED);
  }
}

HRESULT SensorCore::PowerDown() {
  const ComPtr<ModemControl> modem = Modem();
  if (!modem) {
    TRACE(NoModemToPowerDown);
    return E_FAIL;
  }
  const HRESULT result = modem->Channel().StartReading(false);
  if (FAILED(result)) TRACE(ReadingNotStopped, result);
  return result;
}

ComPtr<ModemControl> SensorCore::Modem() {
  const ScopedLock lock(modemLock_);
  return modem_;
}

void SensorCore::OnFixComplete(std::string sentences) {
  try {
    fixes_.Publish(std::move(sentences));
  } catch (const std::bad_alloc&) {
    TRACE(FixNotPublished);
    return;
  }
  PostSensorEvent(EV_DATA_ARRIVED);
}

DWORD WINAPI SensorCore::WorkerEntry(void* core) {
  // The SUPL file is read with COM objects on this thread.
  const HRESULT initialized = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  if (FAILED(initialized)) TRACE(ComNotInitialized, initialized);
  static_cast<SensorCore*>(core)->WorkerMain();
  if (SUCCEEDED(initialized)) CoUninitialize();
  return 0;
}

void SensorCore::WorkerMain() {
  TRACE(WorkerRuns);
  const HANDLE handles[] = {stopEvent_.Get(), events_.WakeHandle()};
  std::uint64_t lastTicks = GetTickCount64();
  for (;;) {
    const DWORD woken = WaitForMultipleObjects(2, handles, FALSE, timers_.Shortest());
    const auto elapsed = static_cast<std::uint32_t>(GetTickCount64() - lastTicks);
    lastTicks += elapsed;
    timers_.Elapse(elapsed, [this](SensorTimer timer) {
      Guarded(TimerName(timer), [this, timer] { machine_.HandleTimer(timer); });
    });
    if (woken == WAIT_OBJECT_0) break;
    if (woken == WAIT_OBJECT_0 + 1) DrainQueue();
  }
  TRACE(WorkerEnds);
}

void SensorCore::DrainQueue() {
  for (;;) {
    const std::uint32_t event = events_.Pop();
    if (event == EV_INVALID) return;
    if (machine_.IsInitialized() || event == EV_INIT) {
      Guarded(EventName(event), [this, event] { machine_.HandleEvent(event); });
    } else {
      TRACE(DroppedUninitialized, EventName(event));
    }
    if (stopEvent_.IsSet()) return;
  }
}

// No exception leaves the worker: what ran out of memory is given up, and the next event comes.
template <class Work>
void SensorCore::Guarded(const char* what, Work&& work) {
  try {
    work();
  } catch (const std::bad_alloc&) {
    TRACE(WorkAborted, what);
  }
}

}  // namespace stelvane
