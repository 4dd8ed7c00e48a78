// The report's fields, held against their places in each form.
#include <gtest/gtest.h>

#include <algorithm>

#include "workbench/modem/ReportWriter.h"

namespace bench {
namespace {

GnssFix FullFix() {
  GnssFix fix;
  fix.time = std::chrono::sys_days{std::chrono::year{2014} / 7 / 3} + std::chrono::hours{12} +
             std::chrono::minutes{34} + std::chrono::milliseconds{56'789};
  fix.latitude = -48.117312345678;
  fix.longitude = 11.5167;
  fix.errorRadius = 7.126;
  fix.altitudeEllipsoid = 545.4;
  fix.altitudeEllipsoidError = 9.5;
  fix.speedKnots = 22.4;
  fix.trueHeading = 84.4;
  fix.pdop = 1.9;
  fix.hdop = 0.9;
  fix.vdop = 1.67;
  Satellite high;
  high.number = 7;
  high.elevation = 62;
  high.azimuth = 123.5;
  high.snr = 44;
  Satellite silent;
  silent.constellation = Constellation::kGlonass;
  silent.number = 65;
  fix.satellites = {high, silent};
  return fix;
}

/// The values after the first blank, between the commas.
std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields(1);
  for (const char c : line.substr(line.find(' ') + 1)) {
    if (c == ',') {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

struct Places {
  int form;
  std::size_t altitude;  // 0: not in the form
  std::size_t radius;
  std::size_t altitudeError;  // 0: not in the form
  std::size_t date;
  std::size_t heading;
  std::size_t pdop;
  std::size_t count;
};

class EveryForm : public testing::TestWithParam<Places> {};

TEST_P(EveryForm, PutsEveryValueInItsPlace) {
  const Places& at = GetParam();
  const auto fields = Fields(WriteReport(FullFix(), at.form));
  ASSERT_EQ(fields.size(), at.count + 1 + 2 * 8);
  EXPECT_EQ(fields[0], std::to_string(at.form));
  EXPECT_EQ(fields[1], "48.1173123 S");
  EXPECT_EQ(fields[2], "11.5167000 E");
  EXPECT_EQ(fields[at.radius], "7.13");
  if (at.altitude > 0) {
    EXPECT_EQ(fields[at.altitude], "545.40");
    EXPECT_EQ(fields[at.altitudeError], "9.50");
  }
  EXPECT_EQ(fields[at.date], "2014/7/3");
  EXPECT_EQ(fields[at.date + 1], "12:34:56");
  EXPECT_EQ(fields[at.heading], "84.40");
  EXPECT_EQ(fields[at.heading + 1], "22.40");
  EXPECT_EQ(fields[at.pdop], "1.90");
  EXPECT_EQ(fields[at.pdop + 1], "0.90");
  EXPECT_EQ(fields[at.pdop + 2], "1.67");
  EXPECT_EQ(fields[at.count], "2");
  const auto satellite = [&](std::size_t index, std::size_t field) {
    return fields[at.count + 8 * index + field];
  };
  EXPECT_EQ(satellite(0, 1), "62.00");
  EXPECT_EQ(satellite(0, 2), "123.50");
  EXPECT_EQ(satellite(0, 3), "44.00");
  EXPECT_EQ(satellite(0, 8), "7");
  EXPECT_EQ(satellite(1, 1) + satellite(1, 2) + satellite(1, 3), "");
  EXPECT_EQ(satellite(1, 8), "65");
}

TEST_P(EveryForm, AbsentValuesAreEmptyFieldsAndTheCountMayBeZero) {
  const Places& at = GetParam();
  const auto fields = Fields(WriteReport(GnssFix{}, at.form));
  ASSERT_EQ(fields.size(), at.count + 1);
  EXPECT_EQ(fields[at.radius], "");
  EXPECT_EQ(fields[at.heading], "");
  EXPECT_EQ(fields[at.heading + 1], "");
  EXPECT_EQ(fields[at.pdop], "");
  EXPECT_EQ(fields[at.count], "0");
}

TEST_P(EveryForm, FieldsNobodyReadsHoldBothTextAndNothing) {
  const Places& at = GetParam();
  const auto fields = Fields(WriteReport(GnssFix{}, at.form));
  const std::vector<std::string> unread(fields.begin() + static_cast<std::ptrdiff_t>(at.pdop) + 3,
                                        fields.begin() + static_cast<std::ptrdiff_t>(at.count));
  EXPECT_EQ(unread.size(), 7u + 32u);
  EXPECT_NE(std::count(unread.begin(), unread.end(), ""), 0);
  EXPECT_NE(std::count(unread.begin(), unread.end(), ""), 39);
}

TEST_P(EveryForm, ReportedFixIsWhatTheLineSays) {
  const int form = GetParam().form;
  const GnssFix reported = AsReported(FullFix(), form);
  EXPECT_EQ(WriteReport(reported, form), WriteReport(FullFix(), form));
  EXPECT_EQ(AsReported(reported, form), reported);
  EXPECT_EQ(reported.latitude, -48.1173123);
  EXPECT_EQ(reported.errorRadius, 7.13);
  EXPECT_EQ(reported.time, std::chrono::floor<std::chrono::seconds>(FullFix().time));
  EXPECT_EQ(reported.altitudeEllipsoid.has_value(), GetParam().altitude > 0);
  EXPECT_EQ(reported.altitudeEllipsoidError.has_value(), GetParam().altitudeError > 0);
}

INSTANTIATE_TEST_SUITE_P(
    Report, EveryForm,
    testing::Values(Places{0, 0, 3, 0, 4, 8, 17, 59}, Places{1, 0, 3, 0, 7, 11, 20, 62},
                    Places{2, 3, 4, 7, 9, 13, 22, 64}, Places{3, 0, 4, 0, 8, 12, 21, 63}),
    [](const auto& param) { return "Form" + std::to_string(param.param.form); });

TEST(Report, BeginsWithItsNameAndABlank) {
  EXPECT_TRUE(WriteReport(GnssFix{}, 3).starts_with("+XLCSLSR: 3,"));
}

TEST(Report, HemisphereLetterMayFollowWithoutABlank) {
  const auto fields = Fields(WriteReport(FullFix(), 0, false));
  EXPECT_EQ(fields[1], "48.1173123S");
  EXPECT_EQ(fields[2], "11.5167000E");
}

TEST(Report, EquatorAndTinySouthernLatitudesHaveNoMinusSign) {
  GnssFix fix;
  fix.latitude = -1e-9;
  fix.longitude = -180;
  const GnssFix reported = AsReported(fix, 0);
  const auto fields = Fields(WriteReport(reported, 0));
  EXPECT_EQ(fields[1], "0.0000000 N");
  EXPECT_EQ(fields[2], "180.0000000 W");
}

}  // namespace
}  // namespace bench
