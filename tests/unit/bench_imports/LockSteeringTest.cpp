#include <atomic>
#include <vector>

#include "tests/unit/bench_imports/ModuleFixture.h"

namespace bench {
namespace {

class LockSteeringTest : public LoadedModuleTest {
 protected:
  void SetUp() override {
    Load();
    ASSERT_TRUE(Dll().initSection(&section_));
  }
  void TearDown() override { Dll().deleteSection(&section_); }

  CRITICAL_SECTION section_ = {};
};

TEST_F(LockSteeringTest, AThreadBeforeALockDoesNotHoldUpTheOwnersWait) {
  Millis entered = 0;
  Thread owner(clock_, [&] {
    Dll().enter(&section_);
    Dll().sleep(10'000);
    Dll().leave(&section_);
    Dll().sleep(5'000);
  });
  Thread other(clock_, [&] {
    Dll().sleep(1);
    Dll().enter(&section_);
    entered = clock_.Now();
    Dll().leave(&section_);
  });
  other.Join();
  owner.Join();
  EXPECT_EQ(entered, 10'000) << "time must not pass a thread that a lock has let go";
  EXPECT_EQ(clock_.Now(), 15'000);
}

TEST_F(LockSteeringTest, ASlimLockIsWaitedForLikewise) {
  SRWLOCK lock = SRWLOCK_INIT;
  Millis entered = 0;
  Dll().acquireSlim(&lock);
  Thread other(clock_, [&] {
    Dll().acquireSlim(&lock);
    entered = clock_.Now();
    Dll().releaseSlim(&lock);
  });
  Dll().sleep(400);
  Dll().releaseSlim(&lock);
  other.Join();
  EXPECT_EQ(entered, 400);
}

TEST_F(LockSteeringTest, TheOwnerEntersAgainAndFreesTheLockWithTheLastLeave) {
  Millis entered = 0;
  Dll().enter(&section_);
  Dll().enter(&section_);
  Thread other(clock_, [&] {
    Dll().enter(&section_);
    entered = clock_.Now();
    Dll().leave(&section_);
  });
  Dll().sleep(100);
  Dll().leave(&section_);
  Dll().sleep(100);
  Dll().leave(&section_);
  other.Join();
  EXPECT_EQ(entered, 200);
}

TEST_F(LockSteeringTest, TryEnterDoesNotWait) {
  BOOL taken = TRUE;
  Dll().enter(&section_);
  Thread other(clock_, [&] { taken = Dll().tryEnter(&section_); });
  other.Join();
  EXPECT_FALSE(taken);
  Dll().leave(&section_);
  EXPECT_TRUE(Dll().tryEnter(&section_));
  Dll().leave(&section_);
}

TEST_F(LockSteeringTest, SeveralWaitersEnterOneAtATimeAtTheSameMoment) {
  std::atomic<int> inside = 0;
  int entered = 0;
  Dll().enter(&section_);
  std::vector<Thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back(clock_, [&] {
      Dll().enter(&section_);
      EXPECT_EQ(++inside, 1);
      ++entered;
      --inside;
      EXPECT_EQ(clock_.Now(), 50);
      Dll().leave(&section_);
    });
  }
  Dll().sleep(50);
  Dll().leave(&section_);
  threads.clear();
  EXPECT_EQ(entered, 8);
}

TEST_F(LockSteeringTest, ContentionWithSleepsInsideAddsUp) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 250;
  int inside = 0;
  std::vector<Thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back(clock_, [&] {
      for (int round = 0; round < kRounds; ++round) {
        Dll().enter(&section_);
        EXPECT_EQ(++inside, 1);
        Dll().sleep(3);
        --inside;
        Dll().leave(&section_);
      }
    });
  }
  threads.clear();
  EXPECT_EQ(clock_.Now(), 3 * kThreads * kRounds) << "the lock was never idle, nor shared";
}

TEST_F(LockSteeringTest, TheLastErrorSurvivesEnteringAndLeaving) {
  DWORD error = 0;
  Dll().enter(&section_);
  Thread other(clock_, [&] {
    SetLastError(4711);
    Dll().enter(&section_);
    Dll().leave(&section_);
    error = GetLastError();
  });
  Dll().sleep(5);
  SetLastError(1174);
  Dll().leave(&section_);
  EXPECT_EQ(GetLastError(), 1174u);
  other.Join();
  EXPECT_EQ(error, 4711u);
}

}  // namespace
}  // namespace bench
