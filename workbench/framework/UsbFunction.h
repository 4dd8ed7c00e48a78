// The device's side of the USB cable: its endpoints' buffers and the link to the modem.
#pragma once

#include <windows.h>

#include <deque>
#include <mutex>
#include <optional>
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
  /// Takes the sink back from the link, which may live on.
  ~UsbFunction();
  UsbFunction(const UsbFunction&) = delete;
  UsbFunction& operator=(const UsbFunction&) = delete;

  const UsbPlan& plan() const { return plan_; }

  HRESULT Control(const ControlRequest& request);
  HRESULT Write(std::string_view bytes);
  /// What one read of an endpoint ends with.
  struct ReadEvent {
    HRESULT status = S_OK;
    std::string bytes;
  };
  /// The next block of at most `limit` bytes, or the next failure; nothing while the device has
  /// nothing to say. A block never spans two flushed chunks. May run in a clock's `ready`.
  std::optional<ReadEvent> TryRead(std::size_t limit);
  /// The read after those that what was flushed so far fills fails.
  void FailRead(HRESULT status);
  /// Flushed and not read yet.
  std::size_t WaitingBytes() const;

  /// From now on every transfer fails, reads too, and nothing arrives.
  void Unplug();
  /// The cable is in, as it is at first.
  void PlugIn();
  /// May run in a clock's `ready`.
  bool IsUnplugged() const;

 private:
  Clock& clock_;
  UsbLink& link_;
  const UsbPlan plan_;
  mutable std::mutex mutex_;
  std::deque<ReadEvent> events_;
  bool unplugged_ = false;
};

}  // namespace bench
