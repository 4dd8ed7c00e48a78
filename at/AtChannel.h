// The AT channel: writes command lines to the modem, cuts its bytes into lines, and keeps the
// device awake while the engine is in use.
#pragma once

#include <string_view>

#include "at/LineAssembler.h"
#include "at/ModemPort.h"
#include "base/ComObject.h"

namespace stelvane {

/// Takes the modem's lines, in arrival order and one at a time, on the read-completion thread.
class LineSink {
 public:
  virtual void DispatchLine(std::string_view line) noexcept = 0;
  /// The core is stopping: failed readers stay down.
  virtual bool IsStopping() noexcept = 0;

 protected:
  ~LineSink() = default;
};

/// The framework holds references to this object while a reader is configured, so it may outlive
/// its owner; outside Attach and Detach it hands nothing on.
class AtChannel final : public ComObject<IUsbTargetPipeContinuousReaderCallbackReadComplete,
                                         IUsbTargetPipeContinuousReaderCallbackReadersFailed> {
 public:
  HRESULT InitializeObject() override;

  /// Opens the way to the sink, which must live until Detach.
  void Attach(LineSink& sink) EXCLUDES(receiveLock_);
  /// Cuts the way to the sink; waits for a line that is being dispatched.
  void Detach() EXCLUDES(receiveLock_);

  /// Takes the device's interfaces; before anything else is called.
  HRESULT Bind(IWDFDevice* device);
  /// Opens the port, and starts reading when an engine use is held already.
  HRESULT OpenModemPort();
  /// Releases the pipes and the USB device; no reader callback runs afterwards.
  void ClosePort() { port_.Close(); }
  bool IsOpen() { return static_cast<bool>(port_.OutPipe()); }

  /// Starts or stops the reader; kNoAtPort when a pipe is missing.
  HRESULT StartReading(bool start);

  /// Writes one framed line, clearing `responseEvent` right before it is sent. Returns the write's
  /// completion status, or the result of the step that failed; E_FAIL when the write pipe gives no
  /// I/O target. Calls are serialised by the command engine.
  HRESULT WriteLine(std::string_view line, Event& responseEvent);

  /// Adds one engine use; the first one takes the device out of idle and waits for it when
  /// `waitForWorking`. The use counts whatever the result, which is that of StopIdle.
  HRESULT AcquireEngineUse(bool waitForWorking) EXCLUDES(useLock_);
  /// Gives one engine use back; the last one lets the device idle. Nothing at count 0.
  void ReleaseEngineUse() EXCLUDES(useLock_);
  /// Gives back all uses that are still held, when the channel closes for good.
  void ReleaseAllEngineUses() EXCLUDES(useLock_);
  LONG EngineUseCount() EXCLUDES(useLock_);

  void STDMETHODCALLTYPE OnReaderCompletion(IWDFUsbTargetPipe* pipe, IWDFMemory* memory,
                                            SIZE_T numBytesTransferred,
                                            PVOID context) noexcept override;
  BOOL STDMETHODCALLTYPE OnReaderFailure(IWDFUsbTargetPipe* pipe, HRESULT status) noexcept override;

 private:
  void OnBytesReceived(const char* data, std::size_t count) EXCLUDES(receiveLock_);

  ComPtr<IWDFDevice3> device_;
  ModemPort port_;

  CriticalSection receiveLock_;
  LineAssembler lines_ GUARDED_BY(receiveLock_);
  LineSink* sink_ GUARDED_BY(receiveLock_) = nullptr;

  CriticalSection useLock_;
  LONG useCount_ GUARDED_BY(useLock_) = 0;
};

/// Holds one engine use for the length of a procedure.
class EngineUse {
 public:
  explicit EngineUse(AtChannel& channel) : channel_(channel) { channel_.AcquireEngineUse(true); }
  ~EngineUse() { channel_.ReleaseEngineUse(); }
  EngineUse(const EngineUse&) = delete;
  EngineUse& operator=(const EngineUse&) = delete;

 private:
  AtChannel& channel_;
};

}  // namespace stelvane
