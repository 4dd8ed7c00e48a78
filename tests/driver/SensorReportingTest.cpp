// Which fixes are reported, and what a report that fails leaves behind.

#include <vector>

#include "tests/driver/SensorTest.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {
namespace {

using testing::ElementsAre;

class SensorReporting : public SensorTest {
 protected:
  void TearDown() override {
    client_.reset();
    SensorTest::TearDown();
  }

  Client client_;
};

TEST_F(SensorReporting, WithoutAnIntervalTheFixThatMakesTheSensorReadyIsReportedTwice) {
  StartSensor();
  client_ = PlainSubscriber();
  SayFix();
  EXPECT_EQ(ReportCount(), 2U) << "on the way into the state, and as any other fix";
}

TEST_F(SensorReporting, WithoutAnIntervalEveryFixIsReported) {
  StartSensor();
  client_ = PlainSubscriber();
  SayFix();
  const std::size_t first = ReportCount();
  for (int i = 1; i <= 3; ++i) {
    RunFor(2500);  // not fresh any more: a read asks for a fix
    const Later fix(clock_, clock_.Now() + 100, [this] { modem().SayReport(FixNow()); });
    EXPECT_EQ(client_->ReadData({kLatitude}).result, S_OK);
    Settle();
    EXPECT_EQ(ReportCount(), first + static_cast<std::size_t>(i));
  }
}

TEST_F(SensorReporting, AFixThreeSecondsAfterTheLastReportedOneAtFiveSecondsIsNotReported) {
  StartSensor();
  client_ = Subscriber(5000);
  RunUntil(1000);
  SayFix();
  RunUntil(4000);
  SayFix();
  EXPECT_EQ(ReportCount(), 1U);
  RunUntil(6000);
  SayFix();
  EXPECT_THAT(ReportTimes(), ElementsAre(1000, 6000));
}

TEST_F(SensorReporting, ReportsAreSpacedByTheTimesOfTheFixesNotOfTheirArrival) {
  StartSensor();
  client_ = Subscriber(5000);
  RunUntil(1000);
  SayFix();
  RunUntil(2000);
  GnssFix fix = FixNow();
  fix.time += std::chrono::seconds(4);
  SayFix(fix);
  EXPECT_EQ(ReportCount(), 2U);
}

TEST_F(SensorReporting, AFixOfAnEarlierTimeIsReported) {
  StartSensor();
  client_ = Subscriber(5000);
  RunUntil(1000);
  SayFix();
  GnssFix fix = FixNow();
  fix.time -= std::chrono::seconds(60);
  SayFix(fix);
  EXPECT_EQ(ReportCount(), 2U);
}

TEST_F(SensorReporting, WithoutASubscriberTheTimesStayAndTheNextSubscriberIsServedAtOnce) {
  StartSensor();
  client_ = Connect();
  EXPECT_TRUE(client_->SetReportInterval(5000).Accepted());
  Settle();
  SayFix();
  EXPECT_EQ(ReportCount(), 0U);
  EXPECT_EQ(client_->Subscribe(), S_OK);
  RunUntil(1000);
  SayFix();  // one second after the fix that nobody saw
  EXPECT_EQ(ReportCount(), 1U);
}

TEST_F(SensorReporting, AReportThatTheClassExtensionRefusesLeavesTheTimesAndTheNextOneComes) {
  StartSensor();
  client_ = Subscriber(5000);
  rig().calls().FailCall("ISensorClassExtension::PostEvent", 1, E_FAIL);
  rig().calls().FailCall("ISensorClassExtension::PostEvent", 2, E_FAIL);
  RunUntil(1000);
  SayFix();  // refused on the way into the state and as a fix
  EXPECT_EQ(ReportCount(), 0U);
  RunUntil(2000);
  SayFix();
  EXPECT_THAT(ReportTimes(), ElementsAre(2000));
}

TEST_F(SensorReporting, AReportWithAnImpossibleDateIsNotPostedAndTheNextOneIs) {
  StartSensor();
  client_ = Subscriber(5000);
  RunUntil(1000);
  std::string report = WriteReport(FixNow(), 2);
  const std::string date = "2014/7/3";
  const std::size_t place = report.find(date);
  ASSERT_NE(place, std::string::npos);
  modem().SayReport(report.replace(place, date.size(), "2014/13/45"));
  Settle();
  EXPECT_EQ(State(), SENSOR_STATE_READY);
  EXPECT_EQ(ReportCount(), 0U);
  RunUntil(2000);
  SayFix();
  EXPECT_THAT(ReportTimes(), ElementsAre(2000));
}

TEST_F(SensorReporting, AContainerThatCannotBeMadeCostsThatReportOnly) {
  StartSensor();
  client_ = Subscriber(5000);
  rig().calls().FailCall("CoCreateInstance(PortableDeviceValuesCollection)", 1, E_OUTOFMEMORY);
  rig().calls().FailCall("CoCreateInstance(PortableDeviceKeyCollection)", 2, E_OUTOFMEMORY);
  RunUntil(1000);
  SayFix();
  EXPECT_EQ(ReportCount(), 0U);
  RunUntil(2000);
  SayFix();
  EXPECT_THAT(ReportTimes(), ElementsAre(2000));
}

TEST_F(SensorReporting, AReportThatCannotBeFilledIsNotPostedAndTheNextOneIs) {
  StartSensor();
  client_ = Subscriber(5000);
  SayFix();
  std::vector<Millis> reported = ReportTimes();
  for (const char* call :
       {"CoCreateInstance(PortableDeviceValues)", "IPortableDeviceValues::SetGuidValue",
        "IPortableDeviceValuesCollection::Add", "IPortableDeviceKeyCollection::Add"}) {
    SCOPED_TRACE(call);
    RunFor(5000);
    rig().calls().FailCall(call, 1, E_OUTOFMEMORY);
    SayFix();
    EXPECT_EQ(ReportTimes(), reported);
    RunFor(1000);
    reported.push_back(clock_.Now());
    SayFix();
    EXPECT_EQ(ReportTimes(), reported);
  }
}

}  // namespace
}  // namespace bench
