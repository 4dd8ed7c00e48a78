// The judgements of the certification list on made-up observations: each can say yes and no.

#include "tests/acceptance/Judgement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "workbench/framework/Rules.h"

namespace bench::acceptance {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Pace kFiveSeconds = {.interval = 5000, .until = 20'000};

TEST(JudgePace, TakesGapsWithinAFifthOfTheInterval) {
  EXPECT_THAT(JudgePace({0, 5000, 10'000, 15'000}, kFiveSeconds), IsEmpty());
  EXPECT_THAT(JudgePace({0, 4000, 10'000, 14'000}, kFiveSeconds), IsEmpty());
}

TEST(JudgePace, RefusesAGapThatIsAFifthAndAMillisecondOff) {
  EXPECT_THAT(JudgePace({0, 3999}, {.interval = 5000, .until = 3999}), SizeIs(1));
  EXPECT_THAT(JudgePace({0, 6001}, {.interval = 5000, .until = 6001}), SizeIs(1));
}

TEST(JudgePace, RefusesAnEventBelowTheMinimumThoughItIsWithinAFifth) {
  const Pace second = {.interval = 1000, .until = 990};
  EXPECT_THAT(JudgePace({0, 990}, second), ElementsAre(HasSubstr("faster than the minimum")));
}

TEST(JudgePace, RefusesAnEventLaterThanTwiceTheInterval) {
  EXPECT_THAT(JudgePace({0, 10'001}, {.interval = 5000, .until = 10'001}), SizeIs(2));
}

TEST(JudgePace, RefusesAnEndOfTheEvents) {
  EXPECT_THAT(JudgePace({0, 5000}, {.interval = 5000, .until = 15'000}), IsEmpty());
  EXPECT_THAT(JudgePace({0, 5000}, {.interval = 5000, .until = 15'001}),
              ElementsAre(HasSubstr("by the end")));
}

TEST(JudgePace, RefusesTooFewEvents) {
  EXPECT_THAT(JudgePace({}, kFiveSeconds), SizeIs(1));
  EXPECT_THAT(JudgePace({5000}, kFiveSeconds), SizeIs(1));
}

TEST(JudgeLateness, LooksAtTheFirstEventToo) {
  EXPECT_THAT(JudgeLateness(0, {10'000}, {.interval = 5000, .until = 10'000}), IsEmpty());
  EXPECT_THAT(JudgeLateness(0, {10'001}, {.interval = 5000, .until = 10'001}), SizeIs(1));
}

TEST(JudgeType, TakesTheExactTypeOnly) {
  EXPECT_THAT(JudgeType("it", VT_UI4, VT_UI4), IsEmpty());
  EXPECT_THAT(JudgeType("it", VT_UI4, VT_I4),
              ElementsAre("it is signed 32-bit and not unsigned 32-bit"));
  EXPECT_THAT(JudgeType("it", VT_R8, VT_ILLEGAL), ElementsAre("it is missing and not double"));
}

TEST(JudgeType, TakesAnEmptyValueWhereItMayBeAbsent) {
  EXPECT_THAT(JudgeType("it", VT_R8, VT_EMPTY), SizeIs(1));
  EXPECT_THAT(JudgeType("it", VT_R8, VT_EMPTY, true), IsEmpty());
  EXPECT_THAT(JudgeType("it", VT_R8, VT_I4, true), SizeIs(1));
}

StateChange Raised(Millis time, SensorState state) {
  return {.time = time, .state = state};
}

TEST(JudgeStates, TakesTheseInThisOrderOnly) {
  const std::vector<StateChange> raised = {Raised(1, SENSOR_STATE_INITIALIZING),
                                           Raised(2, SENSOR_STATE_READY)};
  EXPECT_THAT(JudgeStates(raised, {SENSOR_STATE_INITIALIZING, SENSOR_STATE_READY}), IsEmpty());
  EXPECT_THAT(JudgeStates(raised, {SENSOR_STATE_READY, SENSOR_STATE_INITIALIZING}),
              ElementsAre(HasSubstr("INITIALIZING, READY; expected: READY, INITIALIZING")));
  EXPECT_THAT(JudgeStates(raised, {SENSOR_STATE_INITIALIZING}), SizeIs(1));
  EXPECT_THAT(JudgeStates({}, {}), IsEmpty());
}

Report At(Millis time, std::optional<double> radius) {
  Report report;
  report.time = time;
  report.errorRadius = radius;
  report.latitude = 48;
  report.longitude = 11;
  return report;
}

TEST(JudgeReady, WantsAFixWithAnErrorRadiusEachTime) {
  const std::vector<StateChange> twice = {Raised(100, SENSOR_STATE_READY),
                                          Raised(200, SENSOR_STATE_INITIALIZING),
                                          Raised(300, SENSOR_STATE_READY)};
  EXPECT_THAT(JudgeReady(twice, {At(100, 5.0), At(300, 5.0)}), IsEmpty());
  EXPECT_THAT(JudgeReady(twice, {At(100, 5.0)}), SizeIs(1));
  EXPECT_THAT(JudgeReady(twice, {At(100, 5.0), At(300, 0.0)}), SizeIs(1));
  EXPECT_THAT(JudgeReady(twice, {At(100, 5.0), At(300, std::nullopt)}), SizeIs(1));
}

TEST(JudgeReady, RefusesAReportBeforeTheSensorIsReady) {
  EXPECT_THAT(JudgeReady({Raised(100, SENSOR_STATE_READY)}, {At(99, 5.0), At(100, 5.0)}),
              ElementsAre(HasSubstr("before the sensor is ready")));
}

TEST(JudgeReady, RefusesASensorThatNeverIs) {
  EXPECT_THAT(JudgeReady({Raised(1, SENSOR_STATE_INITIALIZING)}, {}), SizeIs(1));
}

TEST(JudgePositions, WantsBothCoordinatesOnTheGlobe) {
  EXPECT_THAT(JudgePositions({At(1, 5.0)}), IsEmpty());
  EXPECT_THAT(JudgePositions({}), SizeIs(1));
  Report bare = At(1, 5.0);
  bare.longitude.reset();
  EXPECT_THAT(JudgePositions({At(1, 5.0), bare}), SizeIs(1));
  Report beyond = At(1, 5.0);
  beyond.latitude = 90.5;
  EXPECT_THAT(JudgePositions({beyond}), SizeIs(1));
}

TEST(Findings, AreToldUnderTheirRule) {
  const std::string leak = std::string(rule::kLeak) + ": file 1: 1 left";
  const std::string query = std::string(rule::kNotReflexive) + ": IDevice";
  const std::string other = "something else: new";
  const std::vector<std::string> findings = {leak, query, other};
  EXPECT_THAT(FindingsOfRule(findings, rule::kLeak), ElementsAre(leak));
  EXPECT_THAT(FindingsOfRule(findings, rule::kQueryInterface), IsEmpty())
      << "whose name begins another's";
  EXPECT_THAT(FindingsOfRule(findings, rule::kNotReflexive), ElementsAre(query));
  EXPECT_THAT(FindingsOfNoRule(findings), ElementsAre(other));
}

}  // namespace
}  // namespace bench::acceptance
