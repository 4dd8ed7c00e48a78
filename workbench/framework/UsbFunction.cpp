#include "workbench/framework/UsbFunction.h"

#include <algorithm>
#include <utility>

#include "workbench/framework/Results.h"

namespace bench {

UsbFunction::UsbFunction(Clock& clock, UsbLink& link, UsbPlan plan)
    : clock_(clock), link_(link), plan_(std::move(plan)) {
  link_.SetSink([this](std::string_view bytes) {
    {
      const std::lock_guard lock(mutex_);
      if (unplugged_ || bytes.empty()) return;
      events_.push_back({.status = S_OK, .bytes = std::string(bytes)});
    }
    clock_.Notify();
  });
}

UsbFunction::~UsbFunction() {
  link_.SetSink([](std::string_view) {});
}

HRESULT UsbFunction::Control(const ControlRequest& request) {
  return IsUnplugged() ? kNoSuchDevice : link_.OnControlRequest(request);
}

HRESULT UsbFunction::Write(std::string_view bytes) {
  return IsUnplugged() ? kNoSuchDevice : link_.OnHostWrite(bytes);
}

std::optional<UsbFunction::ReadEvent> UsbFunction::TryRead(std::size_t limit) {
  const std::lock_guard lock(mutex_);
  if (unplugged_) return ReadEvent{.status = kNoSuchDevice, .bytes = {}};
  if (events_.empty()) return std::nullopt;
  ReadEvent& first = events_.front();
  if (first.bytes.size() > limit) {
    ReadEvent part{.status = S_OK, .bytes = first.bytes.substr(0, limit)};
    first.bytes.erase(0, limit);
    return part;
  }
  ReadEvent whole = std::move(first);
  events_.pop_front();
  return whole;
}

void UsbFunction::FailRead(HRESULT status) {
  {
    const std::lock_guard lock(mutex_);
    events_.push_back({.status = status, .bytes = {}});
  }
  clock_.Notify();
}

std::size_t UsbFunction::WaitingBytes() const {
  const std::lock_guard lock(mutex_);
  std::size_t bytes = 0;
  for (const ReadEvent& event : events_) bytes += event.bytes.size();
  return bytes;
}

void UsbFunction::Unplug() {
  {
    const std::lock_guard lock(mutex_);
    unplugged_ = true;
    events_.clear();
  }
  clock_.Notify();
}

void UsbFunction::PlugIn() {
  const std::lock_guard lock(mutex_);
  unplugged_ = false;
}

bool UsbFunction::IsUnplugged() const {
  const std::lock_guard lock(mutex_);
  return unplugged_;
}

}  // namespace bench
