// Tests of the sensor core through the DLL: a modem that the test speaks for, and a log of what the
// core posted, handled and dropped.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tests/driver/RigTest.h"
#include "tests/driver/SensorModem.h"

namespace bench {

inline constexpr const char* kSingleFix = "AT+XLCSLSR=1,1,,,,,,,,2,,";
/// The location request of that many seconds.
std::string Periodic(unsigned seconds);

/// The driver's own settings: 2 clears the assistance data, 6 initialises again.
inline constexpr GUID kDriverSettings = {
    0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}};
inline constexpr PROPERTYKEY kInitializeAgain = {kDriverSettings, 6};
inline constexpr PROPERTYKEY kClearAssistance = {
    {0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}}, 2};
inline constexpr PROPERTYKEY kLatitude = {keys::kLocationSet, 2};

/// What the core traces of its work.
enum class Doing { kPosted, kHandled, kDropped, kArmed, kTurnedOff, kTimer };

class SensorTest : public RigTest {
 protected:
  /// Loads the DLL with a SensorModem; UTC starts at 12:00:00 on 3 July 2014.
  void LoadSensor(RigOptions options = {});
  /// Starts the device and waits until the bring-up is over.
  void StartLoaded();
  void StartSensor() {
    LoadSensor();
    StartLoaded();
  }

  SensorModem& modem() { return *modem_; }
  /// Until nobody has anything left to do at this moment.
  void Settle() { clock_.SleepFor(1); }
  /// Runs up to that time since the start, in milliseconds.
  void RunUntil(Millis time) { clock_.SleepUntil(time); }
  void RunFor(Millis time) { clock_.SleepFor(time); }

  using Client = std::unique_ptr<ClientSession>;
  Client Connect();
  /// Connects, sets the interval and subscribes, one settled step after the other.
  Client Subscriber(ULONG milliseconds);
  /// A client without an interval.
  Client PlainSubscriber();

  /// A fix of this moment.
  GnssFix FixNow() const;
  void SayFix() { SayFix(FixNow()); }
  void SayFix(const GnssFix& fix) {
    modem_->SayReport(fix);
    Settle();
  }
  void SayError() {
    modem_->Say("+XLCSLSR: ERROR: no position");
    Settle();
  }
  HRESULT SwitchRadio(bool on);
  void PostInit(ClientSession& client);
  void PostClear(ClientSession& client);

  /// Commands and traces count from here on.
  void Mark();
  /// The location requests, stops and clearings written since the mark.
  std::vector<std::string> Requests() const;
  /// All commands since the mark.
  std::vector<SensorModem::Command> Commands() const;
  /// Times since the mark at which that command was written.
  std::vector<Millis> TimesOf(const std::string& command) const;
  /// Names since the mark; handled events stand as "EV_INIT in SENSOR_STATE_ERROR", armed timers
  /// as "TIMER_PRGN 6000".
  std::vector<std::string> Log(Doing what) const;
  std::vector<Millis> TimesOfTimer(const std::string& timer) const;
  std::size_t Posted(const std::string& event) const;

  /// The last state raised; nothing when none was.
  std::optional<SensorState> State();
  std::size_t ReportCount() { return ReportTimes().size(); }
  /// When the events that reached the class extension did so.
  std::vector<Millis> ReportTimes();
  /// Holds of the device out of idle.
  int EngineUses();

 private:
  struct Entry {
    Doing what;
    Millis time;
    std::string text;
  };
  void OnTrace(const TraceRecord& record);

  SensorModem* modem_ = nullptr;
  mutable std::mutex mutex_;
  std::vector<Entry> log_;
  std::size_t commandMark_ = 0;
};

/// Runs an action of the test's at a time of the clock while the test itself waits in the driver.
class Later {
 public:
  Later(Clock& clock, Millis time, std::function<void()> action)
      : thread_(clock, [&clock, time, action = std::move(action)] {
          clock.SleepUntil(time);
          action();
        }) {}

 private:
  Thread thread_;
};

}  // namespace bench
