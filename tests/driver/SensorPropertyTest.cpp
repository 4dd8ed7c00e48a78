// The sensor's properties: every key read and written, with its type, limits and errors.

#include <string>
#include <vector>

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::SizeIs;

constexpr PROPERTYKEY Object(DWORD pid) {
  return {{0xef6b490d, 0x5cd8, 0x437a, {0xaf, 0xfc, 0xda, 0x8b, 0x60, 0xee, 0x4a, 0x3c}}, pid};
}
constexpr PROPERTYKEY Functional(DWORD pid) {
  return {{0x8f052d93, 0xabca, 0x4fc5, {0xa5, 0xac, 0xb0, 0x1d, 0xf4, 0xdb, 0xe5, 0x98}}, pid};
}
constexpr PROPERTYKEY Common(DWORD pid) {
  return {keys::kSensorCommonSet, pid};
}
constexpr PROPERTYKEY Driver(DWORD pid) {
  return {kDriverSettings, pid};
}
constexpr PROPERTYKEY Assistance(DWORD pid) {
  return {kClearAssistance.fmtid, pid};
}

constexpr GUID kSensorId = {
    0x33f98580, 0x15df, 0x4ab0, {0x8f, 0x2d, 0x58, 0x42, 0xd5, 0xa2, 0x09, 0xc3}};
constexpr GUID kFormat = {
    0x30000000, 0xae6c, 0x4804, {0x98, 0xba, 0xc5, 0x7b, 0x46, 0x96, 0x5f, 0xe7}};
constexpr GUID kContentType = {
    0x99ed0160, 0x17ff, 0x4c44, {0x9d, 0x98, 0x1d, 0x7a, 0x6f, 0x94, 0x19, 0x21}};
constexpr GUID kCategory = {
    0xbfa794e4, 0xf964, 0x4fdb, {0x90, 0xf6, 0x51, 0x05, 0x6b, 0xfe, 0x4b, 0x44}};
constexpr GUID kType = {
    0xed4ca589, 0x327a, 0x4ff9, {0xa5, 0x60, 0x91, 0xda, 0x4b, 0x48, 0x27, 0x5e}};
constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070490);
const std::string kSensorIdText = "{33F98580-15DF-4AB0-8F2D-5842D5A209C3}";

class SensorPropertyTest : public SensorTest {
 protected:
  void SetUp() override {
    StartSensor();
    client_ = Connect();
    Settle();
  }
  void TearDown() override {
    client_.reset();
    SensorTest::TearDown();
  }
  Variant Read(const PROPERTYKEY& key, HRESULT expected = S_OK) {
    Variant value;
    EXPECT_EQ(client_->GetProperty(key, &value), expected) << KeyText(key);
    return value;
  }
  SetResult Write(const PROPERTYKEY& key, const Variant& value) {
    const SetResult result = client_->SetProperty(key, value);
    Settle();
    return result;
  }
  void ExpectRefused(const PROPERTYKEY& key, const Variant& value, HRESULT refusal) {
    const SetResult result = Write(key, value);
    EXPECT_EQ(result.call, S_FALSE) << KeyText(key);
    EXPECT_EQ(result.refusal, refusal) << KeyText(key);
  }

  Client client_;
};

TEST_F(SensorPropertyTest, EveryKeyReadsAsItsValueAndType) {
  struct Row {
    PROPERTYKEY key;
    Variant value;
  };
  const std::vector<Row> rows = {
      {Object(2), Variant::String(kSensorIdText)},
      {Object(3), Variant::String("DEVICE")},
      {Object(4), Variant::String("Tavrel GNSS")},
      {Object(5), Variant::String(kSensorIdText)},
      {Object(6), Variant::Guid(kFormat)},
      {Object(7), Variant::Guid(kContentType)},
      {Object(26), Variant::Bool(false)},
      {Functional(2), Variant::Guid(kCategory)},
      {Common(2), Variant::Guid(kType)},
      {Common(5), Variant::Guid(kSensorId)},
      {Common(6), Variant::String("Tavrel")},
      {Common(7), Variant::String("GNSS 1")},
      {Common(8), Variant::String("0001")},
      {Common(9), Variant::String("Tavrel GNSS sensor")},
      {Common(12), Variant::Ui4(1000)},
      {Common(13), Variant::Ui4(0)},
      {Common(19), Variant::Ui4(0)},
      {Common(23), Variant::Ui4(0)},
      {Common(24), Variant::Ui4(0)},
      {Driver(2), Variant::Bool(false)},
      {Driver(3), Variant::String("3,6,10,20,40,50")},
      {Driver(4), Variant::Ui4(1)},
      {Driver(5), Variant::Ui4(1)},
      {Driver(6), Variant::Bool(false)},
      {Assistance(2), Variant::Ui4(0)},
  };
  for (const Row& row : rows) EXPECT_EQ(Read(row.key), row.value) << KeyText(row.key);
}

TEST_F(SensorPropertyTest, TheStateReadsAsTheCurrentOne) {
  EXPECT_EQ(Read(Common(3)), Variant::Ui4(static_cast<ULONG>(*State())));
  SwitchRadio(false);
  Settle();
  EXPECT_EQ(Read(Common(3)), Variant::Ui4(SENSOR_STATE_NOT_AVAILABLE));
  EXPECT_EQ(Read(Common(23)), Variant::Ui4(1));
}

TEST_F(SensorPropertyTest, TheAdvertisedKeysAreTwentyOneInOrder) {
  const SensorAnswer answer = client_->SupportedProperties();
  ASSERT_EQ(answer.result, S_OK);
  std::vector<std::string> advertised;
  for (const PROPERTYKEY& key : answer.keys) advertised.push_back(KeyText(key));
  std::vector<std::string> expected;
  for (const PROPERTYKEY& key :
       {Object(2),     Object(5),  Object(3),  Object(4),  Object(6),  Object(7),  Object(26),
        Functional(2), Common(2),  Common(3),  Common(5),  Common(6),  Common(7),  Common(8),
        Common(9),     Common(12), Common(13), Common(19), Common(23), Common(24), Assistance(2)}) {
    expected.push_back(KeyText(key));
  }
  EXPECT_EQ(advertised.size(), 21U);
  EXPECT_EQ(advertised, expected);
}

TEST_F(SensorPropertyTest, TheSupportedEventsAreDataUpdatedAndStateChanged) {
  const SensorAnswer answer = client_->SupportedEvents();
  ASSERT_EQ(answer.result, S_OK);
  ASSERT_EQ(answer.events.size(), 2U);
  EXPECT_TRUE(IsEqualGUID(answer.events[0], kSensorEventDataUpdated));
  EXPECT_TRUE(IsEqualGUID(answer.events[1], kSensorEventStateChanged));
}

TEST_F(SensorPropertyTest, AnUnknownKeyReadsAsNotFoundBesideTheKnownOnes) {
  const SensorAnswer answer = client_->GetProperties({Common(12), Common(99), Object(3)});
  EXPECT_EQ(answer.result, S_FALSE);
  const KeyValues values = answer.values.value_or(KeyValues());
  ASSERT_THAT(values, SizeIs(3));
  EXPECT_EQ(values[0].value, Variant::Ui4(1000));
  EXPECT_EQ(values[1].value, Variant::Error(kNotFound));
  EXPECT_EQ(values[2].value, Variant::String("DEVICE"));
  EXPECT_EQ(Read(Common(99), S_FALSE), Variant::Error(kNotFound));
  EXPECT_EQ(Read(Driver(7), S_FALSE), Variant::Error(kNotFound));
  EXPECT_EQ(Read(Assistance(3), S_FALSE), Variant::Error(kNotFound));
}

TEST_F(SensorPropertyTest, AnEmptyKeyIsSkipped) {
  EXPECT_EQ(client_->GetProperties({PROPERTYKEY{}, Common(12)}).result, S_OK);
}

TEST_F(SensorPropertyTest, AnUnknownKeyIsNotFoundWhenWritten) {
  for (const PROPERTYKEY& key : {Common(12), Common(23), Object(2), Driver(7), Assistance(3)}) {
    ExpectRefused(key, Variant::Ui4(1), kNotFound);
  }
}

TEST_F(SensorPropertyTest, TheCurrentIntervalReadsAsZeroWithoutASubscribedClient) {
  EXPECT_TRUE(Write(Common(13), Variant::Ui4(5000)).Accepted());
  EXPECT_EQ(Read(Common(13)), Variant::Ui4(0));
  ASSERT_EQ(client_->Subscribe(), S_OK);
  Settle();
  EXPECT_EQ(Read(Common(13)), Variant::Ui4(5000));
}

TEST_F(SensorPropertyTest, AnIntervalOfZeroOrAThousandIsTakenAndRefreshesReporting) {
  for (const ULONG interval : {0UL, 1000UL, 4294967295UL}) {
    Mark();
    EXPECT_TRUE(Write(Common(13), Variant::Ui4(interval)).Accepted()) << interval;
    EXPECT_EQ(Posted("EV_REFRESH_REPORTING"), 1U) << interval;
  }
}

TEST_F(SensorPropertyTest, AnIntervalFromOneTo999IsRefusedAndPostsNothing) {
  Mark();
  for (const ULONG interval : {1UL, 500UL, 999UL}) {
    ExpectRefused(Common(13), Variant::Ui4(interval), E_INVALIDARG);
  }
  EXPECT_EQ(Posted("EV_REFRESH_REPORTING"), 0U);
}

TEST_F(SensorPropertyTest, AnEmptyIntervalIsDeniedAndAnotherTypeInvalid) {
  ExpectRefused(Common(13), Variant(), E_ACCESSDENIED);
  ExpectRefused(Common(13), Variant::I4(5000), E_INVALIDARG);
  ExpectRefused(Common(13), Variant::String("5000"), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, TheDesiredAccuracyIsTakenAndTheEnginesStaysAsItIs) {
  EXPECT_TRUE(Write(Common(19), Variant::Ui4(1)).Accepted());
  EXPECT_EQ(Read(Common(19)), Variant::Ui4(0));
  ExpectRefused(Common(19), Variant::Bool(true), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, TrueClearsTheAssistanceDataAndFalseDoesNothing) {
  Mark();
  EXPECT_TRUE(Write(Driver(2), Variant::Bool(false)).Accepted());
  EXPECT_EQ(Posted("EV_CLEAR_ASSISTANCE_DATA"), 0U);
  EXPECT_TRUE(Write(Driver(2), Variant::Bool(true)).Accepted());
  EXPECT_EQ(Posted("EV_CLEAR_ASSISTANCE_DATA"), 1U);
  ExpectRefused(Driver(2), Variant::Ui4(1), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, ExactlyOneClearsTheAssistanceData) {
  Mark();
  for (const ULONG value : {0UL, 2UL, 4294967295UL}) {
    EXPECT_TRUE(Write(Assistance(2), Variant::Ui4(value)).Accepted());
  }
  EXPECT_EQ(Posted("EV_CLEAR_ASSISTANCE_DATA"), 0U);
  EXPECT_TRUE(Write(Assistance(2), Variant::Ui4(1)).Accepted());
  EXPECT_EQ(Posted("EV_CLEAR_ASSISTANCE_DATA"), 1U);
  ExpectRefused(Assistance(2), Variant::Bool(true), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, TrueInitialisesAgainAndFalseDoesNothing) {
  Mark();
  EXPECT_TRUE(Write(Driver(6), Variant::Bool(false)).Accepted());
  EXPECT_EQ(Posted("EV_INIT"), 0U);
  EXPECT_TRUE(Write(Driver(6), Variant::Bool(true)).Accepted());
  EXPECT_EQ(Posted("EV_INIT"), 1U);
  ExpectRefused(Driver(6), Variant(), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, TheTwoRequestFieldsKeepWhatWasSet) {
  for (const DWORD pid : {DWORD{4}, DWORD{5}}) {
    for (const ULONG value : {0UL, 7UL, 4294967295UL}) {
      EXPECT_TRUE(Write(Driver(pid), Variant::Ui4(value)).Accepted());
      EXPECT_EQ(Read(Driver(pid)), Variant::Ui4(value));
    }
    ExpectRefused(Driver(pid), Variant::String("1"), E_INVALIDARG);
  }
}

TEST_F(SensorPropertyTest, SixLeadTimesAreTaken) {
  EXPECT_TRUE(Write(Driver(3), Variant::String("5,10,15,20,25,30")).Accepted());
  EXPECT_EQ(Read(Driver(3)), Variant::String("5,10,15,20,25,30"));
}

TEST_F(SensorPropertyTest, TooFewLeadTimesAreRefusedAndThoseGivenStayStored) {
  ExpectRefused(Driver(3), Variant::String("5,7"), E_INVALIDARG);
  EXPECT_EQ(Read(Driver(3)), Variant::String("5,7,10,20,40,50"));
  ExpectRefused(Driver(3), Variant::String(""), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, LeadTimesBeyondTheSixthAreRefusedAndNotStored) {
  ExpectRefused(Driver(3), Variant::String("1,2,3,4,5,6,7,8"), E_INVALIDARG);
  EXPECT_EQ(Read(Driver(3)), Variant::String("1,2,3,4,5,6"));
}

TEST_F(SensorPropertyTest, LeadTimesAreReadAsWholeNumbersAtTheirBeginning) {
  EXPECT_TRUE(Write(Driver(3), Variant::String(" 1, +2,3s,4.9,\t5,006")).Accepted());
  EXPECT_EQ(Read(Driver(3)), Variant::String("1,2,3,4,5,6"));
}

TEST_F(SensorPropertyTest, ALeadTimeOfZeroIsRefusedUntilTheRefusalFails) {
  const std::size_t before = rig().calls().Count("IPortableDeviceValues::SetErrorValue");
  rig().calls().FailCall("IPortableDeviceValues::SetErrorValue", 4, E_ACCESSDENIED);
  const SetResult result = Write(Driver(3), Variant::String("9,0,15,20,25,30"));
  EXPECT_EQ(result.call, E_ACCESSDENIED);
  EXPECT_EQ(rig().calls().Count("IPortableDeviceValues::SetErrorValue"), before + 4);
  EXPECT_EQ(Read(Driver(3)), Variant::String("9,6,10,20,40,50"));
}

TEST_F(SensorPropertyTest, LeadTimesOfAnotherTypeAreInvalid) {
  ExpectRefused(Driver(3), Variant::Ui4(5), E_INVALIDARG);
  ExpectRefused(Driver(3), Variant(), E_INVALIDARG);
}

TEST_F(SensorPropertyTest, ChangedLeadTimesMoveTheNextSingleFix) {
  ASSERT_TRUE(Write(Driver(3), Variant::String("4,6,10,20,40,50")).Accepted());
  ASSERT_TRUE(Write(Common(13), Variant::Ui4(9000)).Accepted());
  SayFix();  // ends the first client's single fix
  Mark();
  const Millis start = clock_.Now();
  ASSERT_EQ(client_->Subscribe(), S_OK);
  RunFor(10'000);
  ASSERT_EQ(TimesOfTimer("TIMER_PRGN").size(), 1U);
  EXPECT_NEAR(static_cast<double>(TimesOfTimer("TIMER_PRGN")[0]), 5000.0, 51.0)
      << "since the subscription at " << start;
}

}  // namespace
}  // namespace bench
