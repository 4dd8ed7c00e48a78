#include "workbench/imports/TimeSteering.h"

#include <atomic>
#include <mutex>
#include <vector>

#include "tests/unit/bench_imports/ModuleFixture.h"
#include "workbench/clock/RealClock.h"

namespace bench {
namespace {

using TimeSteeringTest = LoadedModuleTest;
constexpr Millis kDay = 86'400'000;

TEST_F(TimeSteeringTest, AllClocksOfTheModuleFollowTheVirtualClock) {
  redirector_.Time().SetStartTicks(5'000);
  redirector_.Time().SetStartUtc({.wYear = 2014,
                                  .wMonth = 7,
                                  .wDayOfWeek = 0,
                                  .wDay = 5,
                                  .wHour = 9,
                                  .wMinute = 3,
                                  .wSecond = 7,
                                  .wMilliseconds = 0});
  const double counter = Dll().counterSeconds();
  clock_.SleepFor(3'661'001);
  EXPECT_EQ(Dll().ticks(), 3'666'001u);
  EXPECT_EQ(Dll().ticks32(), 3'666'001u);
  EXPECT_NEAR(Dll().counterSeconds() - counter, 3661.001, 1e-6);
  SYSTEMTIME utc = {};
  Dll().systemTime(&utc);
  EXPECT_EQ(utc.wYear, 2014);
  EXPECT_EQ(utc.wMonth, 7);
  EXPECT_EQ(utc.wDay, 5);
  EXPECT_EQ(utc.wDayOfWeek, 6);  // a Saturday
  EXPECT_EQ(utc.wHour, 10);
  EXPECT_EQ(utc.wMinute, 4);
  EXPECT_EQ(utc.wSecond, 8);
  EXPECT_EQ(utc.wMilliseconds, 1);
  FILETIME fileTime = {};
  Dll().fileTime(&fileTime);
  SYSTEMTIME same = {};
  FileTimeToSystemTime(&fileTime, &same);
  EXPECT_EQ(same.wMilliseconds, 1);
}

TEST_F(TimeSteeringTest, TheShortTickCountWrapsAfter49Days) {
  redirector_.Time().SetStartTicks(0xffff'fff0);
  Dll().sleep(0x20);
  EXPECT_EQ(Dll().ticks32(), 0x10u);
  EXPECT_EQ(Dll().ticks(), 0x1'0000'0010u);
}

TEST_F(TimeSteeringTest, SleepTakesItsTimeToTheMillisecond) {
  Dll().sleep(300);
  EXPECT_EQ(clock_.Now(), 300);
  Dll().sleep(1);
  EXPECT_EQ(clock_.Now(), 301);
}

TEST_F(TimeSteeringTest, AWaitThatNobodyEndsTimesOutAtItsDeadline) {
  const HANDLE event = Dll().createEvent(FALSE);
  EXPECT_EQ(Dll().waitOne(event, 1'800), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(clock_.Now(), 1'800);
  EXPECT_EQ(Dll().waitOne(event, 0), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(clock_.Now(), 1'800);
  Dll().closeHandle(event);
}

TEST_F(TimeSteeringTest, AnEventEndsAWaitAtTheMomentItIsSet) {
  const HANDLE event = Dll().createEvent(FALSE);
  Millis woken = 0;
  DWORD result = WAIT_FAILED;
  Thread waiter(clock_, [&] {
    result = Dll().waitOne(event, INFINITE);
    woken = clock_.Now();
  });
  clock_.SleepFor(777);
  Dll().setEvent(event);
  waiter.Join();
  EXPECT_EQ(result, DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(woken, 777);
  EXPECT_EQ(Dll().waitOne(event, 0), DWORD{WAIT_TIMEOUT}) << "an auto-reset event is taken once";
  Dll().closeHandle(event);
}

TEST_F(TimeSteeringTest, AnEventSetOutsideTheModuleWakesItOnceToldOf) {
  const HANDLE event = Dll().createEvent(TRUE);
  DWORD result = WAIT_FAILED;
  Thread waiter(clock_, [&] { result = Dll().waitOne(event, 10'000); });
  clock_.SleepFor(50);
  SetEvent(event);
  redirector_.Time().Signalled();
  waiter.Join();
  EXPECT_EQ(result, DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(clock_.Now(), 50);
  Dll().closeHandle(event);
}

TEST_F(TimeSteeringTest, AnAutoResetEventWakesOneOfTwoWaiters) {
  const HANDLE event = Dll().createEvent(FALSE);
  std::atomic<int> got = 0;
  const auto body = [&] { got += Dll().waitOne(event, 1'000) == WAIT_OBJECT_0 ? 1 : 0; };
  Thread first(clock_, body);
  Thread second(clock_, body);
  clock_.SleepFor(10);
  Dll().setEvent(event);
  first.Join();
  second.Join();
  EXPECT_EQ(got, 1);
  EXPECT_EQ(clock_.Now(), 1'000);
  Dll().closeHandle(event);
}

TEST_F(TimeSteeringTest, AWaitForManyNamesTheFirstThatIsSet) {
  const HANDLE handles[] = {Dll().createEvent(TRUE), Dll().createEvent(TRUE)};
  Dll().setEvent(handles[1]);
  EXPECT_EQ(Dll().waitMany(2, handles, FALSE, 100), DWORD{WAIT_OBJECT_0 + 1});
  Dll().setEvent(handles[0]);
  EXPECT_EQ(Dll().waitMany(2, handles, FALSE, 100), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(clock_.Now(), 0);
  for (const HANDLE handle : handles) Dll().closeHandle(handle);
}

TEST_F(TimeSteeringTest, AWaitForAllTakesNothingUntilAllAreSet) {
  const HANDLE handles[] = {Dll().createEvent(FALSE), Dll().createEvent(FALSE)};
  Dll().setEvent(handles[0]);
  EXPECT_EQ(Dll().waitMany(2, handles, TRUE, 100), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(clock_.Now(), 100);
  Dll().setEvent(handles[1]);
  EXPECT_EQ(Dll().waitMany(2, handles, TRUE, 100), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(Dll().waitOne(handles[0], 0), DWORD{WAIT_TIMEOUT});
  for (const HANDLE handle : handles) Dll().closeHandle(handle);
}

TEST_F(TimeSteeringTest, ABadHandleFailsTheWaitWithItsError) {
  const HANDLE event = Dll().createEvent(FALSE);
  Dll().closeHandle(event);
  SetLastError(0);
  EXPECT_EQ(Dll().waitOne(event, 1'000), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(clock_.Now(), 0);
}

TEST_F(TimeSteeringTest, ABadHandleCountFailsTheWait) {
  std::vector<HANDLE> handles(MAXIMUM_WAIT_OBJECTS + 1, GetCurrentProcess());
  EXPECT_EQ(Dll().waitMany(0, handles.data(), FALSE, 10), WAIT_FAILED);
  EXPECT_EQ(Dll().waitMany(MAXIMUM_WAIT_OBJECTS + 1, handles.data(), FALSE, 10), WAIT_FAILED);
}

TEST_F(TimeSteeringTest, TheEndOfAThreadWakesAWaitForItsHandle) {
  auto body = [&] { Dll().sleep(250); };
  const HANDLE thread = StartInModule(Dll(), body);
  EXPECT_EQ(Dll().waitOne(thread, INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(clock_.Now(), 250);
  EXPECT_EQ(WaitForSingleObject(thread, 0), DWORD{WAIT_OBJECT_0}) << "it has really ended";
  Dll().closeHandle(thread);
}

TEST_F(TimeSteeringTest, TheEndOfAThreadCountsAmongSeveralHandles) {
  auto body = [&] { Dll().sleep(250); };
  const HANDLE handles[] = {Dll().createEvent(TRUE), StartInModule(Dll(), body)};
  EXPECT_EQ(Dll().waitMany(2, handles, TRUE, 500), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(Dll().waitMany(2, handles, FALSE, 500), DWORD{WAIT_OBJECT_0 + 1});
  Dll().setEvent(handles[0]);
  EXPECT_EQ(Dll().waitMany(2, handles, FALSE, 500), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(Dll().waitMany(2, handles, TRUE, 500), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(clock_.Now(), 500);
  for (const HANDLE handle : handles) Dll().closeHandle(handle);
}

TEST_F(TimeSteeringTest, AWaitForAllEndsWithItsLastThread) {
  auto shortBody = [&] { Dll().sleep(100); };
  auto longBody = [&] { Dll().sleep(900); };
  const HANDLE handles[] = {StartInModule(Dll(), shortBody), StartInModule(Dll(), longBody)};
  EXPECT_EQ(Dll().waitMany(2, handles, TRUE, INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(clock_.Now(), 900);
  for (const HANDLE handle : handles) Dll().closeHandle(handle);
}

TEST_F(TimeSteeringTest, TimeDoesNotPassAThreadThatIsAboutToStart) {
  for (int i = 0; i < 100; ++i) {
    const Millis started = clock_.Now();
    Millis seen = -1;
    auto body = [&] { seen = clock_.Now(); };
    const HANDLE thread = StartInModule(Dll(), body);
    Dll().sleep(10);
    EXPECT_EQ(seen, started);
    Dll().waitOne(thread, INFINITE);
    Dll().closeHandle(thread);
  }
}

TEST_F(TimeSteeringTest, ASuspendedThreadRunsWhenItIsResumed) {
  std::atomic<bool> ran = false;
  const HANDLE thread = Dll().createThread(
      [](void* flag) -> DWORD {
        *static_cast<std::atomic<bool>*>(flag) = true;
        return 0;
      },
      &ran, CREATE_SUSPENDED);
  EXPECT_FALSE(ran);
  ResumeThread(thread);
  EXPECT_EQ(Dll().waitOne(thread, INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_TRUE(ran);
  Dll().closeHandle(thread);
}

TEST_F(TimeSteeringTest, ASpinLoopLetsTimeGoOnAndEndsWithinAMillisecond) {
  std::atomic<bool> done = false;
  Millis left = 0;
  Thread spinner(clock_, [&] {
    Dll().spinUntil(&done);
    left = clock_.Now();
  });
  Thread other(clock_, [&] {
    Dll().sleep(2'000);
    done = true;
  });
  spinner.Join();
  other.Join();
  EXPECT_GE(left, 2'000);
  EXPECT_LE(left, 2'001);
}

TEST_F(TimeSteeringTest, TwoSpinLoopsDoNotHoldEachOtherUp) {
  std::atomic<bool> done = false;
  Thread first(clock_, [&] { Dll().spinUntil(&done); });
  Thread second(clock_, [&] { Dll().spinUntil(&done); });
  Dll().sleep(500);
  done = true;
  first.Join();
  second.Join();
  EXPECT_LE(clock_.Now(), 501);
}

TEST_F(TimeSteeringTest, ADayOfAnEventEveryFiveSecondsIsCountedExactly) {
  // The shape of a driver: a worker with timeouts, fed through a locked queue by a reader thread.
  CRITICAL_SECTION lock = {};
  ASSERT_TRUE(Dll().initSection(&lock));
  const HANDLE handles[] = {Dll().createEvent(TRUE), Dll().createEvent(FALSE)};
  std::vector<Millis> queue;
  int taken = 0;
  int timeouts = 0;
  auto worker = [&] {
    for (;;) {
      const DWORD result = Dll().waitMany(2, handles, FALSE, 2'000);
      if (result == WAIT_OBJECT_0) return;
      if (result == WAIT_TIMEOUT) ++timeouts;
      Dll().enter(&lock);
      for (const Millis posted : queue) taken += posted == clock_.Now() ? 1 : 0;
      queue.clear();
      Dll().leave(&lock);
    }
  };
  const HANDLE thread = StartInModule(Dll(), worker);
  Thread reader(clock_, [&] {
    for (Millis next = 5'000; next <= kDay; next += 5'000) {
      clock_.SleepUntil(next);
      Dll().enter(&lock);
      queue.push_back(next);
      Dll().setEvent(handles[1]);
      Dll().leave(&lock);
    }
  });
  reader.Join();
  Dll().sleep(1);
  Dll().setEvent(handles[0]);
  EXPECT_EQ(Dll().waitOne(thread, INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(taken, kDay / 5'000);
  EXPECT_EQ(timeouts, 2 * (kDay / 5'000));
  EXPECT_EQ(clock_.Now(), kDay + 1);
  for (const HANDLE handle : {handles[0], handles[1], thread}) Dll().closeHandle(handle);
  Dll().deleteSection(&lock);
}

TEST_F(TimeSteeringTest, ATimerOf49DaysFiresToTheMillisecond) {
  const HANDLE event = Dll().createEvent(FALSE);
  EXPECT_EQ(Dll().waitOne(event, 0xffff'fffe), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(clock_.Now(), Millis{0xffff'fffe});
  Dll().closeHandle(event);
}

TEST(TimeSteeringOnTheRealClock, EventsThreadsAndLocksWork) {
  RealClock clock;
  Redirector redirector(clock);
  const DriverModule module(TestModulePath(), &redirector);
  const auto& dll =
      *reinterpret_cast<const ModuleCalls*>(reinterpret_cast<void*>(module.Export("moduleCalls")));
  CRITICAL_SECTION lock = {};
  ASSERT_TRUE(dll.initSection(&lock));
  const HANDLE entered = dll.createEvent(TRUE);
  std::atomic<bool> left = false;
  dll.enter(&lock);
  auto body = [&] {
    dll.setEvent(entered);
    dll.enter(&lock);
    EXPECT_TRUE(left);
    dll.leave(&lock);
  };
  const HANDLE thread = StartInModule(dll, body);
  EXPECT_EQ(dll.waitOne(entered, INFINITE), DWORD{WAIT_OBJECT_0});
  left = true;
  dll.leave(&lock);
  EXPECT_EQ(dll.waitOne(thread, INFINITE), DWORD{WAIT_OBJECT_0});
  dll.closeHandle(thread);
  dll.closeHandle(entered);
  dll.deleteSection(&lock);
}

}  // namespace
}  // namespace bench
