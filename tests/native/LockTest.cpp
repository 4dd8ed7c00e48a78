// Critical sections and slim locks of the stand-in.
#include <gtest/gtest.h>
#include <windows.h>

#include <thread>
#include <vector>

namespace {

class NativeSection : public testing::Test {
 protected:
  NativeSection() { InitializeCriticalSectionAndSpinCount(&section_, 0); }
  ~NativeSection() override { DeleteCriticalSection(&section_); }

  bool AnotherThreadCanEnter() {
    bool entered = false;
    std::thread([&] {
      entered = TryEnterCriticalSection(&section_);
      if (entered) LeaveCriticalSection(&section_);
    }).join();
    return entered;
  }

  CRITICAL_SECTION section_;
};

TEST_F(NativeSection, ItsOwnerEntersAgainAndIsInsideUntilTheLastLeave) {
  EnterCriticalSection(&section_);
  EnterCriticalSection(&section_);
  EXPECT_TRUE(TryEnterCriticalSection(&section_));
  LeaveCriticalSection(&section_);
  LeaveCriticalSection(&section_);
  EXPECT_FALSE(AnotherThreadCanEnter());
  LeaveCriticalSection(&section_);
  EXPECT_TRUE(AnotherThreadCanEnter());
}

TEST_F(NativeSection, KeepsTheIncrementsOfManyThreadsApart) {
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 1000; ++round) {
        EnterCriticalSection(&section_);
        ++count;
        LeaveCriticalSection(&section_);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, 4000);
}

TEST(NativeSlimLock, KeepsTheIncrementsOfManyThreadsApart) {
  static constinit SRWLOCK lock = SRWLOCK_INIT;
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 1000; ++round) {
        AcquireSRWLockExclusive(&lock);
        ++count;
        ReleaseSRWLockExclusive(&lock);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  AcquireSRWLockShared(&lock);
  EXPECT_EQ(count, 4000);
  ReleaseSRWLockShared(&lock);
}

}  // namespace
