// Events, waits and threads of the stand-in.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/native/Native.h"
#include "workbench/clock/VirtualClock.h"

namespace {

/// The handle of an event or a thread, closed with the test.
class Owned {
 public:
  explicit Owned(HANDLE handle) : handle_(handle) {}
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() { CloseHandle(handle_); }
  operator HANDLE() const { return handle_; }

 private:
  const HANDLE handle_;
};

HANDLE Automatic(bool set = false) {
  return CreateEventW(nullptr, FALSE, set, nullptr);
}
HANDLE Manual(bool set = false) {
  return CreateEventW(nullptr, TRUE, set, nullptr);
}

template <class Body>
HANDLE Start(Body& body) {
  return CreateThread(
      nullptr, 0,
      [](void* parameter) -> DWORD {
        (*static_cast<Body*>(parameter))();
        return 0;
      },
      &body, 0, nullptr);
}

TEST(NativeEvent, AnAutomaticEventIsTakenByOneWait) {
  const Owned event(Automatic(true));
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST(NativeEvent, TwoSetsOfAnAutomaticEventCountAsOne) {
  const Owned event(Automatic());
  SetEvent(event);
  SetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST(NativeEvent, AManualEventStaysSetUntilReset) {
  const Owned event(Manual());
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  SetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  ResetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST(NativeWaitAny, TheFirstOfSeveralSetObjectsIsGivenAndOnlyItIsTaken) {
  const Owned unset(Automatic());
  const Owned second(Automatic(true));
  const Owned third(Automatic(true));
  const HANDLE all[] = {unset, second, third};
  EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, 0), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, 0), WAIT_OBJECT_0 + 2);
  EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, 0), WAIT_TIMEOUT);
}

TEST(NativeWaitAny, SixtyFourObjectsAreTakenAndNoMore) {
  const Owned unset(Manual());
  const Owned set(Manual(true));
  std::vector<HANDLE> all(63, unset);
  all.push_back(set);
  EXPECT_EQ(WaitForMultipleObjects(64, all.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 63);
  all.push_back(set);
  EXPECT_EQ(WaitForMultipleObjects(65, all.data(), FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(NativeWaitAny, WaitingForAllIsRefused) {
  const Owned set(Manual(true));
  const HANDLE all[] = {set};
  EXPECT_EQ(WaitForMultipleObjects(1, all, TRUE, 0), WAIT_FAILED);
}

TEST(NativeWait, ANullHandleFails) {
  EXPECT_EQ(WaitForSingleObject(nullptr, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_FALSE(SetEvent(nullptr));
  EXPECT_FALSE(CloseHandle(INVALID_HANDLE_VALUE));
}

TEST(NativeWait, AnEventSetByAnotherThreadEndsAWaitWithoutEnd) {
  const Owned go(Automatic());
  const Owned done(Automatic());
  int shared = 0;  // the events alone order the two threads
  auto body = [&] {
    WaitForSingleObject(go, INFINITE);
    ++shared;
    SetEvent(done);
  };
  const Owned thread(Start(body));
  shared = 41;
  SetEvent(go);
  EXPECT_EQ(WaitForSingleObject(done, INFINITE), WAIT_OBJECT_0);
  EXPECT_EQ(shared, 42);
  EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
}

TEST(NativeWait, AnAutomaticEventWakesOneOfManyWaiters) {
  const Owned token(Automatic());
  const Owned finished(Automatic());
  std::atomic<int> woken{0};
  auto body = [&] {
    WaitForSingleObject(token, INFINITE);
    ++woken;
    SetEvent(finished);
  };
  constexpr int kThreads = 4;
  std::vector<HANDLE> threads;
  for (int i = 0; i < kThreads; ++i) threads.push_back(Start(body));
  for (int i = 1; i <= kThreads; ++i) {
    SetEvent(token);
    WaitForSingleObject(finished, INFINITE);
    EXPECT_EQ(woken, i);
  }
  for (const HANDLE thread : threads) {
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
  }
}

TEST(NativeThread, IsSetFromItsEndOnAndGivesItsParameter) {
  const Owned stop(Automatic());
  auto body = [&] { WaitForSingleObject(stop, INFINITE); };
  const Owned thread(Start(body));
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
  SetEvent(stop);
  EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
}

TEST(NativeThread, HasTheIdThatItsCreatorWasGiven) {
  DWORD inside = 0;
  DWORD outside = 0;
  const Owned thread(CreateThread(
      nullptr, 0,
      [](void* place) -> DWORD {
        *static_cast<DWORD*>(place) = GetCurrentThreadId();
        return 0;
      },
      &inside, 0, &outside));
  WaitForSingleObject(thread, INFINITE);
  EXPECT_EQ(inside, outside);
  EXPECT_NE(inside, GetCurrentThreadId());
}

TEST(NativeThread, KeepsALastErrorOfItsOwn) {
  SetLastError(7);
  DWORD seen = 1;
  auto body = [&] {
    seen = GetLastError();
    SetLastError(9);
  };
  const Owned thread(Start(body));
  WaitForSingleObject(thread, INFINITE);
  EXPECT_EQ(seen, 0u);
  EXPECT_EQ(GetLastError(), 7u);
}

TEST(NativeHandles, AreCountedUntilTheyAreClosed) {
  const std::size_t before = native::OpenHandles();
  const HANDLE event = Manual();
  EXPECT_EQ(native::OpenHandles(), before + 1);
  CloseHandle(event);
  EXPECT_EQ(native::OpenHandles(), before);
}

}  // namespace
