#include "tests/soak/rules/ReportRules.h"

#include "tests/soak/rules/AnswerRules.h"
#include "tests/soak/tests/BreachesTest.h"

namespace soak {
namespace {

constexpr Position kHere = {.latitude = 48.5, .longitude = -11.25, .time = 1000};

class ReportRulesTest : public RuleTest {
 protected:
  ReportRules rules{breaches};
};

TEST_F(ReportRulesTest, AFixThatWasSentMayBeReportedMoreThanOnce) {
  rules.Sent(kHere);
  rules.Sent({.latitude = 48.75, .longitude = -11.25, .time = 1001});
  rules.Reported(1, kHere);
  rules.Reported(2, kHere);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(ReportRulesTest, EachCoordinateHasToBeThereAndOnTheEarth) {
  rules.Reported(1, {.latitude = {}, .longitude = 1.0, .time = 0});
  rules.Reported(2, {.latitude = 1.0, .longitude = {}, .time = 0});
  rules.Reported(3, {.latitude = 90.5, .longitude = 1.0, .time = 0});
  rules.Reported(4, {.latitude = 1.0, .longitude = -180.5, .time = 0});
  EXPECT_THAT(Broken(), testing::AllOf(testing::SizeIs(4), testing::Each("report-coordinates")));
}

TEST_F(ReportRulesTest, AnotherPlaceOrTimeIsNotTheModems) {
  rules.Sent(kHere);
  rules.Reported(1, {.latitude = 48.5, .longitude = -11.25, .time = 1001});
  rules.Reported(2, {.latitude = 48.5, .longitude = -11.26, .time = 1000});
  EXPECT_THAT(Broken(), ElementsAre("report-origin", "report-origin"));
}

class AnswerRulesTest : public RuleTest {
 protected:
  AnswerRules rules{breaches};
};

TEST_F(AnswerRulesTest, AnAnswerAtTheLimitIsInTime) {
  rules.Asked(1000, 1, "read", 1800);
  rules.Answered(2800, 1);
  rules.Ended(9000);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(AnswerRulesTest, ALaterOneIsNot) {
  rules.Asked(1000, 1, "read", 1800);
  rules.Answered(2801, 1);
  EXPECT_THAT(Broken(), ElementsAre("answered"));
}

TEST_F(AnswerRulesTest, IntervalsBelowASecondAreRefusedAndZeroIsNot) {
  for (const std::int64_t interval : {0, 1000, 1001}) rules.IntervalAnswered(1, interval, true);
  for (const std::int64_t interval : {1, 999}) rules.IntervalAnswered(1, interval, false);
  EXPECT_THAT(Broken(), IsEmpty());
  rules.IntervalAnswered(1, 999, true);
  rules.IntervalAnswered(1, 0, false);
  EXPECT_THAT(Broken(), ElementsAre("interval-accepted", "interval-accepted"));
}

TEST_F(AnswerRulesTest, NoneAtAllIsNotEither) {
  rules.Asked(1000, 1, "read", 1800);
  rules.Ended(1100);
  EXPECT_THAT(Broken(), ElementsAre("answered"));
}

}  // namespace
}  // namespace soak
