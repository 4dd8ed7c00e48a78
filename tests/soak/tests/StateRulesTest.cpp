#include "tests/soak/rules/StateRules.h"

#include "tests/soak/tests/BreachesTest.h"

namespace soak {
namespace {

class StateRulesTest : public RuleTest {
 protected:
  StateRules rules{breaches};
};

TEST_F(StateRulesTest, TheStatePostedLastIsRight) {
  rules.Asked(1, 1);
  rules.Told(2, 1, 5);
  rules.Posted(3, 3);
  rules.Asked(4, 2);
  rules.Told(5, 2, 3);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(StateRulesTest, AnyStateWhileTheAnswerIsOnItsWayIsRight) {
  for (const int told : {5, 3, 0}) {
    Breaches none;
    StateRules fresh(none);
    fresh.Asked(1, 7);
    fresh.Posted(1, 3);
    fresh.Posted(1, 0);
    fresh.Told(1, 7, told);
    EXPECT_THAT(none.All(), IsEmpty()) << told;
  }
}

TEST_F(StateRulesTest, AStateOfBeforeIsWrong) {
  rules.Posted(1, 3);
  rules.Posted(2, 0);
  rules.Asked(3, 1);
  rules.Told(4, 1, 3);
  EXPECT_THAT(Broken(), ElementsAre("state-agreement"));
}

TEST_F(StateRulesTest, AStateThatWasNeverPostedIsWrong) {
  rules.Asked(3, 1);
  rules.Told(4, 1, 1);
  EXPECT_THAT(Broken(), ElementsAre("state-agreement"));
}

TEST_F(StateRulesTest, EveryWayOfTheTableMayBeTaken) {
  for (const int state : {3, 0, 3, 2, 3, 1, 2, 0, 2, 1, 2, 0, 1}) rules.Posted(1, state);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(StateRulesTest, OtherWaysAreWrong) {
  rules.Posted(1, 0);  // out of error no fix leads
  EXPECT_THAT(Broken(), ElementsAre("state-road"));
  rules.Posted(2, 0);  // the same again
  EXPECT_EQ(Broken().size(), 2u);
  rules.Posted(3, 1);
  rules.Posted(4, 3);  // the radio is off
  EXPECT_EQ(Broken().size(), 3u);
  rules.Posted(5, 5);  // back to error
  EXPECT_EQ(Broken().size(), 4u);
  rules.Posted(6, 4);  // never entered
  EXPECT_EQ(Broken().size(), 5u);
}

}  // namespace
}  // namespace soak
