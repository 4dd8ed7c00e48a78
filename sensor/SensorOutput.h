// The way out: state changes and data reports to the sensor class extension.
#pragma once

#include <windows.h>

#include "at/FixRecord.h"
#include "base/ComPtr.h"
#include "base/Sync.h"
#include "modem/ClientTable.h"
#include "platform/SensorClassExtension.h"

namespace stelvane {

/// The class extension is set and cleared by device callbacks; all else is the worker thread's.
class SensorOutput {
 public:
  SensorOutput() = default;
  SensorOutput(const SensorOutput&) = delete;
  SensorOutput& operator=(const SensorOutput&) = delete;
  ~SensorOutput() { ForgetSensorId(); }
  HRESULT Initialize() { return lock_.Initialize(); }

  /// Makes the text form of the sensor's GUID, under which all calls go out.
  HRESULT MakeSensorId();
  void ForgetSensorId();
  LPWSTR SensorId() const { return sensorId_; }

  void SetClassExtension(ISensorClassExtension* classExtension) EXCLUDES(lock_);

  /// Raises the state to the clients; a failure is ignored.
  void PostStateChange(SensorState state);

  /// Posts a data-updated event with all fields of the fix. Does nothing, with success, while
  /// none of `clients` is subscribed. The two times below change only when the event was posted.
  HRESULT SendDataReport(ClientTable& clients, const FixRecord& fix);

  /// UTC of the fix last reported; all zero until a report was posted.
  const SYSTEMTIME& LastReportedFixTime() const { return lastReportedFixTime_; }
  /// UTC at which that report was posted.
  const SYSTEMTIME& LastReportTime() const { return lastReportTime_; }

 private:
  ComPtr<ISensorClassExtension> ClassExtension() EXCLUDES(lock_);
  HRESULT PostFix(const FixRecord& fix);

  CriticalSection lock_;
  ComPtr<ISensorClassExtension> classExtension_ GUARDED_BY(lock_);
  LPWSTR sensorId_ = nullptr;
  SYSTEMTIME lastReportedFixTime_ = {};
  SYSTEMTIME lastReportTime_ = {};
};

/// The sensor's own GUID, also its persistent unique id.
inline constexpr GUID kSensorGuid = {
    0x33f98580, 0x15df, 0x4ab0, {0x8f, 0x2d, 0x58, 0x42, 0xd5, 0xa2, 0x09, 0xc3}};

}  // namespace stelvane
