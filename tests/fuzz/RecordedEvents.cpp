#include "tests/fuzz/RecordedEvents.h"

#include <algorithm>

#include "sensor/DeviceValues.h"
#include "sensor/EventQueue.h"

std::vector<std::uint32_t>& fuzz::PostedEvents() {
  static std::vector<std::uint32_t> events;
  return events;
}

namespace stelvane {

namespace {

void Put(std::string_view text, PropVariant& value) {
  auto* const copy = static_cast<WCHAR*>(CoTaskMemAlloc((text.size() + 1) * sizeof(WCHAR)));
  std::copy(text.begin(), text.end(), copy);
  copy[text.size()] = 0;
  value.Put()->vt = VT_LPWSTR;
  value.Value().pwszVal = copy;
}

}  // namespace

HRESULT DeviceValues::Read(IWDFDevice* device) {
  Put(fuzz::kManufacturer, manufacturer);
  Put(fuzz::kModel, model);
  Put(fuzz::kFriendlyName, friendlyName);
  Put(fuzz::kSerialNumber, serialNumber);
  return E_FAIL;
}

HRESULT EventQueue::Initialize() {
  return queueLock_.Initialize();
}
void EventQueue::Post(std::uint32_t event) noexcept {
  fuzz::PostedEvents().push_back(event);
}
std::uint32_t EventQueue::Pop() {
  return 0;
}

}  // namespace stelvane
