#include "tests/soak/rules/SpacingRules.h"

#include "tests/soak/tests/BreachesTest.h"

namespace soak {
namespace {

constexpr int kClient = 1;
constexpr int kOther = 2;
constexpr Millis kQuiet = 2000;  // by then the driver has come to what it was told

class SpacingRulesTest : public RuleTest {
 protected:
  void SetUp() override {
    rules.StatePosted(now, 3);
    rules.StatePosted(++now, 0);
    ++now;
  }
  void Wish(int client, std::int64_t interval) {
    rules.Connected(client);
    rules.IntervalSet(now, client, interval);
    rules.Done(now);
    rules.Subscribed(now, client, true);
    rules.Done(now);
  }
  /// The modem takes a periodic request, unless it is told otherwise.
  void Start(bool accepted = true) {
    rules.Written(now, "AT+XLCSLSR=1,1,,,,,5,,,2,,");
    if (accepted) rules.Said("+XLCSLSR: request id 2");
  }
  void Pass(Millis time) { now += time; }
  /// Until no doubt is left, the fake client's stay included.
  void Settle() { Pass(12'000), rules.Smallest(now), Pass(12'000); }
  void Running(std::int64_t interval) {
    Wish(kClient, interval);
    Start();
    Settle();
    ASSERT_EQ(rules.Smallest(now), interval);
  }

  SpacingRules rules{breaches};
  Millis now = 0;
};

TEST_F(SpacingRulesTest, ReportsAtTheIntervalAndSlower) {
  Running(5000);
  for (const std::int64_t fix : {100, 105, 110, 117}) rules.Reported(now, fix);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(SpacingRulesTest, AReportThatComesTooSoon) {
  Running(5000);
  rules.Reported(now, 100);
  rules.Reported(now, 104);
  EXPECT_THAT(Broken(), ElementsAre("report-spacing"));
}

TEST_F(SpacingRulesTest, TheFixThatMakesReadyIsReportedInAnyCase) {
  Running(5000);
  rules.Reported(now, 100);
  rules.StatePosted(now, 3);
  rules.StatePosted(now, 0);
  rules.Reported(now, 101);
  EXPECT_THAT(Broken(), IsEmpty());
  rules.Reported(now, 101);  // and once
  EXPECT_THAT(Broken(), ElementsAre("report-spacing"));
}

TEST_F(SpacingRulesTest, WithoutAnIntervalEveryFixIsReportedAndTheFirstOneTwice) {
  rules.Connected(kClient);
  rules.Subscribed(now, kClient, true);
  rules.Done(now);
  Settle();
  for (const std::int64_t fix : {100, 100, 101}) rules.Reported(now, fix);
  EXPECT_THAT(Broken(), IsEmpty());
  EXPECT_EQ(rules.Smallest(now), 0);
}

TEST_F(SpacingRulesTest, TimeThatGoesBackIsALongTime) {
  Running(5000);
  rules.Reported(now, 100);
  rules.Reported(now, 99);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(SpacingRulesTest, TheSmallestOfTheSubscribersCounts) {
  Running(60'000);
  Wish(kOther, 3000);
  EXPECT_EQ(rules.Smallest(now), 3000);
  Start();
  Settle();
  EXPECT_EQ(rules.Smallest(now), 3000);
  rules.Left(now, kOther);
  rules.Done(now);
  EXPECT_EQ(rules.Smallest(now), 3000);  // until the driver comes to it
  Settle();
  EXPECT_EQ(rules.Smallest(now), 60'000);
}

TEST_F(SpacingRulesTest, IntervalsAreWholeSecondsAndZeroYields) {
  Running(1000);
  rules.IntervalSet(now, kClient, 2999);
  rules.Done(now);
  Wish(kOther, 0);
  Start();
  Settle();
  EXPECT_EQ(rules.Smallest(now), 2000);
  rules.Left(now, kClient);
  rules.Done(now);
  Start();
  Settle();
  EXPECT_EQ(rules.Smallest(now), 1000);
}

TEST_F(SpacingRulesTest, AReadMayBringTheFakeClientForAWhile) {
  Running(8000);
  rules.DataRequested(now);
  rules.Done(now);
  EXPECT_EQ(rules.Smallest(now), 1000);
  Pass(kQuiet);
  EXPECT_EQ(rules.Smallest(now), 1000);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 8000);
}

TEST_F(SpacingRulesTest, ARefusedStartLeavesNoInterval) {
  Wish(kClient, 5000);
  Start(false);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 0);
}

TEST_F(SpacingRulesTest, AfterTheLastSilentAttemptAtAStartEveryFixMayBeReported) {
  Running(5000);
  Wish(kOther, 2000);
  for (int attempt = 1; attempt <= 7; ++attempt) {
    EXPECT_NE(rules.Smallest(now), 0) << "attempt " << attempt;
    Start();
    Pass(1000);
  }
  EXPECT_EQ(rules.Smallest(now), 0);
}

TEST_F(SpacingRulesTest, WhileTheStateIsNoneForItARefreshDoesNotCount) {
  Running(5000);
  rules.StatePosted(now, 1);
  rules.IntervalSet(now, kClient, 9000);
  rules.Done(now);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 5000);
  rules.StatePosted(now, 2);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 5000);
}

TEST_F(SpacingRulesTest, TheRadioForgetsTheIntervalAndBringsItBack) {
  Running(5000);
  rules.RadioSwitching(now, false);
  rules.StatePosted(now, 1);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 0);
  rules.RadioSwitching(now, true);
  rules.RadioSwitchedOn(now);
  rules.StatePosted(++now, 2);
  Start();
  Settle();
  EXPECT_EQ(rules.Smallest(now), 5000);
}

TEST_F(SpacingRulesTest, ASecondSubscriptionBringsNoIntervalBack) {
  Running(5000);
  rules.RadioSwitching(now, false);
  Settle();
  ASSERT_EQ(rules.Smallest(now), 0);
  rules.Subscribed(now, kClient, true);
  rules.Done(now);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 0);
}

TEST_F(SpacingRulesTest, APowerUpForgetsTheIntervalUntilTheNextStart) {
  Running(5000);
  rules.PoweredUp(now);
  Settle();
  EXPECT_EQ(rules.Smallest(now), 0);
  Start();
  Settle();
  EXPECT_EQ(rules.Smallest(now), 5000);
  EXPECT_TRUE(rules.ShortForCertain(now));
}

TEST_F(SpacingRulesTest, LongIntervalsAreNotShort) {
  Running(8000);
  EXPECT_TRUE(rules.ShortForCertain(now));
  rules.IntervalSet(now, kClient, 9000);
  rules.Done(now);
  EXPECT_FALSE(rules.ShortForCertain(now));
  Settle();
  EXPECT_FALSE(rules.ShortForCertain(now));
}

}  // namespace
}  // namespace soak
