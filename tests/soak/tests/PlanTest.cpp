// Plans: what a seed gives, their text, and how a failing one gets shorter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/soak/Generate.h"
#include "tests/soak/Options.h"
#include "tests/soak/Reduce.h"

namespace soak {
namespace {

constexpr Millis kHour = 3'600'000;

TEST(Plan, ASeedGivesTheSameRunAgainAndAnotherSeedAnother) {
  EXPECT_EQ(PlanText(MakePlan(5, kHour)), PlanText(MakePlan(5, kHour)));
  EXPECT_NE(MakePlan(5, kHour).decisions, MakePlan(6, kHour).decisions);
}

TEST(Plan, SeedsMeetEveryDeedAndBothEnds) {
  std::set<Deed> met;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    const Plan plan = MakePlan(seed, 2 * kHour);
    EXPECT_TRUE(std::ranges::is_sorted(plan.decisions, {}, &Decision::at)) << seed;
    for (const Decision& decision : plan.decisions) met.insert(decision.deed);
    const Deed last = plan.decisions.back().deed;
    EXPECT_TRUE(last == Deed::kStop || last == Deed::kUnplug) << seed;
  }
  for (int deed = 0; deed <= static_cast<int>(Deed::kStop); ++deed) {
    EXPECT_TRUE(met.contains(static_cast<Deed>(deed))) << deed;
  }
}

TEST(Plan, ItsTextReadsBack) {
  const Plan plan = MakePlan(7, 2 * kHour);
  const auto again = ReadPlan(PlanText(plan) + "# a note\n\n", "plan");
  ASSERT_TRUE(again) << again.error;
  EXPECT_EQ(again.value->seed, 7u);
  EXPECT_EQ(again.value->decisions, plan.decisions);
}

TEST(Plan, MistakesAreNamed) {
  const std::pair<const char*, const char*> mistakes[] = {
      {"", "f: no seed"},
      {"1.0 read 2\n", "f:1: expected \"seed\" and its number"},
      {"seed x\n", "f:1: expected \"seed\" and its number"},
      {"seed 1\nsoon read 2\n", "f:2: expected a time in seconds"},
      {"seed 1\n1.0 dance\n", "f:2: unknown deed \"dance\""},
      {"seed 1\n1.0 read\n", "f:2: expected a number"},
      {"seed 1\n1.0 read -1\n", "f:2: expected a number"},
      {"seed 1\n1.0 read 1 2\n", "f:2: too many numbers"},
      {"seed 1\n2.0 read 1\n1.0 read 1\n", "f:3: earlier than the line before"},
  };
  for (const auto& [text, message] : mistakes) {
    const auto plan = ReadPlan(text, "f");
    EXPECT_FALSE(plan) << text;
    EXPECT_EQ(plan.error, message);
  }
}

TEST(Reduction, OnlyWhatIsNeededStays) {
  const Plan plan = MakePlan(9, 2 * kHour);
  const auto needs = [](const Plan& shorter) {
    const auto has = [&shorter](Deed deed) {
      return std::ranges::find(shorter.decisions, deed, &Decision::deed) != shorter.decisions.end();
    };
    return has(Deed::kConnect) && has(Deed::kRead);
  };
  ASSERT_TRUE(needs(plan));
  const Plan reduced = Reduce(plan, needs, 1000);
  EXPECT_EQ(reduced.decisions.size(), 2u);
  EXPECT_TRUE(needs(reduced));
}

TEST(Reduction, TriesNoMorePlansThanItMay) {
  int runs = 0;
  Reduce(
      MakePlan(9, 2 * kHour), [&runs](const Plan&) { return ++runs < 0; }, 20);
  EXPECT_EQ(runs, 20);
}

TEST(SoakOptions, AreRead) {
  const auto options = ReadOptions({"--seed", "9", "--seeds", "3", "--hours", "0.5"});
  ASSERT_TRUE(options) << options.error;
  EXPECT_EQ(options.value->firstSeed, 9u);
  EXPECT_EQ(options.value->seeds, 3u);
  EXPECT_EQ(options.value->length, 1'800'000);
}

TEST(SoakOptions, MistakesAreNamed) {
  EXPECT_EQ(ReadOptions({"--sed"}).error, "no such option: \"--sed\"; try --help");
  EXPECT_EQ(ReadOptions({"--seeds", "0"}).error, "--seeds: expected a whole number, not \"0\"");
  EXPECT_EQ(ReadOptions({"--hours"}).error, "--hours: expected a positive number, not \"\"");
  EXPECT_EQ(ReadOptions({"--days", "-1"}).error, "--days: expected a positive number, not \"-1\"");
}

}  // namespace
}  // namespace soak
