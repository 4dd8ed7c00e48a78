// One client of the Sensor API.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "workbench/sensorapi/ClientPath.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

/// The settings that sessions name.
inline constexpr PROPERTYKEY kCurrentReportInterval = {keys::kSensorCommonSet, 13};
inline constexpr PROPERTYKEY kDesiredAccuracy = {keys::kSensorCommonSet, 19};

/// The driver's answer to writing one property.
struct SetResult {
  /// S_FALSE when the key was refused; a failure when the whole call failed.
  HRESULT call = S_OK;
  /// The error written for the key; nothing when it was accepted.
  std::optional<HRESULT> refusal;

  bool Accepted() const { return call == S_OK && !refusal; }
};

/// Every operation calls down on the calling thread and may be used from several threads; reads may
/// block on the driver and then belong on a `bench::Thread` of their own. The service has to
/// outlive the session.
class ClientSession {
 public:
  /// Straight into the class extension.
  explicit ClientSession(SensorService& service);
  ClientSession(SensorService& service, std::unique_ptr<ClientPath> path);
  /// Disconnects if that was not done.
  ~ClientSession();
  ClientSession(const ClientSession&) = delete;
  ClientSession& operator=(const ClientSession&) = delete;

  HRESULT Connect();
  HRESULT Subscribe();
  HRESULT Unsubscribe();
  /// Closes the file; the class extension tells the driver. What was received stays readable.
  void Disconnect();

  SetResult SetProperty(const PROPERTYKEY& key, const Variant& value);
  /// Milliseconds.
  SetResult SetReportInterval(ULONG milliseconds);
  /// 0 default, 1 high.
  SetResult SetDesiredAccuracy(ULONG accuracy);
  /// The value may be a VT_ERROR: the driver's refusal of the key, with S_FALSE.
  HRESULT GetProperty(const PROPERTYKEY& key, Variant* value);
  SensorAnswer GetProperties(std::vector<PROPERTYKEY> keys);
  /// Blocks as long as the driver waits for a fix.
  SensorAnswer ReadData(std::vector<PROPERTYKEY> keys);
  SensorAnswer SupportedProperties();
  SensorAnswer SupportedDataFields();
  SensorAnswer SupportedEvents();

  /// All reports and state changes since Connect, in order of arrival.
  std::vector<Report> Reports() const { return inbox_->Reports(); }
  std::vector<StateChange> States() const { return inbox_->States(); }
  /// Waits until there are `count` reports in all; false when the clock reached `deadline` first.
  bool WaitForReports(std::size_t count, Millis deadline) const;
  /// Waits until the last state received is `state`.
  bool WaitForState(SensorState state, Millis deadline) const;

  /// What the driver knows this client by.
  IWDFFile* File() const { return path_->File(); }

 private:
  SensorService& service_;
  const std::unique_ptr<ClientPath> path_;
  const std::shared_ptr<Inbox> inbox_ = std::make_shared<Inbox>();
};

}  // namespace bench
