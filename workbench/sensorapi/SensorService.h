// The Sensor API as the clients see it: what outlives the class extension of one device start.
#pragma once

#include <sensorsapi.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/framework/World.h"
#include "workbench/sensorapi/Report.h"

struct IWDFFile;

namespace bench {

class ClassExtension;

struct StateChange {
  Millis time = 0;
  SensorState state = SENSOR_STATE_NOT_AVAILABLE;
};

/// One accepted PostEvent value set.
struct PostedEvent {
  std::size_t subscribers = 0;
  Report report;
};

/// Who wants to know at once what the driver told its clients. Called on the driver's thread with
/// no lock held.
class SensorListener {
 public:
  virtual ~SensorListener() = default;
  virtual void OnReport(const PostedEvent& event) {}
  virtual void OnState(const StateChange& change) {}
};

/// What one session received. Shared by the session and the service, so that a delivery may run
/// while the session ends. All methods from any thread.
class Inbox {
 public:
  void Add(const Report& report);
  void Add(const StateChange& change);

  std::vector<Report> Reports() const;
  std::size_t ReportCount() const;
  std::vector<StateChange> States() const;
  std::optional<SensorState> LastState() const;

 private:
  mutable std::mutex mutex_;
  std::vector<Report> reports_;
  std::vector<StateChange> states_;
};

/// The names of the rules that a driver can break towards the class extension.
namespace rule {
inline constexpr std::string_view kNotInitialized = "class extension not initialized";
inline constexpr std::string_view kAfterUninitialize = "class extension used after Uninitialize";
inline constexpr std::string_view kWrongSensor = "wrong sensor id";
inline constexpr std::string_view kMalformedEvent = "malformed event";
inline constexpr std::string_view kBadReport = "data report departs from the supported fields";
inline constexpr std::string_view kBadState = "no sensor state";
inline constexpr std::string_view kNoResult = "success without a result";
inline constexpr std::string_view kNeverUninitialized = "class extension released initialized";
}  // namespace rule

/// Keeps the histories and the sessions, and knows the running class extension. It has to outlive
/// both. All methods from any thread.
class SensorService {
 public:
  struct Options {
    /// Whether Initialize asks the driver for its sensor objects, as the platform does.
    bool enumerateSensors = true;
    /// Initialize succeeds although the driver could not name its sensor; any sensor id is then
    /// accepted.
    bool tolerateFailedEnumeration = false;
    /// Every event has to hold all data fields in their prescribed types.
    bool checkReports = true;
  };

  explicit SensorService(const World& world) : SensorService(world, Options()) {}
  SensorService(const World& world, Options options);
  SensorService(const SensorService&) = delete;
  SensorService& operator=(const SensorService&) = delete;

  const World& world() const { return world_; }
  const Options& options() const { return options_; }

  /// All state changes and events since the start, whoever received them.
  std::vector<StateChange> StateHistory() const;
  std::vector<PostedEvent> EventHistory() const;
  /// Waits until the driver's last state is `state`; false when the clock reached `deadline` first.
  bool WaitForState(SensorState state, Millis deadline) const;
  /// Waits until there were `count` events in all.
  bool WaitForEvents(std::size_t count, Millis deadline) const;

  /// Null: nobody. To be set while nothing is delivered; has to outlive the deliveries.
  void SetListener(SensorListener* listener) { listener_ = listener; }

  /// The class extension that was initialized last; null once it was uninitialized. The pointer
  /// stays good as long as the ledger lives.
  ClassExtension* Extension() const;

  // For class extensions and sessions.
  void SetExtension(ClassExtension* extension);
  void DropExtension(const ClassExtension* extension);
  void Join(IWDFFile* file, std::shared_ptr<Inbox> inbox);
  void Leave(IWDFFile* file);
  /// Hands a report to those sessions whose file is among `files`.
  void Deliver(const Report& report, const std::vector<IWDFFile*>& files);
  void Deliver(SensorState state);

 private:
  struct Session {
    IWDFFile* file;
    std::shared_ptr<Inbox> inbox;
  };

  const World world_;
  const Options options_;
  std::atomic<SensorListener*> listener_{nullptr};
  mutable std::mutex mutex_;
  ClassExtension* extension_ = nullptr;
  std::vector<Session> sessions_;
  std::vector<StateChange> states_;
  std::vector<PostedEvent> events_;
};

}  // namespace bench
