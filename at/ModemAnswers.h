// What the line dispatcher has read out of the modem's answers.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "at/UsbProfileParser.h"
#include "base/Sync.h"

namespace stelvane {

/// One per channel. Written on the read-completion thread, read by the modem procedures.
class ModemAnswers {
 public:
  HRESULT Initialize() { return lock_.Initialize(); }

  /// Id of the current location request; 0 until the modem gave one.
  std::atomic<std::uint32_t> requestId{0};
  /// The engine's switch: true until the modem reports it off; no answer sets it again.
  std::atomic<bool> engineSwitchOn{true};

  std::string Imsi() EXCLUDES(lock_) {
    const ScopedLock lock(lock_);
    return imsi_;
  }
  void SetImsi(std::string imsi) EXCLUDES(lock_) {
    const ScopedLock lock(lock_);
    imsi_ = std::move(imsi);
  }
  UsbProfile Profile() EXCLUDES(lock_) {
    const ScopedLock lock(lock_);
    return profile_;
  }
  void SetProfile(UsbProfile profile) EXCLUDES(lock_) {
    const ScopedLock lock(lock_);
    profile_ = std::move(profile);
  }

 private:
  CriticalSection lock_;
  std::string imsi_ GUARDED_BY(lock_);
  UsbProfile profile_ GUARDED_BY(lock_);
};

}  // namespace stelvane
