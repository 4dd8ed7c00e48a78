// Location requests: ids, times, forms, shapes, and what ends them.
#include <gtest/gtest.h>

#include "tests/unit/bench_modem/ModemHost.h"
#include "workbench/modem/ReportWriter.h"

namespace bench {
namespace {

constexpr const char* kSingle = "AT+XLCSLSR=1,1,,,,,,,,2,,";
constexpr const char* kEvery5Seconds = "AT+XLCSLSR=1,1,,,,,5,,,2,,";
constexpr const char* kLastLines = "second*00\r\n\r\nOK\r\n";

std::string RequestId(int id) {
  return "\r\n+XLCSLSR: request id " + std::to_string(id) + "\r\n" + kOk;
}

std::vector<Millis> TimesOf(const std::vector<SentFix>& fixes) {
  std::vector<Millis> times;
  for (const SentFix& sent : fixes) times.push_back(sent.at);
  return times;
}

TEST(LocationRequest, IdsCountUpFromOne) {
  ModemHost host;
  EXPECT_EQ(host.Ask(kSingle), RequestId(1));
  EXPECT_EQ(host.Ask(kEvery5Seconds), RequestId(2));
  EXPECT_EQ(host.modem.Snapshot().lastRequestId, 2u);
}

TEST(LocationRequest, SingleReportsOnceAfterTheColdStartAndEnds) {
  ModemHost host({.latency = 5, .coldStart = 3000});
  host.Ask(kSingle);
  EXPECT_EQ(host.modem.Snapshot().running, 1u);
  EXPECT_EQ(host.modem.Snapshot().interval, std::nullopt);
  host.ReadFor(60'000);
  ASSERT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{3005}));
  EXPECT_TRUE(host.Fixes().front().single);
  EXPECT_EQ(host.modem.Snapshot().running, std::nullopt);
}

TEST(LocationRequest, SecondSingleStartsHot) {
  ModemHost host({.latency = 0, .coldStart = 3000, .hotStart = 400});
  host.Ask(kSingle);
  host.ReadUntil(kLastLines);
  host.Ask(kSingle);
  host.ReadUntil(kLastLines);
  EXPECT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{3000, 3400}));
}

TEST(LocationRequest, ClearingTheAssistanceDataMakesTheNextStartCold) {
  ModemHost host({.latency = 0, .coldStart = 3000, .hotStart = 400});
  host.Ask(kSingle);
  host.ReadUntil(kLastLines);
  host.Ask("AT+XLGNVRAM=7,0");
  host.Ask(kSingle);
  host.ReadUntil(kLastLines);
  EXPECT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{3000, 6000}));
}

TEST(LocationRequest, PeriodicReportsAtItsIntervalUntilStopped) {
  ModemHost host({.latency = 0, .coldStart = 2000});
  EXPECT_EQ(host.Ask(kEvery5Seconds), RequestId(1));
  EXPECT_EQ(host.modem.Snapshot().interval, 5000);
  host.ReadFor(12'500);
  EXPECT_EQ(host.Ask("AT+XLSRSTOP=0,1"), std::string("\r\n+XLSRSTOP: 1\r\n") + kOk);
  EXPECT_EQ(host.ReadFor(60'000), "");
  EXPECT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{2000, 7000, 12'000}));
  for (const SentFix& sent : host.Fixes()) {
    EXPECT_EQ(sent.requestId, 1u);
    EXPECT_FALSE(sent.single);
  }
}

TEST(LocationRequest, LongestIntervalIsTaken) {
  ModemHost host;
  host.Ask("AT+XLCSLSR=0,4294967295,,,,,4294967,,,2,,");
  EXPECT_EQ(host.modem.Snapshot().interval, 4294967000);
}

TEST(LocationRequest, NewRequestTakesThePlaceOfTheRunningOne) {
  ModemHost host({.latency = 0});
  host.Ask(kEverySecond);
  host.Ask(kSingle);
  host.ReadFor(60'000);
  ASSERT_EQ(host.Fixes().size(), 1u);
  EXPECT_EQ(host.Fixes().front().requestId, 2u);
}

TEST(LocationRequest, StopOfAnUnknownIdIsAnsweredAndStopsNothing) {
  ModemHost host;
  host.Ask(kEverySecond);
  EXPECT_EQ(host.Ask("AT+XLSRSTOP=0,0"), std::string("\r\n+XLSRSTOP: 0\r\n") + kOk);
  EXPECT_EQ(host.modem.Snapshot().running, 1u);
}

TEST(LocationRequest, StopOfAnUnknownIdIsAnErrorWhenSetUpSo) {
  ModemHost host({.unknownStopFails = true});
  host.Ask(kEverySecond);
  EXPECT_EQ(host.Ask("AT+XLSRSTOP=0,2"), kError);
  EXPECT_EQ(host.Ask("AT+XLSRSTOP=0,1"), std::string("\r\n+XLSRSTOP: 1\r\n") + kOk);
  EXPECT_EQ(host.Ask("AT+XLSRSTOP=0,1"), kError);
}

TEST(LocationRequest, IsRefusedWhileTheEngineIsOff) {
  ModemHost host({.engineOn = false});
  EXPECT_EQ(host.Ask(kSingle), kError);
  host.Ask("AT+XLCSSWITCH=1");
  EXPECT_EQ(host.Ask(kSingle), RequestId(1));
}

TEST(LocationRequest, EndsWithTheEngine) {
  for (const std::string off : {"AT+XLCSSWITCH=0,1", "AT+XLCSSHUTDOWN"}) {
    ModemHost host;
    host.Ask(kEverySecond);
    host.Ask(off);
    EXPECT_EQ(host.ReadFor(60'000), "") << off;
    EXPECT_EQ(host.Ask(kSingle), kError) << off;
  }
}

TEST(LocationRequest, PeriodicLeavesOutWhatFallsIntoAGap) {
  ModemHost host({.latency = 0, .coldStart = 1000}, std::make_unique<SteadyTrack>(2500, 4500));
  host.Ask(kEverySecond);
  host.ReadFor(6500);
  EXPECT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{1000, 2000, 5000, 6000}));
}

TEST(LocationRequest, FirstFixComesAsSoonAsThereIsReception) {
  ModemHost host({.latency = 0, .coldStart = 1000}, std::make_unique<SteadyTrack>(0, 9100));
  host.Ask(kSingle);
  host.ReadUntil(kLastLines);
  EXPECT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{9250}));
}

TEST(LocationRequest, SingleWithoutReceptionIsToldErrorAndEnds) {
  ModemHost host({.latency = 0, .fixTimeout = 30'000}, std::make_unique<SteadyTrack>(0, kForever));
  host.Ask(kSingle);
  EXPECT_EQ(host.ReadUntil("position\r\n"), "\r\n+XLCSLSR: ERROR: no position\r\n");
  EXPECT_EQ(host.clock.Now(), 30'000);
  EXPECT_EQ(host.modem.Snapshot().running, std::nullopt);
  EXPECT_EQ(host.modem.Snapshot().fixErrorsSent, 1u);
  EXPECT_EQ(host.ReadFor(600'000), "");
}

TEST(LocationRequest, PeriodicWithoutReceptionIsToldErrorOnceAndGoesOn) {
  ModemHost host({.latency = 0, .coldStart = 1000, .fixTimeout = 10'000},
                 std::make_unique<SteadyTrack>(2500, 40'500));
  host.Ask(kEverySecond);
  host.ReadFor(41'500);
  EXPECT_EQ(host.modem.Snapshot().fixErrorsSent, 1u);
  EXPECT_EQ(TimesOf(host.Fixes()), (std::vector<Millis>{1000, 2000, 41'000}));
}

TEST(LocationRequest, NeverToldErrorWhenTheTimeoutIsZero) {
  ModemHost host({.fixTimeout = 0}, std::make_unique<SteadyTrack>(0, kForever));
  host.Ask(kSingle);
  EXPECT_EQ(host.ReadFor(86'400'000), "");
  EXPECT_EQ(host.modem.Snapshot().running, 1u);
}

class FormAndShape : public testing::TestWithParam<std::tuple<int, ReportShape, bool>> {};

TEST_P(FormAndShape, SingleAndPeriodicReportsAreLaidOutSo) {
  const auto [form, shape, single] = GetParam();
  ModemHost host({.reportForm = form, .reportShape = shape});
  host.Ask(single ? kSingle : kEverySecond);
  const std::string text = host.ReadUntil(kLastLines);
  ASSERT_EQ(host.Fixes().size(), 1u);
  const SentFix sent = host.Fixes().front();
  EXPECT_EQ(sent.single, single);
  const std::string report = "\r\n" + WriteReport(sent.fix, form) + "\r\n";
  const std::string between = shape == ReportShape::kOkThenSentences ? kOk : "";
  EXPECT_EQ(text, report + between + "$GPXXX,first*00\r\n$GPXXX,second*00\r\n" + kOk);
}

INSTANTIATE_TEST_SUITE_P(All, FormAndShape,
                         testing::Combine(testing::Range(0, kReportForms),
                                          testing::Values(ReportShape::kOkThenSentences,
                                                          ReportShape::kSentencesOnly),
                                          testing::Bool()));

}  // namespace
}  // namespace bench
