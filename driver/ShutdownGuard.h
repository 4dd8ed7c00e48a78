// Keeps callbacks out once a shutdown has begun, and lets the shutdown wait for those inside.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "base/Result.h"

namespace stelvane {

/// The bits under which callbacks announce themselves.
enum BusyFlag : std::uint64_t {
  kShutdownBegun = 0x1,  // never cleared
  kPowerTransition = 0x2,
  kHardwarePreparation = 0x4,
  kFileCleanup = 0x8,
  kIoControl = 0x10,
  kPrivateIoControl = 0x40,
  kSelfManagedIo = 0x100,
};

/// One per device; any thread, atomic operations only.
class ShutdownGuard {
 public:
  /// Announces the callback; kShutdownInProgress when a shutdown has begun. The bit is set in both
  /// cases, and the caller clears it again.
  HRESULT EnterCallback(BusyFlag flag) {
    const std::uint64_t before = busyFlags_.fetch_or(flag);
    return (before & kShutdownBegun) != 0 ? kShutdownInProgress : S_OK;
  }
  void LeaveCallback(BusyFlag flag) { busyFlags_.fetch_and(~std::uint64_t{flag}); }

  /// Begins the shutdown and returns once every announced callback has left. Spins without
  /// sleeping, but lets a callback that waits for this processor go first.
  void BeginShutdown() {
    while ((busyFlags_.fetch_or(kShutdownBegun) & ~std::uint64_t{kShutdownBegun}) != 0) {
      SwitchToThread();
    }
  }

 private:
  std::atomic<std::uint64_t> busyFlags_{0};
};

/// Announces a callback for the length of a scope.
class CallbackScope {
 public:
  CallbackScope(ShutdownGuard& guard, BusyFlag flag)
      : guard_(guard), flag_(flag), result_(guard.EnterCallback(flag)) {}
  ~CallbackScope() { guard_.LeaveCallback(flag_); }
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;

  /// S_OK, or kShutdownInProgress.
  HRESULT Result() const { return result_; }

 private:
  ShutdownGuard& guard_;
  const BusyFlag flag_;
  const HRESULT result_;
};

}  // namespace stelvane
