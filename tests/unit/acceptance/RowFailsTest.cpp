// Rows of the certification list on a modem that does not do its part: they fail.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "tests/acceptance/Run.h"

namespace bench::acceptance {
namespace {

using testing::IsEmpty;
using testing::Not;

const Check& Row(const Checks& checks, const std::string& name) {
  const auto row = std::ranges::find(checks, name, &Check::name);
  if (row == checks.end()) throw std::invalid_argument("there is no row \"" + name + "\"");
  return *row;
}

constexpr const char* kNeverAFix = "at 0 lose-fix 1000000";

struct Spoilt {
  const char* row;
  const char* faults;
};

class RowFails : public testing::TestWithParam<Spoilt> {};

TEST_P(RowFails, OnASpoiltModemAndOnNoOther) {
  const Checks list = CertificationList();
  const Check& row = Row(list, GetParam().row);
  {
    Stand good;
    EXPECT_THAT(RunCheck(row, good), IsEmpty());
  }
  auto faults = ParseFaults(GetParam().faults, "faults");
  ASSERT_TRUE(faults) << faults.error;
  Stand spoilt(*std::move(faults));
  EXPECT_THAT(RunCheck(row, spoilt), Not(IsEmpty()));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RowFails,
    testing::Values(Spoilt{"data: latitude", kNeverAFix}, Spoilt{"data", kNeverAFix},
                    Spoilt{"interval: 1 s", kNeverAFix}, Spoilt{"interval: 61 s", kNeverAFix},
                    // Half-way through the observation.
                    Spoilt{"interval: 5 s", "at 20 lose-fix 7"},
                    Spoilt{"interval: 90 s", "at 300 lose-fix 60"},
                    Spoilt{"interval: 5 s", "at 20 silent 12"},
                    Spoilt{"interval, changed", "on AT+XLCSLSR error always"},
                    Spoilt{"ready", kNeverAFix}, Spoilt{"ready", "at 30 line +XLCSLSR: ERROR"},
                    Spoilt{"fix lost and found, 5 s", kNeverAFix},
                    Spoilt{"six hours without a fix, 5 s", "at 3600 line +XLCSLSR: ERROR"},
                    Spoilt{"the engine gives up", kNeverAFix},
                    Spoilt{"radio off and on", "on AT+XLCSSWITCH error always"},
                    Spoilt{"clear assistance data", "on ATE1 error always"},
                    Spoilt{"requests", "on * no-echo always"},
                    Spoilt{"disable and enable", "on ATE1 silence always"}),
    [](const auto& test) {
      std::string name = std::string(test.param.row) + " on " + test.param.faults;
      std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
      return name;
    });

TEST(RowFails, WhenFixesHaveNoErrorRadius) {
  const Checks list = CertificationList();
  Stand stand;
  stand.sky().errorRadius = false;
  EXPECT_THAT(RunCheck(Row(list, "ready"), stand), Not(IsEmpty()));
}

TEST(RowFails, InTheStressMixWhenTheRadioDoesNotSwitch) {
  const Checks mix = StressMix();
  auto faults = ParseFaults("on AT+XLCSSWITCH error always", "faults");
  ASSERT_TRUE(faults);
  Stand stand(*std::move(faults));
  EXPECT_THAT(RunCheck(Row(mix, "radio off and on"), stand), Not(IsEmpty()));
}

TEST(ARowThatThrows, IsAFault) {
  Stand stand;
  const Check check = {"name", "asked", [](Stand&) -> Faults { throw std::runtime_error("why"); }};
  EXPECT_THAT(RunCheck(check, stand), testing::ElementsAre("why"));
}

TEST(DriverShareText, NamesTheMiddleAndTheEnd) {
  using Us = DriverShare::Microseconds;
  EXPECT_EQ(ShareText({}), "no fixes");
  EXPECT_EQ(ShareText({Us(30), Us(10), Us(20)}),
            "3 fixes: median 20 us, 95 % within 20 us, longest 30 us");
}

}  // namespace
}  // namespace bench::acceptance
