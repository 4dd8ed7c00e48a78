#include "sensor/SensorOutput.h"

#include <objbase.h>

#include "platform/PortableDevices.h"
#include "platform/SensorKeys.h"
#include "sensor/DataReport.h"
#include "sensor/Events.h"
#include "sensor/SensorOutput.trace.h"

namespace stelvane {

HRESULT SensorOutput::MakeSensorId() {
  RETURN_IF_FAILED(StringFromCLSID(kSensorGuid, &sensorId_), SensorIdNotMade);
  return S_OK;
}

void SensorOutput::ForgetSensorId() {
  CoTaskMemFree(sensorId_);
  sensorId_ = nullptr;
}

void SensorOutput::SetClassExtension(ISensorClassExtension* classExtension) {
  ComPtr<ISensorClassExtension> other(classExtension);
  const ScopedLock lock(lock_);
  std::swap(classExtension_, other);
}

ComPtr<ISensorClassExtension> SensorOutput::ClassExtension() {
  const ScopedLock lock(lock_);
  return classExtension_;
}

void SensorOutput::PostStateChange(SensorState state) {
  const ComPtr<ISensorClassExtension> extension = ClassExtension();
  const HRESULT result = extension ? extension->PostStateChange(sensorId_, state) : S_FALSE;
  if (FAILED(result)) TRACE(StateChangeNotPosted, result);
  TRACE(StateChangePosted, SensorStateName(static_cast<std::uint32_t>(state)), result);
}

HRESULT SensorOutput::SendDataReport(ClientTable& clients, const FixRecord& fix) {
  if (clients.SubscribedCount() == 0) return S_OK;
  const HRESULT result = PostFix(fix);
  if (FAILED(result)) return result;
  lastReportedFixTime_ = fix.fixTime;
  GetSystemTime(&lastReportTime_);
  return result;
}

HRESULT SensorOutput::PostFix(const FixRecord& fix) {
  TRACE(ReportBegins);
  const ComPtr<ISensorClassExtension> extension = ClassExtension();
  if (!extension) {
    TRACE(NoClassExtension);
    return E_FAIL;
  }
  ComPtr<IPortableDeviceKeyCollection> keyCollection;
  RETURN_IF_FAILED(MakeSupportedDataFields(keyCollection), ReportNotBuilt);
  ComPtr<IPortableDeviceValues> parameters;
  RETURN_IF_FAILED(MakeContainer(clsid::kPortableDeviceValues, parameters), ReportNotBuilt);
  RETURN_IF_FAILED(BuildDataValues(keyCollection.Get(), parameters, fix), ReportNotBuilt);
  RETURN_IF_FAILED(parameters->SetGuidValue(keys::kEventId, kSensorEventDataUpdated),
                   ReportNotBuilt);
  ComPtr<IPortableDeviceValuesCollection> events;
  RETURN_IF_FAILED(MakeContainer(clsid::kPortableDeviceValuesCollection, events), ReportNotBuilt);
  RETURN_IF_FAILED(events->Add(parameters.Get()), ReportNotBuilt);
  const HRESULT posted = extension->PostEvent(sensorId_, events.Get());
  RETURN_IF_FAILED(posted, ReportNotPosted);
  TRACE(ReportPosted);
  return posted;
}

}  // namespace stelvane
