// Virtual time: it stands still while anybody works, and jumps when all wait.

#include "workbench/clock/VirtualClock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace bench {
namespace {

constexpr Millis kDay = 86'400'000;

TEST(VirtualClock, TimeJumpsToTheNextDeadlineWhenAllWait) {
  VirtualClock clock;
  Millis woke = 0;
  {
    Thread other(clock, [&] {
      clock.SleepFor(500);
      woke = clock.Now();
      clock.SleepFor(kDay);
    });
    clock.SleepFor(1000);
    EXPECT_EQ(clock.Now(), 1000);
    EXPECT_EQ(woke, 500);
  }
  EXPECT_EQ(clock.Now(), kDay + 500);
}

TEST(VirtualClock, AReadyWaitTakesNoTime) {
  VirtualClock clock;
  EXPECT_TRUE(clock.WaitUntil(kForever, [] { return true; }));
  EXPECT_FALSE(clock.WaitUntil(clock.Now(), [] { return false; }));
  EXPECT_EQ(clock.Now(), 0);
}

TEST(VirtualClock, ANotifiedWaitEndsBeforeItsDeadline) {
  VirtualClock clock;
  std::atomic<bool> set{false};
  Thread setter(clock, [&] {
    clock.SleepFor(300);
    set = true;
    clock.Notify();
  });
  EXPECT_TRUE(clock.WaitUntil(1000, [&] { return set.load(); }));
  EXPECT_EQ(clock.Now(), 300);
}

TEST(VirtualClock, WhatIsReadyOnceIsTakenOnce) {
  VirtualClock clock;
  std::atomic<int> items{0};
  std::atomic<int> taken{0};
  const auto take = [&] {
    if (items == 0) return false;
    --items;
    return true;
  };
  Thread first(clock, [&] { taken += clock.WaitUntil(1000, take) ? 1 : 0; });
  Thread second(clock, [&] { taken += clock.WaitUntil(1000, take) ? 1 : 0; });
  clock.SleepFor(100);
  items = 1;
  clock.Notify();
  first.Join();
  second.Join();
  EXPECT_EQ(taken, 1);
  EXPECT_EQ(items, 0);
  EXPECT_EQ(clock.Now(), 1000);
}

TEST(VirtualClock, AThreadThatIsNoParticipantDoesNotHoldTimeUp) {
  VirtualClock clock;
  std::atomic<bool> stop{false};
  std::thread outsider([&] {
    while (!stop) std::this_thread::yield();
  });
  clock.SleepFor(kDay);
  EXPECT_EQ(clock.Now(), kDay);
  stop = true;
  outsider.join();
}

TEST(VirtualClock, AStartedThreadHoldsTimeUpBeforeItRuns) {
  VirtualClock clock;
  Millis seen = -1;
  Thread late(clock, [&] { seen = clock.Now(); });
  clock.SleepFor(1000);
  EXPECT_EQ(seen, 0);
}

}  // namespace
}  // namespace bench
