// The sensor core and what it gives the class extension, without a device's callbacks around it.
#include "sensor/SensorCore.h"

#include "sensor/DataReport.h"
#include "sensor/RadioControl.h"
#include "tests/native/rig/ListenedTest.h"
#include "tests/unit/platform/FrameworkRecorders.h"
#include "tests/unit/platform/PortableDeviceRecorders.h"

namespace bench {
namespace {

using stelvane::ComPtr;
using stelvane::SensorCore;

constexpr PROPERTYKEY kLeadTimes = {
    {0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}}, 3};
constexpr PROPERTYKEY kLatitude = {keys::kLocationSet, 2};
constexpr PROPERTYKEY kNobodysKey = {{0x1, 0x2, 0x3, {4}}, 2};

class SensorCoreTest : public ListenedTest {
 protected:
  void TearDown() override {
    if (core_) core_->Stop();
    core_.Reset();
    ListenedTest::TearDown();
  }
  /// A core that was not started, or has stopped, has no modem.
  void MakeCore() {
    Add();
    ASSERT_EQ(stelvane::CreateObject(core_), S_OK);
  }
  void StartCore() {
    MakeCore();
    ASSERT_EQ(core_->Start(device()), S_OK);
  }
  template <class Container>
  static ComPtr<Container> Make(const GUID& classId) {
    ComPtr<Container> container;
    EXPECT_EQ(stelvane::MakeContainer(classId, container), S_OK);
    return container;
  }
  static ComPtr<IPortableDeviceKeyCollection> Keys() {
    return Make<IPortableDeviceKeyCollection>(clsid::kPortableDeviceKeyCollection);
  }
  static ComPtr<IPortableDeviceValues> Values() {
    return Make<IPortableDeviceValues>(clsid::kPortableDeviceValues);
  }
  ISensorDriver& face() { return *core_->DriverFace(); }

  ComPtr<SensorCore> core_;
};

TEST_P(SensorCoreTest, WithoutAModemThereIsNoPowerNoRadioAndNoProperty) {
  MakeCore();
  EXPECT_EQ(core_->PowerUp(), E_FAIL);
  EXPECT_EQ(core_->PowerDown(), E_FAIL);
  EXPECT_EQ(ReadRadioState(*core_.Get(), nullptr, stelvane::RadioValue::kCurrent), E_FAIL);
  EXPECT_EQ(SetRadioState(*core_.Get(), nullptr, false), E_FAIL);
  ComPtr<IPortableDeviceValues> given;
  EXPECT_EQ(face().OnGetProperties(nullptr, nullptr, Keys().Get(), given.Put()), E_FAIL);
  EXPECT_EQ(face().OnSetProperties(nullptr, nullptr, Values().Get(), given.Put()), E_FAIL);
}

TEST_P(SensorCoreTest, ANullPlaceIsRefused) {
  MakeCore();
  EXPECT_EQ(face().OnGetSupportedProperties(nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(face().OnGetProperties(nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
}

TEST_P(SensorCoreTest, AnUnknownClientsSubscriptionAndAnyWmiRequestAreNoFailures) {
  StartCore();
  EXPECT_EQ(face().OnClientSubscribeToEvents(nullptr, nullptr), S_OK);
  EXPECT_EQ(core_->Modem()->Clients().ConnectedCount(), 0U);
  EXPECT_EQ(face().OnProcessWmi(nullptr, nullptr), S_OK);
}

TEST_P(SensorCoreTest, AFixOffTheEarthIsNotGiven) {
  StartCore();
  stelvane::FixRecord fix;
  fix.latitude = 90.5;
  core_->Fixes().StoreReport(fix);
  core_->Fixes().Publish({});
  ComPtr<IPortableDeviceValues> given;
  EXPECT_EQ(face().OnGetDataFields(nullptr, nullptr, Keys().Get(), given.Put()), S_OK);
  DWORD count = 1;
  EXPECT_EQ(given->GetCount(&count), S_OK);
  EXPECT_EQ(count, 0U);
}

TEST_P(SensorCoreTest, APropertyWhoseRefusalCannotBeNotedFailsTheCall) {
  StartCore();
  const ComPtr<IPortableDeviceValues> values = Values();
  ASSERT_EQ(values->SetUnsignedIntegerValue(kNobodysKey, 1), S_OK);
  rig().calls().FailCall("IPortableDeviceValues::SetErrorValue", 1, E_ABORT);
  ComPtr<IPortableDeviceValues> given;
  EXPECT_EQ(face().OnSetProperties(nullptr, nullptr, values.Get(), given.Put()), E_ABORT);
  EXPECT_FALSE(given);
}

/// One value: the lead times as a text that is null.
struct NullText : platform_test::PortableDeviceValuesRecorder<> {
  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override {
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetAt(DWORD, PROPERTYKEY* key, PROPVARIANT* value) override {
    *key = kLeadTimes;
    value->vt = VT_LPWSTR;
    value->pwszVal = nullptr;
    return S_OK;
  }
};

TEST_P(SensorCoreTest, LeadTimesThatAreANullTextAreRefused) {
  StartCore();
  NullText values;
  ComPtr<IPortableDeviceValues> given;
  EXPECT_EQ(face().OnSetProperties(nullptr, nullptr, &values, given.Put()), S_FALSE);
}

/// A request's memory that has no buffer.
struct Bufferless : platform_test::WDFMemoryRecorder<> {
  void* STDMETHODCALLTYPE GetDataBuffer(SIZE_T* size) override {
    *size = sizeof(ULONG);
    return nullptr;
  }
};
struct RequestWithoutBuffer : platform_test::WDFIoRequestRecorder<> {
  void STDMETHODCALLTYPE GetInputMemory(IWDFMemory** memory) override { *memory = &bufferless; }
  Bufferless bufferless;
};

TEST_P(SensorCoreTest, ARequestWithoutABufferSwitchesNoRadio) {
  StartCore();
  RequestWithoutBuffer request;
  EXPECT_EQ(SetRadioState(*core_.Get(), &request, true), S_OK);
  EXPECT_EQ(core_->Modem()->Radio().previousRadioState, 0U);
}

TEST_P(SensorCoreTest, NobodyIsToldOfAStateOrAFixBeforeThereIsAClassExtension) {
  Add();
  stelvane::SensorOutput output;
  ASSERT_EQ(output.Initialize(), S_OK);
  stelvane::ClientTable clients;
  ASSERT_EQ(clients.Initialize(), S_OK);
  clients.Connect(this);
  clients.SetSubscribed(this, true);
  output.PostStateChange(SENSOR_STATE_READY);
  EXPECT_EQ(output.SendDataReport(clients, {}), E_FAIL);
  EXPECT_EQ(rig().calls().Count("ISensorClassExtension::PostStateChange"), 0U);
}

TEST_P(SensorCoreTest, RepeatedSuplEventsBecomeOne) {
  Add();
  stelvane::EventQueue events;
  ASSERT_EQ(events.Initialize(), S_OK);
  for (int i = 0; i < 3; ++i) events.Post(stelvane::EV_INIT_SUPL);
  EXPECT_EQ(events.Pop(), stelvane::EV_INIT_SUPL);
  EXPECT_EQ(events.Pop(), stelvane::EV_INVALID);
}

/// Starts at one second that follow from a read, so long after the last report at 8000 ms.
std::size_t StartsFromARead(Rig& rig, Clock& clock, Millis afterTheReport) {
  const auto client = rig.NewClient();
  EXPECT_EQ(client->Connect(), S_OK);
  EXPECT_TRUE(client->SetReportInterval(8000).Accepted());
  EXPECT_EQ(client->Subscribe(), S_OK);
  EXPECT_TRUE(client->WaitForReports(2, clock.Now() + 120'000));
  clock.SleepFor(afterTheReport);
  client->ReadData({kLatitude});
  const std::size_t starts =
      rig.modem().Snapshot().commandLines.count("AT+XLCSLSR=1,1,,,,,1,,,2,,");
  client->Disconnect();
  return starts;
}

TEST_P(SensorCoreTest, AReadFarFromTheNextReportBringsTheFakeClientOfOneSecond) {
  AddAndStart();
  EXPECT_EQ(StartsFromARead(rig(), clock_, 2500), 1U);  // the last fix is no longer fresh
}

TEST_P(SensorCoreTest, AReadShortlyBeforeTheNextReportStartsNothing) {
  AddAndStart();
  EXPECT_EQ(StartsFromARead(rig(), clock_, 6500), 0U);
}

LISTENED(SensorCoreTest);

}  // namespace
}  // namespace bench
