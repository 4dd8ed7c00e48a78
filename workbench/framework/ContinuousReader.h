// The framework's thread that reads one pipe for the driver for as long as the pipe is started.
#pragma once

#include <windows.h>

#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>

#include "base/ComPtr.h"
#include "platform/WdfCallbacks.h"
#include "workbench/clock/Clock.h"
#include "workbench/framework/UsbFunction.h"
#include "workbench/framework/World.h"

namespace bench {

class FxUsbPipe;

/// One pending read, so the callbacks never overlap; they come on the reader's own thread. Methods
/// from any thread; from inside a callback Stop and End do not wait for it.
class ContinuousReader {
 public:
  struct Settings {
    std::size_t transferLength = 0;
    stelvane::ComPtr<IUsbTargetPipeContinuousReaderCallbackReadComplete> onCompletion;
    void* context = nullptr;
    stelvane::ComPtr<IUsbTargetPipeContinuousReaderCallbackReadersFailed> onFailure;
    /// False for an endpoint on which the modem says nothing.
    bool hasData = true;
  };

  ContinuousReader(FxUsbPipe& pipe, const World& world, UsbFunction& usb, Settings settings);
  ~ContinuousReader() { End(); }

  void Start();
  /// Returns when no callback runs.
  void Stop();
  /// For good; the thread is gone when this returns.
  void End();
  /// Lets go of the driver's callback objects, after End; from inside a callback, once it is over.
  void DropCallbacks();

  /// Whether the calling thread is in one of this reader's callbacks.
  bool InsideCallback() const;
  /// Whether it is in a callback of any reader.
  static bool InsideAnyCallback();

 private:
  void Run();
  /// Blocks for the next event; nothing at the end of the reader.
  std::optional<UsbFunction::ReadEvent> Next();
  void Deliver(const std::string& bytes);
  /// Whether the reader goes on.
  bool DeliverFailure(HRESULT status);

  FxUsbPipe& pipe_;
  const World world_;
  UsbFunction& usb_;
  Settings settings_;
  std::mutex mutex_;  // guards the states; taken in the clock's `ready`
  bool running_ = false;
  bool ending_ = false;
  bool busy_ = false;       // an event is taken and its callback not over
  bool dropAtEnd_ = false;  // the reader's own thread alone uses it
  std::mutex threadLock_;
  Thread thread_;
};

}  // namespace bench
