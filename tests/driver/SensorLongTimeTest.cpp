// Days and weeks, on the workbench's clock.

#include <mutex>
#include <vector>

#include "tests/driver/RigTest.h"
#include "workbench/record/AtTranscript.h"
#include "workbench/record/Delivery.h"
#include "workbench/record/SentFixes.h"

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Millis kHour = 3'600'000;
constexpr Millis kDay = 24 * kHour;

class SensorLongTimeTest : public RigTest {
 protected:
  /// What fires of the timers is kept from here on.
  TraceOptions WatchTimers() {
    return {.listener = [this](const TraceRecord& record) {
      constexpr GUID kStateMachine = {
          0x00e09126, 0xccfd, 0x4506, {0x86, 0xe5, 0x30, 0xb1, 0xc6, 0xc6, 0x92, 0x3d}};
      constexpr USHORT kTimerFired = 22;
      if (!IsEqualGUID(record.message, kStateMachine) || record.number != kTimerFired) return;
      const std::lock_guard lock(mutex_);
      fired_.push_back(record.time);
    }};
  }
  std::vector<Millis> Fired() {
    const std::lock_guard lock(mutex_);
    return fired_;
  }

  SentFixes fixes_;
  AtTranscript transcript_{[this](const AtLine& line) { fixes_.OnLine(line); }};

 private:
  std::mutex mutex_;
  std::vector<Millis> fired_;
};

TEST_F(SensorLongTimeTest, ADayOfAFiveSecondSubscriptionIsDeliveredWhole) {
  RigOptions options;
  options.observers = {&fixes_, &transcript_};
  Start(std::move(options));
  const auto client = rig().NewClient();
  ASSERT_EQ(client->Connect(), S_OK);
  ASSERT_TRUE(client->SetReportInterval(5000).Accepted());
  ASSERT_EQ(client->Subscribe(), S_OK);
  clock_.SleepUntil(kDay);
  const DeliveryResult result =
      CheckDelivery(fixes_.All(), rig().sensors().StateHistory(), client->Reports(),
                    {.interval = 5000, .from = 0, .until = kDay});
  EXPECT_THAT(result.faults, IsEmpty());
  EXPECT_EQ(result.delivered, result.due);
  EXPECT_GT(result.due, 15'000U);
  client->Disconnect();
}

// Nobody ever armed them; without any wake-up the worker waits for good, so there is one.
TEST_F(SensorLongTimeTest, AnOffTimerThatIsCountedDownFiresAfterTwoToThe32LessOneMilliseconds) {
  RigOptions options;
  options.trace = WatchTimers();
  Start(std::move(options));  // its first event is the wake-up, at time 0
  constexpr Millis kFires = 0xFFFFFFFF;
  clock_.SleepUntil(kFires - 1);
  EXPECT_THAT(Fired(), IsEmpty());
  clock_.SleepUntil(kFires + 1);
  EXPECT_THAT(Fired(), ElementsAre(kFires, kFires, kFires, kFires));
}

}  // namespace
}  // namespace bench
