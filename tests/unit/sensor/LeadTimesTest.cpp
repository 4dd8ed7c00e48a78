// How long ahead of a report its single fix is requested.

#include "sensor/LeadTimes.h"

#include <gtest/gtest.h>

namespace stelvane {
namespace {

class LeadTimesTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(leads_.Initialize(), S_OK);
    leads_.SetDefaults();
  }
  LeadTimes leads_;
};

TEST_F(LeadTimesTest, UpToEightSecondsThereIsNone) {
  EXPECT_EQ(leads_.For(0), 0U);
  EXPECT_EQ(leads_.For(1000), 0U);
  EXPECT_EQ(leads_.For(8000), 0U);
}

TEST_F(LeadTimesTest, EachBracketIncludesItsUpperBound) {
  EXPECT_EQ(leads_.For(8001), 3000U);
  EXPECT_EQ(leads_.For(60000), 3000U);
  EXPECT_EQ(leads_.For(60001), 6000U);
  EXPECT_EQ(leads_.For(600000), 6000U);
  EXPECT_EQ(leads_.For(600001), 10000U);
  EXPECT_EQ(leads_.For(1800000), 10000U);
  EXPECT_EQ(leads_.For(1800001), 20000U);
  EXPECT_EQ(leads_.For(3600000), 20000U);
  EXPECT_EQ(leads_.For(3600001), 40000U);
  EXPECT_EQ(leads_.For(7200000), 40000U);
  EXPECT_EQ(leads_.For(7200001), 50000U);
}

TEST_F(LeadTimesTest, TheLastBracketHasNoEnd) {
  EXPECT_EQ(leads_.For(4'294'967'000U), 50000U);
}

TEST_F(LeadTimesTest, ANineSecondIntervalIsAskedForSixSecondsAfterAReport) {
  EXPECT_EQ(9000U - leads_.For(9000), 6000U);
}

TEST(LeadTimeNumber, StandsAfterWhiteSpaceAndASign) {
  EXPECT_EQ(lead_times::ReadNumber(L" \t\r\n5"), 5);
  EXPECT_EQ(lead_times::ReadNumber(L"+5"), 5);
  EXPECT_EQ(lead_times::ReadNumber(L" -5,7"), -5);
  EXPECT_EQ(lead_times::ReadNumber(L"\x000E"
                                   L"5"),
            0);
  EXPECT_EQ(lead_times::ReadNumber(L"\x0008"
                                   L"5"),
            0);
  EXPECT_EQ(lead_times::ReadNumber(L"five"), 0);
}

TEST(LeadTimeNumber, IsHeldInTheRangeOfALong) {
  EXPECT_EQ(lead_times::ReadNumber(L"2147483648"), MAXLONG);
  EXPECT_EQ(lead_times::ReadNumber(L"-99999999999999999999"), -MAXLONG - 1);
}

}  // namespace
}  // namespace stelvane
