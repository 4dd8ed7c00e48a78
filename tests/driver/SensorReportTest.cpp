// What a fix becomes: the 23 data fields.

#include <vector>

#include "tests/driver/SensorTest.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr VARTYPE kBytes = VT_VECTOR | VT_UI1;

// The data fields as clients see them: set, number, and the type of a value that is there.
struct Field {
  const GUID* set;
  DWORD pid;
  VARTYPE type;
};
constexpr Field kFields[] = {
    {&keys::kLocationSet, 2, VT_R8},      {&keys::kLocationSet, 3, VT_R8},
    {&keys::kLocationSet, 22, VT_R8},     {&keys::kDataCommonSet, 2, VT_FILETIME},
    {&keys::kLocationSet, 29, VT_R8},     {&keys::kLocationSet, 5, VT_R8},
    {&keys::kLocationSet, 10, VT_I4},     {&keys::kLocationSet, 11, VT_I4},
    {&keys::kLocationSet, 32, VT_I4},     {&keys::kLocationSet, 31, VT_I4},
    {&keys::kLocationSet, 33, VT_I4},     {&keys::kLocationSet, 13, VT_R8},
    {&keys::kLocationSet, 38, VT_LPWSTR}, {&keys::kLocationSet, 12, VT_R8},
    {&keys::kLocationSet, 17, VT_I4},     {&keys::kLocationSet, 20, kBytes},
    {&keys::kLocationSet, 19, kBytes},    {&keys::kLocationSet, 39, kBytes},
    {&keys::kLocationSet, 18, kBytes},    {&keys::kLocationSet, 21, kBytes},
    {&keys::kLocationSet, 6, VT_R8},      {&keys::kLocationSet, 7, VT_R8},
    {&keys::kLocationSet, 14, VT_R8},
};
constexpr std::size_t kFieldCount = 23;
static_assert(std::size(kFields) == kFieldCount);

bool MayBeAbsent(const Field& field) {
  return field.set == &keys::kLocationSet &&
         (field.pid == 29 || field.pid == 5 || field.pid == 6 || field.pid == 7 || field.pid == 14);
}

class SensorReport : public SensorTest {
 protected:
  // A subscriber without an interval: every fix is reported.
  void StartReporting() {
    StartSensor();
    client_ = PlainSubscriber();
  }
  GnssFix FullFix() {
    GnssFix fix = FixNow();
    fix.altitudeEllipsoid = 545.5;
    fix.altitudeEllipsoidError = 7.25;
    fix.speedKnots = 12.5;
    fix.trueHeading = 270.25;
    fix.vdop = 1.25;
    fix.satellites = {{.number = 5, .elevation = 40, .azimuth = 120, .snr = 33},
                      {.number = 17, .elevation = 10.5, .azimuth = 300.25, .snr = 21}};
    return fix;
  }
  KeyValues Read(std::vector<PROPERTYKEY> wanted) {
    const SensorAnswer answer = client_->ReadData(std::move(wanted));
    EXPECT_EQ(answer.result, S_OK);
    return answer.values.value_or(KeyValues());
  }
  void TearDown() override {
    client_.reset();
    SensorTest::TearDown();
  }

  Client client_;
};

TEST_F(SensorReport, TheSupportedDataFieldsAreTwentyThreeInTheirOrder) {
  StartReporting();
  const SensorAnswer answer = client_->SupportedDataFields();
  ASSERT_EQ(answer.result, S_OK);
  ASSERT_THAT(answer.keys, SizeIs(kFieldCount));
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    EXPECT_TRUE(SameKey(answer.keys[i], {*kFields[i].set, kFields[i].pid})) << i;
  }
}

TEST_F(SensorReport, AFullFixGivesEveryFieldItsTypeInTheOrderAskedFor) {
  StartReporting();
  SayFix(FullFix());
  const KeyValues values = Read(client_->SupportedDataFields().keys);
  ASSERT_THAT(values, SizeIs(kFieldCount));
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    EXPECT_TRUE(SameKey(values[i].key, {*kFields[i].set, kFields[i].pid})) << i;
    EXPECT_EQ(values[i].value.Type(), kFields[i].type) << KeyText(values[i].key);
  }
}

TEST_F(SensorReport, AbsentValuesStandAsEmptyUnderTheirKeys) {
  StartReporting();
  SayFix();  // no altitude, no speed, no heading, no vertical dilution
  const KeyValues values = Read(client_->SupportedDataFields().keys);
  ASSERT_THAT(values, SizeIs(kFieldCount));
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    const VARTYPE expected = MayBeAbsent(kFields[i]) ? VARTYPE{VT_EMPTY} : kFields[i].type;
    EXPECT_EQ(values[i].value.Type(), expected) << KeyText(values[i].key);
  }
}

TEST_F(SensorReport, AFixWithoutASpeedAloneLeavesTheSpeedEmpty) {
  StartReporting();
  GnssFix fix = FullFix();
  fix.speedKnots.reset();
  SayFix(fix);
  const Report report = client_->Reports().at(0);
  EXPECT_EQ(report.TypeOf({keys::kLocationSet, 6}), VT_EMPTY);
  EXPECT_EQ(report.trueHeading, 270.25);
}

TEST_F(SensorReport, TheValuesAreThoseOfTheFix) {
  StartReporting();
  const GnssFix fix = FullFix();
  SayFix(fix);
  const Report report = client_->Reports().at(0);
  EXPECT_EQ(report.latitude, 48.125);
  EXPECT_EQ(report.longitude, 11.5);
  EXPECT_EQ(report.errorRadius, 5);
  EXPECT_EQ(UtcText(report.timestamp.value()), "2014-07-03 12:00:00.000");
  EXPECT_EQ(report.altitudeEllipsoid, 545.5);
  EXPECT_EQ(report.altitudeEllipsoidError, 7.25);
  EXPECT_EQ(report.fixQuality, 1);
  EXPECT_EQ(report.fixType, 1);
  EXPECT_EQ(report.operationMode, 1);
  EXPECT_EQ(report.selectionMode, 0);
  EXPECT_EQ(report.gpsStatus, 2);
  EXPECT_EQ(report.hdop, 0.9);
  EXPECT_EQ(report.pdop, 1.5);
  EXPECT_EQ(report.vdop, 1.25);
  EXPECT_EQ(report.speedKnots, 12.5);
  EXPECT_EQ(report.trueHeading, 270.25);
  EXPECT_EQ(report.satellitesInView, 2);
  EXPECT_THAT(report.elevation, ElementsAre(40, 10.5));
  EXPECT_THAT(report.azimuth, ElementsAre(120, 300.25));
  EXPECT_THAT(report.snRatio, ElementsAre(33, 21));
  EXPECT_THAT(report.satelliteIds, ElementsAre(5U, 17U));
  EXPECT_THAT(report.prns, ElementsAre(5U, 17U));
  EXPECT_THAT(report.nmeaSentence.value(), testing::StartsWith("$GPGGA,120000.00,"));
  EXPECT_THAT(report.nmeaSentence.value(), testing::EndsWith("*40\n"));
}

TEST_F(SensorReport, WithoutSatellitesTheirVectorsAreEmpty) {
  StartReporting();
  SayFix();
  for (const KeyValue& value : Read({{keys::kLocationSet, 18},
                                     {keys::kLocationSet, 19},
                                     {keys::kLocationSet, 20},
                                     {keys::kLocationSet, 21},
                                     {keys::kLocationSet, 39}})) {
    EXPECT_EQ(value.value.Type(), kBytes);
    EXPECT_EQ(value.value.Get().caub.cElems, 0U);
  }
  EXPECT_EQ(client_->Reports().at(0).satellitesInView, 0);
}

TEST_F(SensorReport, TheTimestampAloneIsOneFileTime) {
  StartReporting();
  SayFix();
  const KeyValues values = Read({keys::kTimestamp});
  ASSERT_THAT(values, SizeIs(1));
  EXPECT_EQ(values[0].value.Type(), VT_FILETIME);
}

TEST_F(SensorReport, AnUnknownKeyIsPassedOverAndTheLatitudeComes) {
  StartReporting();
  SayFix();
  const KeyValues values = Read({{keys::kLocationSet, 999}, kLatitude});
  ASSERT_THAT(values, SizeIs(1));
  EXPECT_TRUE(SameKey(values[0].key, kLatitude));
}

TEST_F(SensorReport, TheEmptyKeyIsPassedOver) {
  StartReporting();
  SayFix();
  EXPECT_THAT(Read({PROPERTYKEY{}, kLatitude, PROPERTYKEY{}}), SizeIs(1));
}

TEST_F(SensorReport, AKeyThatCannotBeReadIsPassedOver) {
  StartReporting();
  SayFix();
  rig().calls().FailCall("IPortableDeviceKeyCollection::GetAt", 1, E_FAIL);
  const KeyValues values = Read({{keys::kLocationSet, 3}, kLatitude});
  ASSERT_THAT(values, SizeIs(1));
  EXPECT_TRUE(SameKey(values[0].key, kLatitude));
}

TEST_F(SensorReport, KeysThatCannotBeCountedOrValuesThatCannotBeSetEndTheRead) {
  StartReporting();
  SayFix();
  rig().calls().FailCall("IPortableDeviceKeyCollection::GetCount", 1, E_ABORT);
  EXPECT_EQ(client_->ReadData({kLatitude}).result, E_ABORT);
  rig().calls().FailCall("IPortableDeviceValues::SetValue", 2, E_ABORT);
  const SensorAnswer answer = client_->ReadData({kLatitude, keys::kTimestamp, kLatitude});
  EXPECT_EQ(answer.result, E_ABORT);
  EXPECT_THAT(answer.values.value(), SizeIs(1));
}

}  // namespace
}  // namespace bench
