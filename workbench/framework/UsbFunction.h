// The device's side of the USB cable: its endpoints' buffers and the link to the modem.
#pragma once

#include <windows.h>

#include <deque>
#include <mutex>
#include <string>
#include <string_view>

#include "workbench/clock/Clock.h"
#include "workbench/framework/DevicePlan.h"
#include "workbench/modem/UsbLink.h"

namespace bench {

/// Outlives the framework's objects for it: what the modem flushed waits here, as in a device that
/// answers NAK, until a reader fetches it. Every bulk endpoint leads to the same modem. All methods
/// from any thread.
class UsbFunction {
 public:
  UsbFunction(Clock& clock, UsbLink& link, UsbPlan plan);
  /// The link must not flush any more.
  ~UsbFunction() = default;
  UsbFunction(const UsbFunction&) = delete;
  UsbFunction& operator=(const UsbFunction&) = delete;

  const UsbPlan& plan() const { return plan_; }

  HRESULT Control(const ControlRequest& request);
  HRESULT Write(std::string_view bytes);
  /// Takes the next block of at most `limit` bytes; a block never spans two flushed chunks. False
  /// when nothing waits. May run in a clock's `ready`.
  bool TryRead(std::size_t limit, std::string& block);
  std::size_t WaitingBytes() const;

  /// From now on every transfer fails and nothing arrives.
  void Unplug();
  /// May run in a clock's `ready`.
  bool IsUnplugged() const;

 private:
  Clock& clock_;
  UsbLink& link_;
  const UsbPlan plan_;
  mutable std::mutex mutex_;
  std::deque<std::string> chunks_;
  bool unplugged_ = false;
};

}  // namespace bench
