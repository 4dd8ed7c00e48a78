#include "tests/native/Clocks.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>

#include "tests/native/Native.h"

namespace native {
namespace {

/// The machine's time, faster or slower.
class ScaledClock final : public bench::Clock {
 public:
  void SetScale(double scale) {
    const std::lock_guard lock(mutex_);
    before_ = Elapsed();
    since_ = std::chrono::steady_clock::now();
    scale_ = scale;
  }

  bench::Millis Now() const override {
    const std::lock_guard lock(mutex_);
    return static_cast<bench::Millis>(Elapsed());
  }

  bool WaitUntil(bench::Millis deadline, const std::function<bool()>& ready) override {
    std::unique_lock lock(mutex_);
    if (deadline == bench::kForever) {
      changed_.wait(lock, ready);
      return true;
    }
    const std::chrono::duration<double, std::milli> fromNow(
        (static_cast<double>(deadline) - before_) / scale_);
    const auto end = since_ + std::chrono::ceil<std::chrono::nanoseconds>(fromNow);
    return changed_.wait_until(lock, end, ready);
  }

  void Notify() override {
    // Taking the lock once closes the gap between a waiter's test and its sleep.
    { const std::lock_guard lock(mutex_); }
    changed_.notify_all();
  }

  void AddParticipant() override {}
  void EnterParticipant() override {}
  void LeaveParticipant() override {}

 private:
  double Elapsed() const {
    const std::chrono::duration<double, std::milli> real =
        std::chrono::steady_clock::now() - since_;
    return before_ + real.count() * scale_;
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
  double before_ = 0;  // milliseconds shown when `scale_` was set
  double scale_ = 1;
};

/// Never destroyed: a thread that nobody joined may still wait on it when the process ends.
ScaledClock& MachineClock() {
  static ScaledClock& clock = *new ScaledClock;
  return clock;
}

std::atomic<bench::Clock*> chosenClock{nullptr};

/// 100 ns since 1601; 2020-01-01 unless a test sets another.
std::atomic<std::uint64_t> startTime{132223104000000000};
std::atomic<std::uint64_t> startTicks{0};

std::uint64_t Joined(const FILETIME& time) {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

FILETIME Split(std::uint64_t time) {
  return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
}

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
constexpr std::chrono::sys_days kEpoch =
    std::chrono::year{1601} / std::chrono::January / std::chrono::day{1};

}  // namespace

void SetClockScale(double scale) {
  MachineClock().SetScale(scale);
}

void UseClock(bench::Clock* clock) {
  chosenClock = clock;
}

void SetStartTime(const SYSTEMTIME& start) {
  FILETIME time = {};
  if (SystemTimeToFileTime(&start, &time)) startTime = Joined(time);
}

void SetStartTicks(std::uint64_t milliseconds) {
  startTicks = milliseconds;
}

bench::Clock& ActiveClock() {
  bench::Clock* const chosen = chosenClock;
  return chosen != nullptr ? *chosen : MachineClock();
}

bool OnMachineTime() {
  return chosenClock == nullptr;
}

bench::Millis DeadlineAfter(unsigned milliseconds) {
  return milliseconds == INFINITE ? bench::kForever : ActiveClock().Now() + milliseconds;
}

}  // namespace native

ULONGLONG GetTickCount64() {
  return native::startTicks + static_cast<ULONGLONG>(native::ActiveClock().Now());
}

void GetSystemTimeAsFileTime(FILETIME* time) {
  *time = native::Split(native::startTime +
                        static_cast<std::uint64_t>(native::ActiveClock().Now()) * 10'000);
}

void GetSystemTime(SYSTEMTIME* time) {
  FILETIME now = {};
  GetSystemTimeAsFileTime(&now);
  FileTimeToSystemTime(&now, time);
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime) {
  const std::chrono::year_month_day date{std::chrono::year{time->wYear},
                                         std::chrono::month{time->wMonth},
                                         std::chrono::day{time->wDay}};
  if (!date.ok() || time->wYear < 1601 || time->wYear > 30827 || time->wHour > 23 ||
      time->wMinute > 59 || time->wSecond > 59 || time->wMilliseconds > 999) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  // The platform's calendar starts long before what the clock of the library can hold in 100 ns.
  const std::int64_t days = (std::chrono::sys_days(date) - native::kEpoch).count();
  const std::int64_t seconds =
      ((days * 24 + time->wHour) * 60 + time->wMinute) * 60 + time->wSecond;
  const auto milliseconds = static_cast<std::uint64_t>(seconds * 1000 + time->wMilliseconds);
  *fileTime = native::Split(milliseconds * 10'000);
  return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time) {
  const std::uint64_t ticks = native::Joined(*fileTime);
  if (ticks > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const native::Ticks sinceEpoch(static_cast<std::int64_t>(ticks));
  const auto days = std::chrono::floor<std::chrono::days>(sinceEpoch);
  const std::chrono::sys_days day = native::kEpoch + days;
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{
      std::chrono::floor<std::chrono::milliseconds>(sinceEpoch - days)};
  time->wYear = static_cast<WORD>(static_cast<int>(date.year()));
  time->wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  time->wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  time->wDayOfWeek = static_cast<WORD>(std::chrono::weekday(day).c_encoding());
  time->wHour = static_cast<WORD>(clock.hours().count());
  time->wMinute = static_cast<WORD>(clock.minutes().count());
  time->wSecond = static_cast<WORD>(clock.seconds().count());
  time->wMilliseconds = static_cast<WORD>(clock.subseconds().count());
  return TRUE;
}
