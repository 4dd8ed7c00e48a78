#include "tests/soak/rules/EngineUseRules.h"

#include "tests/soak/tests/BreachesTest.h"

namespace soak {
namespace {

constexpr bool kSure = true;
constexpr const char* kStart = "AT+XLCSLSR=1,1,,,,,2,,,2,,";

class EngineUseRulesTest : public RuleTest {
 protected:
  /// A request that the modem accepts, or answers as told.
  void Start(Millis at, const char* line = kStart, const char* result = "OK") {
    rules.StopIdle(at);
    rules.Written(at, line, kSure);
    rules.Said(at + 5, "+XLCSLSR: request id 1");
    rules.Said(at + 5, result);
  }

  EngineUseRules rules{breaches};
};

TEST_F(EngineUseRulesTest, HoldsInTurn) {
  for (Millis at = 0; at < 5; ++at) {
    rules.StopIdle(at);
    rules.ResumeIdle(at, kSure);
  }
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, ASecondHoldAndAReleaseTooMany) {
  rules.StopIdle(0);
  rules.StopIdle(1);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-balance"));
  rules.ResumeIdle(2, kSure);
  rules.ResumeIdle(2, kSure);
  EXPECT_EQ(Broken().size(), 1u);
  rules.ResumeIdle(2, kSure);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-balance", "engine-use-balance"));
}

TEST_F(EngineUseRulesTest, TwoThreadsMayTakeTheFirstHoldAtOnce) {
  rules.StopIdle(0);
  rules.StopIdle(0);
  rules.ResumeIdle(0, kSure);
  rules.ResumeIdle(1, kSure);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, ACommandWithoutAHold) {
  rules.StopIdle(0);
  rules.Written(0, "AT+CIMI", kSure);
  rules.ResumeIdle(1, kSure);
  EXPECT_THAT(Broken(), IsEmpty());
  rules.Written(2, "AT+XLCSTER=1", kSure);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-talking"));
}

TEST_F(EngineUseRulesTest, ACommandThatWaitedMayHaveLostItsHold) {
  Start(0);
  rules.Said(1000, "+XLCSLSR: ERROR: no position");
  rules.ResumeIdle(1001, kSure);
  rules.Written(1001, "AT+CIMI", kSure);
  EXPECT_THAT(Broken(), IsEmpty());
  rules.Written(9000, "AT+CIMI", kSure);  // nothing to wait for
  EXPECT_THAT(Broken(), ElementsAre("engine-use-talking"));
}

TEST_F(EngineUseRulesTest, ARequestThatLosesItsHold) {
  Start(0);
  rules.ResumeIdle(5000, kSure);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-kept"));
}

TEST_F(EngineUseRulesTest, ARequestThatLosesItsHoldAsItIsAccepted) {
  Start(0);
  rules.ResumeIdle(5, kSure);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-kept"));
}

TEST_F(EngineUseRulesTest, AFixEndsARequestForASingleOne) {
  Start(0, "AT+XLCSLSR=1,1,,,,,,,,2,,");
  rules.Said(500, "$GPGGA,");
  rules.ResumeIdle(500, kSure);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, TheLastOfSevenAttemptsMayHaveBeenSilentForTheDriver) {
  rules.StopIdle(0);
  for (Millis at = 0; at < 7000; at += 1000) rules.Written(at, kStart, kSure);
  rules.Said(6900, "+XLCSLSR: request id 1");
  rules.Said(6900, "OK");
  rules.Written(7000, "AT+XLCSSWITCH=1", kSure);
  rules.ResumeIdle(7000, kSure);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, ARequestWithoutAGoodResultKeepsNoHold) {
  Start(0, kStart, "ERROR");
  rules.ResumeIdle(5, kSure);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, AnIdThatNobodyAskedForStartsNothing) {
  rules.StopIdle(0);
  rules.Written(0, kStart, kSure);
  rules.Said(5, "ERROR");
  rules.Said(900, "+XLCSLSR: request id 1");
  rules.Said(900, "OK");
  rules.ResumeIdle(900, kSure);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, AFixThatLayUnreadWhileThePortWasClosedMayEndARequest) {
  rules.Opened(0);
  Start(0);
  rules.Said(4000, "$GPGGA,");
  rules.Written(8000, "AT+XLCSSWITCH=0,1", !kSure);
  rules.Opened(8000);
  rules.ResumeIdle(8000, !kSure);
  EXPECT_THAT(Broken(), IsEmpty());
  Start(20'000);
  rules.Written(28'000, "AT+XLCSSWITCH=0,1", !kSure);
  rules.Opened(28'000);
  rules.ResumeIdle(28'000, !kSure);  // no fix since the last opening
  EXPECT_THAT(Broken(), ElementsAre("engine-use-kept"));
}

TEST_F(EngineUseRulesTest, ACommandThatWaitedForThePortMayHaveLostItsHold) {
  rules.StopIdle(0);
  rules.PowerDown();
  rules.Opened(5000);
  rules.ResumeIdle(5000, kSure);
  rules.Written(5000, "AT+XLCSSWITCH=1", kSure);
  EXPECT_THAT(Broken(), IsEmpty());
}

TEST_F(EngineUseRulesTest, WhatEndsARequest) {
  const auto ends = [this](Millis at, auto end) {
    Start(at);
    end(at + 5000);
    rules.ResumeIdle(at + 5000, kSure);
    EXPECT_THAT(Broken(), IsEmpty());
  };
  ends(0, [this](Millis at) { rules.Said(at, "+XLSRSTOP: 1"); });
  ends(10'000, [this](Millis at) { rules.Said(at, "+XLCSLSR: ERROR: no position"); });
  ends(20'000, [this](Millis at) { rules.PowerUp(at); });
  Start(30'000);
  rules.Said(34'000, "$GPGGA,");
  rules.ResumeIdle(34'000, !kSure);
  EXPECT_THAT(Broken(), IsEmpty());
  Start(40'000);
  rules.Said(44'000, "$GPGGA,");  // a fix of a short interval ends nothing
  rules.ResumeIdle(44'000, kSure);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-kept"));
}

TEST_F(EngineUseRulesTest, AHoldThatIsNotGivenBack) {
  rules.Clients(0, +1);
  rules.StopIdle(0);
  rules.Written(0, "AT+CIMI", kSure);
  rules.Clients(1000, -1);
  rules.Quiet(10'999);
  EXPECT_THAT(Broken(), IsEmpty());
  rules.Quiet(11'000);
  EXPECT_THAT(Broken(), ElementsAre("engine-use-returned"));
}

TEST_F(EngineUseRulesTest, AfterAFaultItMayBeKept) {
  rules.StopIdle(0);
  rules.Written(0, "AT+CIMI", kSure);
  rules.Said(1, "ERROR");
  rules.Quiet(60'000);
  EXPECT_THAT(Broken(), IsEmpty());
}

}  // namespace
}  // namespace soak
