#include "tests/unit/bench_sensorapi/SampleReport.h"

#include <algorithm>

namespace bench {
namespace {

template <class Element>
Variant Blob(const std::vector<Element>& elements) {
  return Variant::Bytes(
      {reinterpret_cast<const BYTE*>(elements.data()), elements.size() * sizeof(Element)});
}

constexpr PROPERTYKEY Location(DWORD pid) {
  return {keys::kLocationSet, pid};
}

}  // namespace

KeyValues SampleReport() {
  const std::vector<std::uint32_t> satellites = {7, 31};
  return {
      {Location(2), Variant::R8(48.2082)},
      {Location(3), Variant::R8(-16.3738)},
      {Location(22), Variant::R8(5.5)},
      {keys::kTimestamp, Variant::FileTime(ToFileTime({2014, 7, 3, 12, 34, 56, 0}))},
      {Location(29), Variant::R8(9.5)},
      {Location(5), Variant::R8(171.25)},
      {Location(10), Variant::I4(1)},
      {Location(11), Variant::I4(2)},
      {Location(32), Variant::I4(3)},
      {Location(31), Variant::I4(4)},
      {Location(33), Variant::I4(5)},
      {Location(13), Variant::R8(0.9)},
      {Location(38), Variant::String("$GPGGA")},
      {Location(12), Variant::R8(1.7)},
      {Location(17), Variant::I4(2)},
      {Location(20), Blob(std::vector<double>{10.5, 200.25})},
      {Location(19), Blob(std::vector<double>{45, 12})},
      {Location(39), Blob(satellites)},
      {Location(18), Blob(satellites)},
      {Location(21), Blob(std::vector<double>{40.5, 22})},
      {Location(6), Variant::R8(3.25)},
      {Location(7), Variant::R8(87.5)},
      {Location(14), Variant::R8(1.4)},
      {keys::kEventId, Variant::Guid(kSensorEventDataUpdated)},
  };
}

KeyValues SampleReportWith(const PROPERTYKEY& key, const Variant& value) {
  KeyValues values = SampleReport();
  Replace(&values, key, value);
  return values;
}

KeyValues SampleReportWithout(const PROPERTYKEY& key) {
  KeyValues values = SampleReport();
  std::erase_if(values, [&](const KeyValue& each) { return SameKey(each.key, key); });
  return values;
}

void Replace(KeyValues* values, const PROPERTYKEY& key, const Variant& value) {
  for (KeyValue& each : *values) {
    if (SameKey(each.key, key)) {
      each.value = value;
      return;
    }
  }
  values->push_back({key, value});
}

}  // namespace bench
