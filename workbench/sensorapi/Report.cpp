#include "workbench/sensorapi/Report.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace bench {
namespace {

constexpr PROPERTYKEY Location(DWORD pid) {
  return {keys::kLocationSet, pid};
}

constexpr bool kMayBeAbsent = true;

constexpr std::array<ReportField, kReportFieldCount> kFields = {{
    {Location(2), "latitude", &Report::latitude},
    {Location(3), "longitude", &Report::longitude},
    {Location(22), "error radius", &Report::errorRadius},
    {keys::kTimestamp, "time stamp", &Report::timestamp},
    {Location(29), "altitude error", &Report::altitudeEllipsoidError, kMayBeAbsent},
    {Location(5), "altitude", &Report::altitudeEllipsoid, kMayBeAbsent},
    {Location(10), "fix quality", &Report::fixQuality},
    {Location(11), "fix type", &Report::fixType},
    {Location(32), "operation mode", &Report::operationMode},
    {Location(31), "selection mode", &Report::selectionMode},
    {Location(33), "status", &Report::gpsStatus},
    {Location(13), "horizontal dilution", &Report::hdop},
    {Location(38), "NMEA sentence", &Report::nmeaSentence},
    {Location(12), "position dilution", &Report::pdop},
    {Location(17), "satellites in view", &Report::satellitesInView},
    {Location(20), "azimuths", &Report::azimuth},
    {Location(19), "elevations", &Report::elevation},
    {Location(39), "satellite ids", &Report::satelliteIds},
    {Location(18), "satellite PRNs", &Report::prns},
    {Location(21), "signal-to-noise ratios", &Report::snRatio},
    {Location(6), "speed", &Report::speedKnots, kMayBeAbsent},
    {Location(7), "heading", &Report::trueHeading, kMayBeAbsent},
    {Location(14), "vertical dilution", &Report::vdop, kMayBeAbsent},
}};

// The variant type of each kind of place, and its value.
constexpr VARTYPE TypeFor(std::optional<double> Report::*) {
  return VT_R8;
}
constexpr VARTYPE TypeFor(std::optional<LONG> Report::*) {
  return VT_I4;
}
constexpr VARTYPE TypeFor(std::optional<FILETIME> Report::*) {
  return VT_FILETIME;
}
constexpr VARTYPE TypeFor(std::optional<std::string> Report::*) {
  return VT_LPWSTR;
}
template <class Element>
constexpr VARTYPE TypeFor(std::vector<Element> Report::*) {
  return kBytes;
}

void Read(const PROPVARIANT& value, std::optional<double>* target) {
  *target = value.dblVal;
}
void Read(const PROPVARIANT& value, std::optional<LONG>* target) {
  *target = value.lVal;
}
void Read(const PROPVARIANT& value, std::optional<FILETIME>* target) {
  *target = value.filetime;
}
void Read(const PROPVARIANT& value, std::optional<std::string>* target) {
  *target = Utf8(value.pwszVal);
}
template <class Element>
void Read(const PROPVARIANT& value, std::vector<Element>* target) {
  const std::span<const BYTE> bytes = BytesOf(value);
  target->resize(bytes.size() / sizeof(Element));
  if (!target->empty()) std::memcpy(target->data(), bytes.data(), target->size() * sizeof(Element));
}

std::string TypeText(VARTYPE type) {
  return "type " + std::to_string(type);
}

/// Whether a blob has a whole number of elements, one for each satellite.
void CheckBlob(const Report& report, const ReportField& field, const Variant& value,
               std::vector<std::string>* faults) {
  const std::size_t size = BytesOf(value.Get()).size();
  const auto check = [&](auto place) {
    using Member = std::remove_cvref_t<decltype(report.*place)>;
    if constexpr (requires {
                    typename Member::allocator_type;
                    typename Member::value_type;
                  } &&
                  !std::is_same_v<Member, std::string>) {
      const std::size_t element = sizeof(typename Member::value_type);
      const bool counted = report.satellitesInView.has_value();
      if (size % element != 0 ||
          (counted && size / element != static_cast<std::size_t>(*report.satellitesInView))) {
        faults->push_back(std::string(field.name) + ": " + std::to_string(size) + " bytes");
      }
    }
  };
  std::visit(check, field.place);
}

}  // namespace

VARTYPE ReportField::Type() const {
  return std::visit([](auto member) { return TypeFor(member); }, place);
}

std::span<const ReportField, kReportFieldCount> ReportFields() {
  return kFields;
}

std::vector<PROPERTYKEY> ReportKeys() {
  std::vector<PROPERTYKEY> keys;
  for (const ReportField& field : kFields) keys.push_back(field.key);
  return keys;
}

std::optional<VARTYPE> Report::TypeOf(const PROPERTYKEY& key) const {
  for (std::size_t i = 0; i < kFields.size(); ++i) {
    if (SameKey(kFields[i].key, key) && types[i] != VT_ILLEGAL) return types[i];
  }
  return std::nullopt;
}

std::vector<std::string> Report::MissingFields() const {
  std::vector<std::string> missing;
  for (std::size_t i = 0; i < kFields.size(); ++i) {
    if (types[i] == VT_ILLEGAL) missing.emplace_back(kFields[i].name);
  }
  return missing;
}

Report DecodeReport(Millis time, const KeyValues& values) {
  Report report;
  report.time = time;
  report.types.fill(VT_ILLEGAL);
  for (std::size_t i = 0; i < kFields.size(); ++i) {
    const ReportField& field = kFields[i];
    const Variant* const value = FindValue(values, field.key);
    if (value == nullptr) continue;
    report.types[i] = value->Type();
    if (value->Type() == field.Type()) {
      std::visit([&](auto place) { Read(value->Get(), &(report.*place)); }, field.place);
    } else if (value->Type() != VT_EMPTY || !field.mayBeAbsent) {
      report.faults.push_back(std::string(field.name) + ": " + TypeText(value->Type()));
    }
  }
  for (const auto& [key, value] : values) {
    const auto field = std::ranges::find_if(
        kFields, [&wanted = key](const auto& each) { return SameKey(each.key, wanted); });
    if (field != kFields.end()) {
      if (value.Type() == kBytes) CheckBlob(report, *field, value, &report.faults);
    } else if (SameKey(key, keys::kEventId) && value.Type() == VT_CLSID) {
      report.eventId = *value.Get().puuid;
    } else {
      report.faults.push_back(KeyText(key) + ": unknown, " + TypeText(value.Type()));
    }
  }
  return report;
}

}  // namespace bench
