#include "tests/sweep/Deaths.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

namespace bench {

namespace {

constexpr auto kLongestRun = std::chrono::seconds(60);  // real time; a run takes milliseconds

std::mutex nowMutex;
std::string now;
std::atomic<std::uint64_t> runs{0};

[[noreturn]] void Die(const char* how) {
  std::printf("%s in %s\n", how, now.c_str());
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), 3);
  std::abort();
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
  char text[80];
  std::snprintf(text, sizeof text, "CRASH 0x%08lx at %p",
                static_cast<unsigned long>(exception->ExceptionRecord->ExceptionCode),
                exception->ExceptionRecord->ExceptionAddress);
  Die(text);
}

void OnAbort(int) {
  Die("ABORT");
}

void WatchForHangs() {
  std::thread([] {
    for (std::uint64_t last = 0;;) {
      std::this_thread::sleep_for(kLongestRun);
      if (last == runs && last != 0) Die("HANG");
      last = runs;
    }
  }).detach();
}

}  // namespace

void WatchForDeaths() {
  SetUnhandledExceptionFilter(&OnCrash);
  std::signal(SIGABRT, &OnAbort);
  WatchForHangs();
}

void Announce(std::string run) {
  const std::lock_guard lock(nowMutex);
  now = std::move(run);
  ++runs;
}

}  // namespace bench
