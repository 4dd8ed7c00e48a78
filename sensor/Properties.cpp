#include "sensor/Properties.h"

#include <string>

#include "base/PropVariant.h"
#include "platform/SensorKeys.h"
#include "sensor/DataReport.h"
#include "sensor/Properties.trace.h"
#include "sensor/SensorCore.h"

namespace stelvane {

namespace {

/// This system's own settings.
constexpr GUID kDriverSet = {
    0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}};
/// Clearing of assistance data.
constexpr GUID kAssistanceSet = {
    0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}};

constexpr GUID kFormatUnspecified = {
    0x30000000, 0xae6c, 0x4804, {0x98, 0xba, 0xc5, 0x7b, 0x46, 0x96, 0x5f, 0xe7}};
constexpr GUID kContentFunctionalObject = {
    0x99ed0160, 0x17ff, 0x4c44, {0x9d, 0x98, 0x1d, 0x7a, 0x6f, 0x94, 0x19, 0x21}};
constexpr GUID kCategoryLocation = {
    0xbfa794e4, 0xf964, 0x4fdb, {0x90, 0xf6, 0x51, 0x05, 0x6b, 0xfe, 0x4b, 0x44}};
constexpr GUID kTypeLocationGps = {
    0xed4ca589, 0x327a, 0x4ff9, {0xa5, 0x60, 0x91, 0xda, 0x4b, 0x48, 0x27, 0x5e}};

constexpr ULONG kMinimumReportInterval = 1000;  // ms
constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070490L);

constexpr PROPERTYKEY Object(DWORD pid) {
  return {keys::kObjectSet, pid};
}
constexpr PROPERTYKEY Functional(DWORD pid) {
  return {keys::kFunctionalObjectSet, pid};
}
constexpr PROPERTYKEY Common(DWORD pid) {
  return {keys::kSensorCommonSet, pid};
}
constexpr PROPERTYKEY Driver(DWORD pid) {
  return {kDriverSet, pid};
}
constexpr PROPERTYKEY Assistance(DWORD pid) {
  return {kAssistanceSet, pid};
}

bool SameKey(const PROPERTYKEY& a, const PROPERTYKEY& b) {
  return a.pid == b.pid && IsEqualGUID(a.fmtid, b.fmtid);
}

constexpr PROPERTYKEY kAdvertised[] = {
    Object(2),     Object(5),  Object(3),  Object(4),  Object(6),  Object(7),  Object(26),
    Functional(2), Common(2),  Common(3),  Common(5),  Common(6),  Common(7),  Common(8),
    Common(9),     Common(12), Common(13), Common(19), Common(23), Common(24), Assistance(2),
};

// Reading: where a value comes from and where it goes.
struct Read {
  SensorCore& core;
  ModemControl& modem;
  IPortableDeviceValues* values;
  const PROPERTYKEY& key;

  HRESULT Text(const WCHAR* text) const {
    return values->SetStringValue(key, text != nullptr ? text : L"");
  }
  HRESULT Number(ULONG value) const { return values->SetUnsignedIntegerValue(key, value); }
  HRESULT Guid(const GUID& value) const { return values->SetGuidValue(key, value); }
  HRESULT No() const { return values->SetBoolValue(key, FALSE); }
  HRESULT Variant(const PropVariant& value) const { return values->SetValue(key, &value.Get()); }
};

HRESULT ReadInterval(const Read& read) {
  const std::uint32_t interval = read.modem.Clients().RequiredInterval();
  return read.Number(interval == kNoInterval ? 0 : interval);
}

HRESULT ReadLeadTimes(const Read& read) {
  const std::string text = read.core.Leads().Text();
  const std::basic_string<WCHAR> wide(text.begin(), text.end());
  return read.Text(wide.c_str());
}

struct ReadableProperty {
  PROPERTYKEY key;
  HRESULT (*read)(const Read&);
};

constexpr ReadableProperty kReadable[] = {
    {Object(2), [](const Read& r) { return r.Text(r.core.SensorId()); }},
    {Object(3), [](const Read& r) { return r.Text(L"DEVICE"); }},
    {Object(4), [](const Read& r) { return r.Text(L"Tavrel GNSS"); }},
    {Object(5), [](const Read& r) { return r.Text(r.core.SensorId()); }},
    {Object(6), [](const Read& r) { return r.Guid(kFormatUnspecified); }},
    {Object(7), [](const Read& r) { return r.Guid(kContentFunctionalObject); }},
    {Object(26), [](const Read& r) { return r.No(); }},  // can be deleted
    {Functional(2), [](const Read& r) { return r.Guid(kCategoryLocation); }},
    {Common(2), [](const Read& r) { return r.Guid(kTypeLocationGps); }},
    {Common(3), [](const Read& r) { return r.Number(r.core.Machine().State()); }},
    {Common(5), [](const Read& r) { return r.Guid(kSensorGuid); }},
    {Common(6), [](const Read& r) { return r.Variant(r.core.Values().manufacturer); }},
    {Common(7), [](const Read& r) { return r.Variant(r.core.Values().model); }},
    {Common(8), [](const Read& r) { return r.Variant(r.core.Values().serialNumber); }},
    {Common(9), [](const Read& r) { return r.Variant(r.core.Values().friendlyName); }},
    {Common(12), [](const Read& r) { return r.Number(kMinimumReportInterval); }},
    {Common(13), ReadInterval},  // current report interval, ms
    {Common(19),                 // desired accuracy
     [](const Read& r) {
       return r.Number(static_cast<ULONG>(r.modem.Session().GetHighAccuracy()));
     }},
    {Common(23),  // radio state
     [](const Read& r) { return r.Number(static_cast<ULONG>(r.modem.Radio().radioOff)); }},
    {Common(24), [](const Read& r) { return r.Number(r.modem.Radio().previousRadioState); }},
    {Driver(2), [](const Read& r) { return r.No(); }},  // clear assistance data
    {Driver(3), ReadLeadTimes},
    {Driver(4), [](const Read& r) { return r.Number(r.modem.Session().GetLsrField1()); }},
    {Driver(5), [](const Read& r) { return r.Number(r.modem.Session().GetLsrField2()); }},
    {Driver(6), [](const Read& r) { return r.No(); }},           // initialise again
    {Assistance(2), [](const Read& r) { return r.Number(0); }},  // clear assistance data
};

// Writing: whose value, and where refusals go.
struct Write {
  SensorCore& core;
  ModemControl& modem;
  ClientId client;
  const PROPERTYKEY& key;
  const PROPVARIANT& value;
  IPortableDeviceValues* results;
  bool& refused;

  // Gives the key an error value; the result is that of writing it.
  HRESULT Refuse(HRESULT error) const {
    TRACE(PropertyRefused, key.pid, error);
    refused = true;
    return results->SetErrorValue(key, error);
  }
};

HRESULT WriteInterval(const Write& write) {
  if (write.value.vt == VT_EMPTY) return write.Refuse(E_ACCESSDENIED);
  if (write.value.vt != VT_UI4) return write.Refuse(E_INVALIDARG);
  const ULONG milliseconds = write.value.ulVal;
  if (milliseconds != 0 && milliseconds < kMinimumReportInterval) {
    return write.Refuse(E_INVALIDARG);
  }
  const HRESULT result = write.modem.Clients().SetReportInterval(write.client, milliseconds);
  if (SUCCEEDED(result)) write.core.PostSensorEvent(EV_REFRESH_REPORTING);
  return result;
}

HRESULT WriteAccuracy(const Write& write) {
  if (write.value.vt != VT_UI4) return write.Refuse(E_INVALIDARG);
  return write.modem.Clients().SetDesiredAccuracy(write.client, write.value.ulVal);
}

template <std::uint32_t Event>
HRESULT PostIfTrue(const Write& write) {
  if (write.value.vt != VT_BOOL) return write.Refuse(E_INVALIDARG);
  if (write.value.boolVal != VARIANT_FALSE) write.core.PostSensorEvent(Event);
  return S_OK;
}

HRESULT WriteAssistance(const Write& write) {
  if (write.value.vt != VT_UI4) return write.Refuse(E_INVALIDARG);
  if (write.value.ulVal == 1) write.core.PostSensorEvent(EV_CLEAR_ASSISTANCE_DATA);
  return S_OK;
}

HRESULT WriteLeadTimes(const Write& write) {
  if (write.value.vt != VT_LPWSTR || write.value.pwszVal == nullptr) {
    return write.Refuse(E_INVALIDARG);
  }
  return write.core.Leads().Store(write.value.pwszVal,
                                  [&write] { return write.Refuse(E_INVALIDARG); });
}

template <auto Setter>
HRESULT WriteRequestField(const Write& write) {
  if (write.value.vt != VT_UI4) return write.Refuse(E_INVALIDARG);
  (write.modem.Session().*Setter)(write.value.ulVal);
  return S_OK;
}

struct WritableProperty {
  PROPERTYKEY key;
  HRESULT (*write)(const Write&);
};

constexpr WritableProperty kWritable[] = {
    {Common(13), WriteInterval},
    {Common(19), WriteAccuracy},
    {Driver(2), PostIfTrue<EV_CLEAR_ASSISTANCE_DATA>},
    {Assistance(2), WriteAssistance},
    {Driver(3), WriteLeadTimes},
    {Driver(4), WriteRequestField<&LocationSession::SetLsrField1>},
    {Driver(5), WriteRequestField<&LocationSession::SetLsrField2>},
    {Driver(6), PostIfTrue<EV_INIT>},
};

template <class Row, std::size_t Count>
const Row* Find(const Row (&rows)[Count], const PROPERTYKEY& key) {
  for (const Row& row : rows) {
    if (SameKey(row.key, key)) return &row;
  }
  return nullptr;
}

}  // namespace

HRESULT MakeSupportedProperties(ComPtr<IPortableDeviceKeyCollection>& properties) {
  RETURN_IF_FAILED(MakeContainer(clsid::kPortableDeviceKeyCollection, properties),
                   PropertiesNotMade);
  for (const PROPERTYKEY& key : kAdvertised) {
    RETURN_IF_FAILED(properties->Add(key), PropertiesNotMade);
  }
  return S_OK;
}

HRESULT ReadProperties(SensorCore& core, IPortableDeviceKeyCollection* properties,
                       IPortableDeviceValues* values) {
  const ComPtr<ModemControl> modem = core.Modem();
  if (!modem) {
    TRACE(NoModemToRead);
    return E_FAIL;
  }
  DWORD count = 0;
  RETURN_IF_FAILED(properties->GetCount(&count), KeysNotCounted);
  bool anyUnknown = false;
  for (DWORD index = 0; index < count; ++index) {
    PROPERTYKEY key = {};
    if (const HRESULT got = properties->GetAt(index, &key); FAILED(got)) {
      TRACE(KeyPassedOver, index, got);
      continue;
    }
    if (SameKey(key, PROPERTYKEY{})) continue;
    const ReadableProperty* const property = Find(kReadable, key);
    const HRESULT result = property != nullptr ? property->read({core, *modem.Get(), values, key})
                                               : values->SetErrorValue(key, kNotFound);
    if (FAILED(result)) {
      TRACE(PropertyNotRead, key.pid, result);
      return result;
    }
    if (property == nullptr) anyUnknown = true;
  }
  return anyUnknown ? S_FALSE : S_OK;
}

HRESULT WriteProperties(SensorCore& core, ClientId client, IPortableDeviceValues* values,
                        IPortableDeviceValues* results) {
  const ComPtr<ModemControl> modem = core.Modem();
  if (!modem) {
    TRACE(NoModemToWrite);
    return E_FAIL;
  }
  DWORD count = 0;
  RETURN_IF_FAILED(values->GetCount(&count), ValuesNotCounted);
  bool refused = false;
  for (DWORD index = 0; index < count; ++index) {
    PROPERTYKEY key = {};
    PropVariant value;
    if (const HRESULT got = values->GetAt(index, &key, value.Put()); FAILED(got)) {
      TRACE(ValuePassedOver, index, got);
      continue;
    }
    const Write write{core, *modem.Get(), client, key, value.Get(), results, refused};
    const WritableProperty* const property = Find(kWritable, key);
    const HRESULT result = property != nullptr ? property->write(write) : write.Refuse(kNotFound);
    if (FAILED(result)) {
      TRACE(PropertyNotWritten, key.pid, result);
      return result;
    }
  }
  return refused ? S_FALSE : S_OK;
}

}  // namespace stelvane
