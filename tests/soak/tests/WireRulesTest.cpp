#include "tests/soak/rules/WireRules.h"

#include "tests/soak/tests/BreachesTest.h"

namespace soak {
namespace {

class WireRulesTest : public RuleTest {
 protected:
  /// Writes the line `times` times, a second apart, with the port opened after the third.
  void Silence(std::string_view line, int times) {
    for (int attempt = 1; attempt <= times; ++attempt) {
      rules.Written(now, line);
      now += 1000;
      if (attempt == 3) rules.Opened(now);
    }
  }

  WireRules rules{breaches};
  Millis now = 0;
};

TEST_F(WireRulesTest, OneAfterTheOthersResult) {
  for (const auto* const final : {"OK", "ERROR", "+CME ERROR: 3", "+XLSRSTOP: 3"}) {
    rules.Written(now, "AT+CIMI");
    rules.Said(now, final);
    rules.Written(now, "AT+XLCSTER=1");
    rules.Said(now, final);
  }
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(WireRulesTest, TwoAtOnce) {
  rules.Written(0, "AT+CIMI");
  rules.Said(1, "001010123456789");  // no final result
  rules.Written(2, "AT+XLCSTER=1");
  EXPECT_THAT(Broken(), ElementsAre("one-command"));
}

TEST_F(WireRulesTest, TheSameAgainBeforeItsSecondIsOver) {
  rules.Written(0, "AT+CIMI");
  rules.Written(999, "AT+CIMI");
  EXPECT_THAT(Broken(), ElementsAre("one-command"));
}

TEST_F(WireRulesTest, SevenSilentAttemptsAndThenTheNext) {
  Silence("AT+CIMI", 7);
  Silence("AT+XLCSTER=1", 7);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(WireRulesTest, FewerAttemptsAreTooFew) {
  Silence("AT+CIMI", 6);
  rules.Written(now, "AT+XLCSTER=1");
  EXPECT_THAT(Broken(), ElementsAre("attempts"));
}

TEST_F(WireRulesTest, AnEighthAttemptIsOneTooMany) {
  Silence("AT+CIMI", 7);
  rules.Written(now, "AT+CIMI");  // taken for the next command's first
  now += 1000;
  rules.Written(now, "AT+XLCSTER=1");
  EXPECT_THAT(Broken(), ElementsAre("attempts"));
}

TEST_F(WireRulesTest, ThePortIsOpenedAfterTheThird) {
  for (int attempt = 0; attempt < 4; ++attempt) rules.Written(attempt * 1000, "AT+CIMI");
  EXPECT_THAT(Broken(), ElementsAre("attempts"));
}

TEST_F(WireRulesTest, AndAfterNoOther) {
  rules.Written(0, "AT+CIMI");
  rules.Opened(1000);
  rules.Written(1000, "AT+CIMI");
  EXPECT_THAT(Broken(), ElementsAre("attempts"));
}

TEST_F(WireRulesTest, AnOpeningThatMayFailEndsTheCommand) {
  Silence("AT+CIMI", 3);
  rules.Written(now, "AT+XLCSTER=1");
  EXPECT_THAT(Broken(), ElementsAre("attempts"));
  rules.OpeningMayFail();
  rules.Said(now, "OK");
  now += 2000;
  Silence("AT+CIMI", 3);
  rules.Written(now, "AT+XLCSTER=1");
  EXPECT_EQ(Broken().size(), 1u);
}

TEST_F(WireRulesTest, AResultThatNobodyReadEndsNothing) {
  rules.ReadingStops();
  rules.Written(0, "AT+CIMI");
  rules.Said(5, "OK");
  rules.Written(1000, "AT+CIMI");  // the second attempt
  rules.ReadingGoesOn(1500);
  rules.Written(1500, "AT+XLCSTER=1");  // both results are read
  rules.Said(1501, "OK");
  EXPECT_THAT(Broken(), IsEmpty());
  rules.Written(9000, "AT+CIMI");
  rules.Written(9001, "AT+XLCSTER=1");
  EXPECT_THAT(Broken(), ElementsAre("one-command"));
}

}  // namespace
}  // namespace soak
