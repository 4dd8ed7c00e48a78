// The fake client that a read between two slow fixes wakes.

#include "tests/driver/SensorReader.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using SensorFakeClient = SensorReader;

TEST_F(SensorFakeClient, AReadBetweenTwoSlowFixesLetsTheEngineReportEverySecondForAWhile) {
  const Millis fix = Ready(8000);
  RunUntil(fix + 3000);
  const Later next(clock_, fix + 3400, [this] { modem().SayReport(FixNow()); });
  EXPECT_EQ(Read().took, 400);
  EXPECT_THAT(TimesOf(Periodic(1)), ElementsAre(fix + 3000));
  Mark();
  // Milliseconds less seconds: 8000 - 3.
  RunUntil(fix + 3000 + 7997 - 1);
  EXPECT_THAT(Requests(), IsEmpty());
  RunUntil(fix + 3000 + 7997 + 1);
  EXPECT_THAT(TimesOfTimer("TIMER_REMOVE_FAKE_CLIENT"), ElementsAre(fix + 3000 + 7997));
  EXPECT_THAT(Requests(), ElementsAre("AT+XLSRSTOP=0,3", Periodic(8)));
}

TEST_F(SensorFakeClient, WhileTheFakeClientIsThereEverySecondsFixIsReported) {
  const Millis fix = Ready(8000);
  RunUntil(fix + 3000);
  Read();
  const std::size_t before = ReportCount();
  for (int second = 5; second <= 9; ++second) {
    RunUntil(fix + second * 1000 + 100);
    SayFix();
  }
  EXPECT_EQ(ReportCount(), before + 5);
}

TEST_F(SensorFakeClient, AnotherReadWhileTheFakeClientIsThereStartsNothing) {
  const Millis fix = Ready(8000);
  RunUntil(fix + 2100);
  Read();
  Mark();
  RunUntil(fix + 5000);
  Read();
  EXPECT_THAT(Requests(), IsEmpty());
  RunFor(10'000);
  EXPECT_THAT(TimesOfTimer("TIMER_REMOVE_FAKE_CLIENT"), SizeIs(1));
}

TEST_F(SensorFakeClient, WhenTheNextFixIsDueWithinTwoSecondsNoFakeClientComes) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 3000);  // three and two are not less than five
  Read();
  EXPECT_THAT(Requests(), IsEmpty());
}

TEST_F(SensorFakeClient, WhenItIsDueALittleLaterTheFakeClientComes) {
  const Millis fix = Ready(5000);
  RunUntil(fix + 2500);  // an age of two whole seconds
  Read();
  EXPECT_THAT(TimesOf(Periodic(1)), ElementsAre(fix + 2500));
}

TEST_F(SensorFakeClient, AtOneSecondThereIsNoFakeClient) {
  const Millis fix = Ready(1000);
  RunUntil(fix + 2500);
  Read();
  EXPECT_THAT(Requests(), IsEmpty());
}

}  // namespace
}  // namespace bench
