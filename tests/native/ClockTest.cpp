// The stand-in's time: scaled, virtual, and as dates.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <tuple>

#include "tests/native/Native.h"
#include "workbench/clock/VirtualClock.h"

namespace {

/// Puts the kernel on a virtual clock for one test.
class OnVirtualClock : public testing::Test {
 protected:
  OnVirtualClock() { native::UseClock(&clock_); }
  ~OnVirtualClock() override { native::UseClock(nullptr); }

  bench::VirtualClock clock_;
};

auto Fields(const SYSTEMTIME& time) {
  return std::tuple(time.wYear, time.wMonth, time.wDay, time.wDayOfWeek, time.wHour, time.wMinute,
                    time.wSecond, time.wMilliseconds);
}

TEST(NativeScaledClock, AWaitTakesItsTimeByTheTickCountAndLessByTheMachine) {
  using std::chrono::steady_clock;
  const HANDLE never = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  native::SetClockScale(1000);
  const ULONGLONG ticks = GetTickCount64();
  const auto start = steady_clock::now();
  EXPECT_EQ(WaitForSingleObject(never, 60000), WAIT_TIMEOUT);
  const auto took = steady_clock::now() - start;
  EXPECT_GE(GetTickCount64() - ticks, 60000u);
  native::SetClockScale(1);
  EXPECT_GE(took, std::chrono::milliseconds(59));
  CloseHandle(never);
}

TEST(NativeScaledClock, AChangeOfScaleLetsTheTickCountGoOnFromWhereItWas) {
  native::SetClockScale(1000);
  Sleep(100000);
  const ULONGLONG fast = GetTickCount64();
  native::SetClockScale(1);
  EXPECT_GE(GetTickCount64(), fast);
}

TEST_F(OnVirtualClock, AWaitOfADayTakesExactlyADay) {
  const HANDLE never = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(WaitForSingleObject(never, 86'400'000), WAIT_TIMEOUT);
  EXPECT_EQ(GetTickCount64(), 86'400'000u);
  Sleep(500);
  EXPECT_EQ(GetTickCount64(), 86'400'500u);
  CloseHandle(never);
}

TEST_F(OnVirtualClock, TimeStandsStillWhileAThreadOfTheKernelRuns) {
  struct Shared {
    HANDLE done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ULONGLONG seen = 0;
  } shared;
  const HANDLE thread = CreateThread(
      nullptr, 0,
      [](void* parameter) -> DWORD {
        auto& it = *static_cast<Shared*>(parameter);
        Sleep(250);
        it.seen = GetTickCount64();
        SetEvent(it.done);
        return 0;
      },
      &shared, 0, nullptr);
  EXPECT_EQ(WaitForSingleObject(shared.done, 1000), WAIT_OBJECT_0);
  EXPECT_EQ(shared.seen, 250u);
  EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
  CloseHandle(thread);
  CloseHandle(shared.done);
}

TEST_F(OnVirtualClock, AThreadThatWaitsForACriticalSectionDoesNotHoldTimeUp) {
  struct Shared {
    CRITICAL_SECTION section;
    ULONGLONG entered = 0;
  } shared;
  InitializeCriticalSectionAndSpinCount(&shared.section, 0);
  EnterCriticalSection(&shared.section);
  const HANDLE thread = CreateThread(
      nullptr, 0,
      [](void* parameter) -> DWORD {
        auto& it = *static_cast<Shared*>(parameter);
        EnterCriticalSection(&it.section);
        it.entered = GetTickCount64();
        LeaveCriticalSection(&it.section);
        return 0;
      },
      &shared, 0, nullptr);
  Sleep(1800);
  LeaveCriticalSection(&shared.section);
  WaitForSingleObject(thread, INFINITE);
  EXPECT_EQ(shared.entered, 1800u);
  CloseHandle(thread);
  DeleteCriticalSection(&shared.section);
}

TEST_F(OnVirtualClock, TheTickCountStartsWhereItWasSet) {
  native::SetStartTicks(0x1'0000'0000);
  Sleep(7);
  EXPECT_EQ(GetTickCount64(), 0x1'0000'0007u);
  native::SetStartTicks(0);
}

TEST_F(OnVirtualClock, SystemTimeStartsWhereItWasSetAndFollowsTheClock) {
  native::SetStartTime({2012, 12, 0, 31, 23, 59, 58, 750});
  Sleep(1500);
  SYSTEMTIME time = {};
  GetSystemTime(&time);
  EXPECT_EQ(Fields(time), Fields({2013, 1, 2, 1, 0, 0, 0, 250}));
}

TEST(NativeSystemTime, AKnownDateHasItsKnownFileTime) {
  const SYSTEMTIME date = {1970, 1, 0, 1, 0, 0, 0, 0};
  FILETIME time = {};
  ASSERT_TRUE(SystemTimeToFileTime(&date, &time));
  EXPECT_EQ(time.dwHighDateTime, 0x019DB1DEu);
  EXPECT_EQ(time.dwLowDateTime, 0xD53E8000u);
}

TEST(NativeSystemTime, ALeapDayGoesThereAndBack) {
  const SYSTEMTIME date = {2016, 2, 1, 29, 12, 34, 56, 789};
  FILETIME time = {};
  SYSTEMTIME back = {};
  ASSERT_TRUE(SystemTimeToFileTime(&date, &time));
  ASSERT_TRUE(FileTimeToSystemTime(&time, &back));
  EXPECT_EQ(Fields(back), Fields(date));
}

TEST(NativeSystemTime, ADateThatDoesNotExistIsRefusedWithError87) {
  const SYSTEMTIME bad[] = {
      {0, 0, 0, 0, 0, 0, 0, 0},     {2015, 13, 0, 1, 0, 0, 0, 0},   {2015, 2, 0, 30, 0, 0, 0, 0},
      {2015, 2, 0, 29, 0, 0, 0, 0}, {2015, 1, 0, 1, 24, 0, 0, 0},   {2015, 1, 0, 1, 0, 60, 0, 0},
      {2015, 1, 0, 1, 0, 0, 60, 0}, {2015, 1, 0, 1, 0, 0, 0, 1000}, {1600, 12, 0, 31, 0, 0, 0, 0},
      {30828, 1, 0, 1, 0, 0, 0, 0},
  };
  for (const SYSTEMTIME& date : bad) {
    FILETIME time = {};
    SetLastError(0);
    EXPECT_FALSE(SystemTimeToFileTime(&date, &time)) << date.wYear << '-' << date.wMonth;
    EXPECT_EQ(GetLastError(), 87u);
  }
}

}  // namespace
