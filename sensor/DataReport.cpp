#include "sensor/DataReport.h"

#include <cstring>

#include "base/PropVariant.h"
#include "base/Result.h"
#include "platform/SensorKeys.h"
#include "sensor/DataReport.trace.h"

namespace stelvane {

namespace {

// How a field of the record becomes a variant. `value` comes empty.
using Writer = HRESULT (*)(const FixRecord& fix, PROPVARIANT& value);

template <double FixRecord::*Field>
HRESULT WriteReal(const FixRecord& fix, PROPVARIANT& value) {
  value.vt = VT_R8;
  value.dblVal = fix.*Field;
  return S_OK;
}

template <double FixRecord::*Field>
HRESULT WriteRealOrEmpty(const FixRecord& fix, PROPVARIANT& value) {
  return fix.*Field == kAbsent ? S_OK : WriteReal<Field>(fix, value);
}

template <auto Field>
HRESULT WriteInteger(const FixRecord& fix, PROPVARIANT& value) {
  value.vt = VT_I4;
  value.lVal = static_cast<LONG>(fix.*Field);
  return S_OK;
}

HRESULT WriteTime(const FixRecord& fix, PROPVARIANT& value) {
  if (!SystemTimeToFileTime(&fix.fixTime, &value.filetime)) return LastErrorResult();
  value.vt = VT_FILETIME;
  return S_OK;
}

HRESULT WriteSentence(const FixRecord& fix, PROPVARIANT& value) {
  const std::string& text = fix.nmeaSentence;
  auto* const wide = static_cast<WCHAR*>(CoTaskMemAlloc((text.size() + 1) * sizeof(WCHAR)));
  if (wide == nullptr) return E_OUTOFMEMORY;
  for (std::size_t i = 0; i < text.size(); ++i) wide[i] = static_cast<unsigned char>(text[i]);
  wide[text.size()] = 0;
  value.vt = VT_LPWSTR;
  value.pwszVal = wide;
  return S_OK;
}

// A byte vector that holds the satellites' values as they lie in memory.
template <auto Bytes, auto Array>
HRESULT WriteSatellites(const FixRecord& fix, PROPVARIANT& value) {
  const auto& array = fix.*Array;
  void* bytes = nullptr;
  if (!array.empty()) {
    const std::size_t size = static_cast<std::size_t>(fix.satellitesInView) * sizeof(array[0]);
    bytes = CoTaskMemAlloc(size);
    if (bytes == nullptr) return E_OUTOFMEMORY;
    std::memcpy(bytes, array.data(), size);
  }
  value.vt = VT_VECTOR | VT_UI1;
  value.caub.cElems = fix.*Bytes;
  value.caub.pElems = static_cast<BYTE*>(bytes);
  return S_OK;
}

struct DataField {
  PROPERTYKEY key;
  Writer write;
};

constexpr PROPERTYKEY Location(DWORD pid) {
  return {keys::kLocationSet, pid};
}

// The supported data fields, in the order in which clients see them.
constexpr DataField kDataFields[] = {
    {Location(2), WriteReal<&FixRecord::latitude>},                        // degrees
    {Location(3), WriteReal<&FixRecord::longitude>},                       // degrees
    {Location(22), WriteReal<&FixRecord::errorRadius>},                    // metres
    {keys::kTimestamp, WriteTime},                                         // UTC
    {Location(29), WriteRealOrEmpty<&FixRecord::altitudeEllipsoidError>},  // metres
    {Location(5), WriteRealOrEmpty<&FixRecord::altitudeEllipsoid>},        // metres
    {Location(10), WriteInteger<&FixRecord::fixQuality>},
    {Location(11), WriteInteger<&FixRecord::fixType>},
    {Location(32), WriteInteger<&FixRecord::gpsOperationMode>},
    {Location(31), WriteInteger<&FixRecord::gpsSelectionMode>},
    {Location(33), WriteInteger<&FixRecord::gpsStatus>},
    {Location(13), WriteReal<&FixRecord::hdop>},
    {Location(38), WriteSentence},
    {Location(12), WriteReal<&FixRecord::pdop>},
    {Location(17), WriteInteger<&FixRecord::satellitesInView>},
    {Location(20), WriteSatellites<&FixRecord::azimuthBytes, &FixRecord::azimuth>},
    {Location(19), WriteSatellites<&FixRecord::elevationBytes, &FixRecord::elevation>},
    {Location(39), WriteSatellites<&FixRecord::satelliteIdBytes, &FixRecord::satelliteIds>},
    {Location(18), WriteSatellites<&FixRecord::prnBytes, &FixRecord::prns>},
    {Location(21), WriteSatellites<&FixRecord::snRatioBytes, &FixRecord::snRatios>},
    {Location(6), WriteRealOrEmpty<&FixRecord::speedKnots>},   // knots
    {Location(7), WriteRealOrEmpty<&FixRecord::trueHeading>},  // degrees
    {Location(14), WriteRealOrEmpty<&FixRecord::vdop>},
};

const DataField* FindField(const PROPERTYKEY& key) {
  for (const DataField& field : kDataFields) {
    if (field.key.pid == key.pid && IsEqualGUID(field.key.fmtid, key.fmtid)) return &field;
  }
  return nullptr;
}

}  // namespace

HRESULT MakeSupportedDataFields(ComPtr<IPortableDeviceKeyCollection>& fields) {
  RETURN_IF_FAILED(MakeContainer(clsid::kPortableDeviceKeyCollection, fields), FieldsNotMade);
  for (const DataField& field : kDataFields) {
    RETURN_IF_FAILED(fields->Add(field.key), FieldsNotMade);
  }
  return S_OK;
}

// The container comes by value: the builder holds a reference of its own and releases it.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
HRESULT BuildDataValues(IPortableDeviceKeyCollection* fields, ComPtr<IPortableDeviceValues> values,
                        const FixRecord& fix) {
  DWORD count = 0;
  RETURN_IF_FAILED(fields->GetCount(&count), FieldsNotCounted);
  for (DWORD index = 0; index < count; ++index) {
    PROPERTYKEY key = {};
    if (const HRESULT read = fields->GetAt(index, &key); FAILED(read)) {
      TRACE(FieldPassedOver, index, read);
      continue;
    }
    const DataField* const field = FindField(key);
    if (field == nullptr) continue;
    PropVariant value;
    HRESULT result = field->write(fix, value.Value());
    if (FAILED(result)) {
      TRACE(FieldNotBuilt, key.pid, result);
      return result;
    }
    result = values->SetValue(key, &value.Get());
    if (FAILED(result)) {
      TRACE(FieldNotSet, key.pid, result);
      return result;
    }
  }
  return S_OK;
}

}  // namespace stelvane
