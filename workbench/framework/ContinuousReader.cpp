#include "workbench/framework/ContinuousReader.h"

#include "workbench/framework/DriverCall.h"
#include "workbench/framework/FxMemory.h"
#include "workbench/framework/FxUsbPipe.h"

namespace bench {

namespace {
thread_local const ContinuousReader* readerOfThread = nullptr;
}  // namespace

ContinuousReader::ContinuousReader(FxUsbPipe& pipe, const World& world, UsbFunction& usb,
                                   Settings settings)
    : pipe_(pipe),
      world_(world),
      usb_(usb),
      settings_(std::move(settings)),
      thread_(world.clock, [this] { Run(); }) {}

void ContinuousReader::Start() {
  {
    const std::lock_guard lock(mutex_);
    running_ = true;
  }
  world_.clock.Notify();
}

void ContinuousReader::Stop() {
  {
    const std::lock_guard lock(mutex_);
    running_ = false;
  }
  if (InsideCallback()) return;
  world_.clock.WaitUntil(kForever, [this] {
    const std::lock_guard lock(mutex_);
    return !busy_;
  });
}

void ContinuousReader::End() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  world_.clock.Notify();
  if (InsideCallback()) return;
  const std::lock_guard lock(threadLock_);
  thread_.Join();
}

void ContinuousReader::DropCallbacks() {
  if (InsideCallback()) {
    dropAtEnd_ = true;
    return;
  }
  settings_.onCompletion.Reset();
  settings_.onFailure.Reset();
}

bool ContinuousReader::InsideCallback() const {
  return readerOfThread == this;
}

bool ContinuousReader::InsideAnyCallback() {
  return readerOfThread != nullptr;
}

void ContinuousReader::Run() {
  readerOfThread = this;
  while (const auto event = Next()) {
    const bool goesOn = FAILED(event->status) ? DeliverFailure(event->status) : true;
    if (SUCCEEDED(event->status)) Deliver(event->bytes);
    {
      const std::lock_guard lock(mutex_);
      busy_ = false;
      if (!goesOn) running_ = false;
    }
    world_.clock.Notify();
  }
  readerOfThread = nullptr;
  if (dropAtEnd_) DropCallbacks();
}

std::optional<UsbFunction::ReadEvent> ContinuousReader::Next() {
  std::optional<UsbFunction::ReadEvent> event;
  world_.clock.WaitUntil(kForever, [&] {
    const std::lock_guard lock(mutex_);
    if (ending_) return true;
    if (!running_ || (!settings_.hasData && !usb_.IsUnplugged())) return false;
    event = usb_.TryRead(settings_.transferLength);
    busy_ = event.has_value();
    return busy_;
  });
  return event;
}

void ContinuousReader::Deliver(const std::string& bytes) {
  // The driver may keep the memory beyond the callback with a reference of its own.
  auto& memory = Make<FxMemory>(world_, nullptr, "reader memory", DeletedBy::kFramework,
                                std::string_view(bytes));
  CallDriverVoid(world_, "IUsbTargetPipeContinuousReaderCallbackReadComplete::OnReaderCompletion",
                 [&] {
                   settings_.onCompletion->OnReaderCompletion(&pipe_, &memory, bytes.size(),
                                                              settings_.context);
                 });
  memory.Orphan();
}

bool ContinuousReader::DeliverFailure(HRESULT status) {
  BOOL restart = TRUE;
  if (settings_.onFailure) {
    CallDriverVoid(world_, "IUsbTargetPipeContinuousReaderCallbackReadersFailed::OnReaderFailure",
                   [&] { restart = settings_.onFailure->OnReaderFailure(&pipe_, status); });
  }
  return restart != FALSE && !usb_.IsUnplugged();
}

}  // namespace bench
