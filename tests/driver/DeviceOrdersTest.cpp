// Every legal order of the framework's callbacks, with the device pulled out after each step.

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/driver/RigTest.h"

namespace bench {
namespace {

enum class Step {
  kPrepare,
  kD0Entry,
  kInit,
  kRestart,
  kSuspend,
  kD0Exit,
  kFlush,
  kCleanup,
  kRelease
};

// A start and two sleeps; a device may have to go down after any of these.
constexpr std::array kWayUp = {Step::kPrepare, Step::kD0Entry, Step::kInit,    Step::kSuspend,
                               Step::kD0Exit,  Step::kD0Entry, Step::kRestart, Step::kSuspend,
                               Step::kD0Exit,  Step::kD0Entry, Step::kRestart};

/// The legal way down after the first `count` steps of the way up.
std::vector<Step> WayDown(std::size_t count) {
  if (count == 0) return {};
  switch (kWayUp[count - 1]) {
    case Step::kPrepare:
      return {Step::kRelease};
    case Step::kD0Entry:
      if (count == 2) return {Step::kD0Exit, Step::kRelease};
      [[fallthrough]];
    case Step::kSuspend:
      return {Step::kD0Exit, Step::kFlush, Step::kCleanup, Step::kRelease};
    case Step::kD0Exit:
      return {Step::kFlush, Step::kCleanup, Step::kRelease};
    default:
      return {Step::kSuspend, Step::kD0Exit, Step::kFlush, Step::kCleanup, Step::kRelease};
  }
}

HRESULT Do(Host& host, Step step) {
  switch (step) {
    case Step::kPrepare:
      return host.PrepareHardware();
    case Step::kD0Entry:
      return host.D0Entry(WdfPowerDeviceD3);
    case Step::kInit:
      return host.SelfManagedIoInit();
    case Step::kRestart:
      return host.SelfManagedIoRestart();
    case Step::kSuspend:
      return host.SelfManagedIoSuspend();
    case Step::kD0Exit:
      return host.D0Exit(WdfPowerDeviceD3);
    case Step::kFlush:
      host.SelfManagedIoFlush();
      return S_OK;
    case Step::kCleanup:
      host.SelfManagedIoCleanup();
      return S_OK;
    case Step::kRelease:
      return host.ReleaseHardware();
  }
  return E_UNEXPECTED;
}

class DeviceOrders : public testing::TestWithParam<std::size_t> {
 protected:
  static constexpr Millis kPause = 700;  // enough for some of the bring-up, not for all of it

  /// One life; pulled out after that many steps, or never.
  static void Live(const std::vector<Step>& order, std::size_t pulledOutAfter) {
    VirtualClock clock;
    Rig rig(clock);
    ASSERT_EQ(rig.host().AddDevice(), S_OK);
    std::size_t done = 0;
    if (pulledOutAfter == 0) rig.host().SurpriseRemoval();
    for (const Step step : order) {
      const HRESULT result = Do(rig.host(), step);
      ++done;
      clock.SleepFor(kPause);
      // Without a device the driver refuses to go up; the way down goes on.
      if (FAILED(result) && step <= Step::kRestart) {
        EXPECT_EQ(result, kShutdownInProgress);
        EXPECT_LE(pulledOutAfter, done);
        break;
      }
      if (done == pulledOutAfter) rig.host().SurpriseRemoval();
    }
    rig.Shutdown();  // with what is left of the way down
    EXPECT_THAT(rig.Findings(), testing::IsEmpty());
  }
};

TEST_P(DeviceOrders, TheDriverCopesWithTheWayDownAndWithAPullAfterEachStep) {
  std::vector<Step> order(kWayUp.begin(), kWayUp.begin() + static_cast<std::ptrdiff_t>(GetParam()));
  for (const Step step : WayDown(GetParam())) order.push_back(step);
  constexpr std::size_t kNever = 1000;
  Live(order, kNever);
  for (std::size_t pull = 0; pull <= order.size(); ++pull) {
    SCOPED_TRACE("pulled out after step " + std::to_string(pull));
    Live(order, pull);
  }
}

INSTANTIATE_TEST_SUITE_P(AfterEachStepUp, DeviceOrders,
                         testing::Range(std::size_t{0}, kWayUp.size() + 1));

}  // namespace
}  // namespace bench
