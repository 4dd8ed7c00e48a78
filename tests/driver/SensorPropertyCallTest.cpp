// Property calls as the driver's face gets them: several keys at once, missing arguments,
// containers that fail.

#include <atomic>
#include <utility>
#include <vector>

#include "tests/driver/SensorFaceTest.h"
#include "workbench/sensorapi/PortableDeviceValues.h"

namespace bench {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr PROPERTYKEY kField1 = {kDriverSettings, 4};
constexpr PROPERTYKEY kUnknown = {kDriverSettings, 99};

class SensorPropertyCallTest : public SensorFaceTest {
 protected:
  void SetUp() override { StartWithFace(); }
  stelvane::ComPtr<IPortableDeviceValues> Values(KeyValues content) {
    return stelvane::ComPtr<IPortableDeviceValues>(
        MakeApiObject<PortableDeviceValues>(rig().sensors().world(), std::move(content)).Get());
  }
  KeyValues ContentOf(IPortableDeviceValues& values) {
    KeyValues content;
    EXPECT_EQ(ReadValues(rig().sensors().world(), values, &content), S_OK);
    return content;
  }
  Variant ReadField1(ClientSession& client) {
    Variant value;
    EXPECT_EQ(client.GetProperty(kField1, &value), S_OK);
    return value;
  }
};

TEST_F(SensorPropertyCallTest, OfSeveralValuesThoseRefusedGetTheirErrorsAndTheOthersAreSet) {
  const auto client = Connect();
  const auto values = Values({{kCurrentReportInterval, Variant::Ui4(999)},
                              {kField1, Variant::Ui4(9)},
                              {kUnknown, Variant::Ui4(1)}});
  stelvane::ComPtr<IPortableDeviceValues> results;
  EXPECT_EQ(Face()->OnSetProperties(client->File(), sensorId_, values.Get(), results.Put()),
            S_FALSE);
  ASSERT_TRUE(results);
  const KeyValues errors = ContentOf(*results.Get());
  ASSERT_THAT(errors, SizeIs(2));
  EXPECT_TRUE(SameKey(errors[0].key, kCurrentReportInterval));
  EXPECT_EQ(errors[0].value, Variant::Error(E_INVALIDARG));
  EXPECT_TRUE(SameKey(errors[1].key, kUnknown));
  EXPECT_EQ(errors[1].value, Variant::Error(HRESULT_FROM_WIN32(ERROR_NOT_FOUND)));
  EXPECT_EQ(ReadField1(*client), Variant::Ui4(9));
}

TEST_F(SensorPropertyCallTest, AnUnknownClientKeepsTheValuesBehindItsIntervalFromBeingSet) {
  const auto client = Connect();
  const auto values =
      Values({{kCurrentReportInterval, Variant::Ui4(5000)}, {kField1, Variant::Ui4(9)}});
  stelvane::ComPtr<IPortableDeviceValues> results;
  Mark();
  EXPECT_EQ(Face()->OnSetProperties(nullptr, sensorId_, values.Get(), results.Put()), E_UNEXPECTED);
  Settle();
  EXPECT_THAT(Log(Doing::kPosted), IsEmpty());
  EXPECT_EQ(ReadField1(*client), Variant::Ui4(1));
}

TEST_F(SensorPropertyCallTest, AValueThatCannotBeWrittenEndsTheReadAndIsTracedAsAnError) {
  constexpr UCHAR kErrors = 2;
  const auto client = Connect();
  std::atomic<int> traced = 0;
  TraceSession& tracing = rig().redirector().Tracing();
  tracing.SetListener([&traced](const TraceRecord&) { ++traced; });
  tracing.Enable(kErrors, ~ULONG{0});
  rig().calls().FailCall("IPortableDeviceValues::SetUnsignedIntegerValue", 1, E_ABORT);
  EXPECT_EQ(client->GetProperties({kField1}).result, E_ABORT);
  EXPECT_EQ(traced, 1);
  tracing.SetListener({});
}

TEST_F(SensorPropertyCallTest, TheOneSensorObjectHoldsTheAdvertisedPropertiesInTheirOrder) {
  stelvane::ComPtr<IPortableDeviceValuesCollection> objects;
  ASSERT_EQ(Face()->OnGetSupportedSensorObjects(objects.Put()), S_OK);
  DWORD count = 0;
  EXPECT_EQ(objects->GetCount(&count), S_OK);
  ASSERT_EQ(count, 1U);
  stelvane::ComPtr<IPortableDeviceValues> object;
  ASSERT_EQ(objects->GetAt(0, object.Put()), S_OK);
  const KeyValues values = ContentOf(*object.Get());
  const auto client = Connect();
  const std::vector<PROPERTYKEY> advertised = client->SupportedProperties().keys;
  ASSERT_THAT(values, SizeIs(advertised.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_TRUE(SameKey(values[i].key, advertised[i])) << KeyText(values[i].key);
    EXPECT_NE(values[i].value.Type(), VT_ERROR) << KeyText(values[i].key);
  }
}

TEST_F(SensorPropertyCallTest, AnUnknownClientEndsTheCallWithoutResults) {
  for (const PROPERTYKEY& key : {kCurrentReportInterval, kDesiredAccuracy}) {
    const auto values = Values({{key, Variant::Ui4(5000)}});
    stelvane::ComPtr<IPortableDeviceValues> results;
    EXPECT_EQ(Face()->OnSetProperties(nullptr, sensorId_, values.Get(), results.Put()),
              E_UNEXPECTED);
    EXPECT_FALSE(results);
  }
}

TEST_F(SensorPropertyCallTest, MissingArgumentsAreInvalid) {
  const auto values = Values({{kCurrentReportInterval, Variant::Ui4(5000)}});
  stelvane::ComPtr<IPortableDeviceValues> results;
  EXPECT_EQ(Face()->OnSetProperties(nullptr, sensorId_, nullptr, results.Put()), E_INVALIDARG);
  EXPECT_EQ(Face()->OnSetProperties(nullptr, sensorId_, values.Get(), nullptr), E_INVALIDARG);
  EXPECT_EQ(Face()->OnGetProperties(nullptr, sensorId_, nullptr, results.Put()), E_INVALIDARG);
  EXPECT_EQ(Face()->OnGetSupportedSensorObjects(nullptr), E_INVALIDARG);
  EXPECT_EQ(Face()->OnGetSupportedProperties(sensorId_, nullptr), E_INVALIDARG);
  EXPECT_EQ(Face()->OnGetSupportedEvents(sensorId_, nullptr, nullptr), E_INVALIDARG);
  GUID* events = nullptr;
  EXPECT_EQ(Face()->OnGetSupportedEvents(sensorId_, &events, nullptr), E_INVALIDARG);
  EXPECT_EQ(events, nullptr);
  EXPECT_EQ(Face()->QueryInterface(iidOf<IUnknown>, nullptr), E_POINTER);
}

TEST_F(SensorPropertyCallTest,
       ValuesThatCannotBeCountedEndTheWriteAndOneThatCannotBeReadIsPassedOver) {
  const auto values = Values({{kField1, Variant::Ui4(9)}});
  stelvane::ComPtr<IPortableDeviceValues> results;
  rig().calls().FailCall("IPortableDeviceValues::GetCount", 1, E_ABORT);
  EXPECT_EQ(Face()->OnSetProperties(nullptr, sensorId_, values.Get(), results.Put()), E_ABORT);
  EXPECT_FALSE(results);
  rig().calls().FailCall("IPortableDeviceValues::GetAt", 1, E_ABORT);
  EXPECT_EQ(Face()->OnSetProperties(nullptr, sensorId_, values.Get(), results.Put()), S_OK);
  ASSERT_TRUE(results);
  DWORD count = 1;
  EXPECT_EQ(results->GetCount(&count), S_OK);
  EXPECT_EQ(count, 0U);
}

}  // namespace
}  // namespace bench
