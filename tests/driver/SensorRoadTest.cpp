// Reports at the clients' intervals, with the whole simulated modem at the other end.

#include <algorithm>

#include "tests/driver/RigTest.h"
#include "workbench/modem/ModemObserver.h"

namespace bench {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

// When each location request was written.
class Requests final : public ModemObserver {
 public:
  void OnCommand(Millis at, std::string_view line) override {
    const std::lock_guard lock(mutex_);
    if (line.starts_with("AT+XLCSLSR=")) times_.push_back(at);
  }
  std::vector<Millis> After(Millis time) const {
    const std::lock_guard lock(mutex_);
    std::vector<Millis> later;
    std::ranges::copy_if(times_, std::back_inserter(later), [&](Millis at) { return at > time; });
    return later;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Millis> times_;
};

// A receiver that has a fix each second and never loses it.
class SteadyTrack final : public TrackSource {
 public:
  std::optional<GnssFix> At(Millis t) const override {
    GnssFix fix;
    fix.time = Start() + std::chrono::floor<std::chrono::seconds>(std::chrono::milliseconds(t));
    fix.latitude = 48.125;
    fix.longitude = 11.5;
    fix.sentences = {"$GPGGA,,,,,,0,,,,,,,,*66"};
    return fix;
  }
  Utc Start() const override {
    return std::chrono::sys_days(std::chrono::year(2014) / std::chrono::July / 3);
  }
  Millis Length() const override { return kForever; }
};

constexpr std::int64_t kSecond = 10'000'000;  // of a FILETIME

std::int64_t Ticks(FILETIME time) {
  return static_cast<std::int64_t>((std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime);
}

// Milliseconds between the fix times of reports that follow each other.
std::vector<Millis> Spacing(const std::vector<Report>& reports) {
  std::vector<Millis> spacing;
  for (std::size_t i = 1; i < reports.size(); ++i) {
    const auto from = Ticks(reports[i - 1].timestamp.value());
    const auto to = Ticks(reports[i].timestamp.value());
    spacing.push_back((to - from) * 1000 / kSecond);
  }
  return spacing;
}

std::vector<Millis> Differences(const std::vector<Millis>& times) {
  std::vector<Millis> differences;
  for (std::size_t i = 1; i < times.size(); ++i) differences.push_back(times[i] - times[i - 1]);
  return differences;
}

class SensorRoad : public RigTest {
 protected:
  // Each fix after the first takes half a second.
  void StartRoad(Millis firstFixTakes = 500) {
    RigOptions options;
    options.modem.coldStart = firstFixTakes;
    options.modem.hotStart = 500;
    options.observers = {&requests_};
    options.track = std::make_unique<SteadyTrack>();
    Start(std::move(options));
  }
  std::unique_ptr<ClientSession> Subscriber(ULONG interval) {
    auto client = rig().NewClient();
    EXPECT_EQ(client->Connect(), S_OK);
    EXPECT_TRUE(client->SetReportInterval(interval).Accepted());
    EXPECT_EQ(client->Subscribe(), S_OK);
    return client;
  }

  Requests requests_;
};

struct Case {
  ULONG interval;  // as the client sets it, ms
  Millis spacing;  // of its reports
};
class SensorRoadAtAnInterval : public SensorRoad, public testing::WithParamInterface<Case> {};

TEST_P(SensorRoadAtAnInterval, TheReportsAreThatFarApartToTheSecond) {
  constexpr std::size_t kReports = 6;
  StartRoad();
  const auto client = Subscriber(GetParam().interval);
  ASSERT_TRUE(client->WaitForReports(kReports, clock_.Now() + 600'000));
  const auto spacing = Spacing(client->Reports());
  EXPECT_THAT(spacing, SizeIs(kReports - 1));
  EXPECT_THAT(spacing, Each(GetParam().spacing));
}

std::string CaseName(const testing::TestParamInfo<Case>& tested) {
  return std::to_string(tested.param.interval);
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, SensorRoadAtAnInterval,
                         testing::Values(Case{0, 1000}, Case{1000, 1000}, Case{5000, 5000},
                                         Case{8000, 8000}, Case{8001, 8000}, Case{9000, 9000},
                                         Case{60'000, 60'000}),
                         CaseName);

TEST_F(SensorRoad, AtALongIntervalEachFixIsAskedForOnItsOwnAndTheEngineRestsInBetween) {
  StartRoad();
  const auto client = Subscriber(60'000);
  const Millis subscribed = clock_.Now();
  ASSERT_TRUE(client->WaitForReports(3, subscribed + 600'000));
  const auto asked = requests_.After(subscribed + 30'000);
  EXPECT_THAT(asked, SizeIs(3));
  EXPECT_THAT(Differences(asked), Each(60'000));
  EXPECT_FALSE(rig().modem().Snapshot().running.has_value());
}

// The second fix is younger than the interval when it comes, and the next one comes a whole
// interval later.
TEST_F(SensorRoad, AtALongIntervalAFirstFixThatTookLongerThanTheNextOneCostsAReport) {
  StartRoad(2000);
  const auto client = Subscriber(9000);
  ASSERT_TRUE(client->WaitForReports(4, clock_.Now() + 600'000));
  EXPECT_THAT(Spacing(client->Reports()), ElementsAre(16'000, 9000, 9000));
}

TEST_F(SensorRoad, OfTwoClientsBothGetTheFastOnesReports) {
  StartRoad();
  const auto slow = Subscriber(8000);
  const auto fast = Subscriber(2000);
  ASSERT_TRUE(fast->WaitForReports(5, clock_.Now() + 60'000));
  clock_.SleepFor(1);
  EXPECT_EQ(slow->Reports().size(), fast->Reports().size());
  EXPECT_THAT(Spacing(slow->Reports()), Each(2000));
}

TEST_F(SensorRoad, WhenTheFastClientLeavesTheSlowOnesIntervalIsBack) {
  StartRoad();
  const auto slow = Subscriber(5000);
  auto fast = Subscriber(1000);
  ASSERT_TRUE(fast->WaitForReports(3, clock_.Now() + 60'000));
  fast.reset();
  clock_.SleepFor(1);
  const std::size_t before = slow->Reports().size();
  ASSERT_TRUE(slow->WaitForReports(before + 5, clock_.Now() + 60'000));
  const auto reports = slow->Reports();
  const std::vector<Report> later(reports.begin() + static_cast<std::ptrdiff_t>(before),
                                  reports.end());
  EXPECT_THAT(Spacing(later), Each(5000));
}

TEST_F(SensorRoad, AnEngineThatLosesItsFixIsNoticedAtTwiceTheIntervalAndComesBack) {
  StartRoad();
  const auto client = Subscriber(2000);
  ASSERT_TRUE(client->WaitForReports(2, clock_.Now() + 60'000));
  rig().modem().Inject(
      {.timed = {{.action = ModemAction::kLoseFix, .amount = 20'000}}, .reactions = {}});
  const Millis last = client->Reports().back().time;
  ASSERT_TRUE(client->WaitForState(SENSOR_STATE_INITIALIZING, clock_.Now() + 60'000));
  EXPECT_EQ(client->States().back().time, last + 4000);
  EXPECT_TRUE(client->WaitForState(SENSOR_STATE_READY, clock_.Now() + 60'000));
}

TEST_F(SensorRoad, AStragglingReportAfterAStopReachesNobody) {
  StartRoad();
  const auto client = Subscriber(2000);
  ASSERT_TRUE(client->WaitForReports(2, clock_.Now() + 60'000));
  rig().modem().Inject(
      {.timed = {},
       .reactions = {
           {.command = "AT+XLSRSTOP", .reaction = Reaction::kStraggle, .count = 1, .delay = 500}}});
  EXPECT_EQ(client->Unsubscribe(), S_OK);
  clock_.SleepFor(100);
  const std::size_t before = rig().sensors().EventHistory().size();
  clock_.SleepFor(2000);
  EXPECT_EQ(rig().modem().Snapshot().stragglersSent, 1U);
  EXPECT_EQ(rig().sensors().EventHistory().size(), before);
  EXPECT_EQ(client->Subscribe(), S_OK);
  EXPECT_TRUE(client->WaitForReports(4, clock_.Now() + 60'000));
}

}  // namespace
}  // namespace bench
