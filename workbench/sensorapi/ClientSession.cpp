#include "workbench/sensorapi/ClientSession.h"

#include <utility>

namespace bench {

ClientSession::ClientSession(SensorService& service)
    : ClientSession(service, std::make_unique<DirectPath>(service)) {}

ClientSession::ClientSession(SensorService& service, std::unique_ptr<ClientPath> path)
    : service_(service), path_(std::move(path)) {}

ClientSession::~ClientSession() {
  Disconnect();
}

HRESULT ClientSession::Connect() {
  // Joined first: state changes may arrive before the driver's callback returns.
  service_.Leave(File());
  service_.Join(File(), inbox_);
  const HRESULT result = path_->Send({.operation = SensorOperation::kConnect}).result;
  if (FAILED(result)) service_.Leave(File());
  return result;
}

HRESULT ClientSession::Subscribe() {
  return path_->Send({.operation = SensorOperation::kSubscribe}).result;
}

HRESULT ClientSession::Unsubscribe() {
  return path_->Send({.operation = SensorOperation::kUnsubscribe}).result;
}

void ClientSession::Disconnect() {
  path_->Close();
  service_.Leave(File());
}

SetResult ClientSession::SetProperty(const PROPERTYKEY& key, const Variant& value) {
  const SensorAnswer answer =
      path_->Send({.operation = SensorOperation::kSetProperties, .values = {{key, value}}});
  SetResult result{.call = answer.result, .refusal = {}};
  const Variant* const refusal = answer.values ? FindValue(*answer.values, key) : nullptr;
  if (refusal != nullptr && refusal->Type() == VT_ERROR) result.refusal = refusal->Get().scode;
  return result;
}

SetResult ClientSession::SetReportInterval(ULONG milliseconds) {
  return SetProperty(kCurrentReportInterval, Variant::Ui4(milliseconds));
}

SetResult ClientSession::SetDesiredAccuracy(ULONG accuracy) {
  return SetProperty(kDesiredAccuracy, Variant::Ui4(accuracy));
}

HRESULT ClientSession::GetProperty(const PROPERTYKEY& key, Variant* value) {
  const SensorAnswer answer = GetProperties({key});
  if (FAILED(answer.result)) return answer.result;
  const Variant* const found = answer.values ? FindValue(*answer.values, key) : nullptr;
  if (found == nullptr) return kNotFound;
  *value = *found;
  return answer.result;
}

SensorAnswer ClientSession::GetProperties(std::vector<PROPERTYKEY> keys) {
  return path_->Send({.operation = SensorOperation::kGetProperties, .keys = std::move(keys)});
}

SensorAnswer ClientSession::ReadData(std::vector<PROPERTYKEY> keys) {
  return path_->Send({.operation = SensorOperation::kGetDataFields, .keys = std::move(keys)});
}

SensorAnswer ClientSession::SupportedProperties() {
  return path_->Send({.operation = SensorOperation::kGetSupportedProperties});
}

SensorAnswer ClientSession::SupportedDataFields() {
  return path_->Send({.operation = SensorOperation::kGetSupportedDataFields});
}

SensorAnswer ClientSession::SupportedEvents() {
  return path_->Send({.operation = SensorOperation::kGetSupportedEvents});
}

bool ClientSession::WaitForReports(std::size_t count, Millis deadline) const {
  return service_.world().clock.WaitUntil(deadline, [&] { return inbox_->ReportCount() >= count; });
}

bool ClientSession::WaitForState(SensorState state, Millis deadline) const {
  return service_.world().clock.WaitUntil(deadline, [&] { return inbox_->LastState() == state; });
}

}  // namespace bench
