#include "tests/fuzz/ScriptedChannel.h"

#include "tests/fuzz/Fuzz.h"

namespace {

fuzz::ChannelScript* script = nullptr;
bool portOpen = false;

/// Stands for an open port; nothing but its being there is looked at.
class Pipe final : public IWDFUsbTargetPipe {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { Unexpected(); }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE DeleteWdfObject() override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE AssignContext(IObjectCleanup*, void*) override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE RetrieveContext(void**) override { Unexpected(); }
  void STDMETHODCALLTYPE AcquireLock() override { Unexpected(); }
  void STDMETHODCALLTYPE ReleaseLock() override { Unexpected(); }
  void STDMETHODCALLTYPE GetTargetFile(IWDFFile**) override { Unexpected(); }
  void STDMETHODCALLTYPE CancelSentRequestsForFile(IWDFFile*) override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE FormatRequestForRead(IWDFIoRequest*, IWDFFile*, IWDFMemory*,
                                                 PWDFMEMORY_OFFSET, PLONGLONG) override {
    Unexpected();
  }
  HRESULT STDMETHODCALLTYPE FormatRequestForWrite(IWDFIoRequest*, IWDFFile*, IWDFMemory*,
                                                  PWDFMEMORY_OFFSET, PLONGLONG) override {
    Unexpected();
  }
  HRESULT STDMETHODCALLTYPE FormatRequestForIoctl(IWDFIoRequest*, ULONG, IWDFFile*, IWDFMemory*,
                                                  PWDFMEMORY_OFFSET, IWDFMemory*,
                                                  PWDFMEMORY_OFFSET) override {
    Unexpected();
  }
  HRESULT STDMETHODCALLTYPE Abort() override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE Reset() override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE Flush() override { Unexpected(); }
  void STDMETHODCALLTYPE GetInformation(PWINUSB_PIPE_INFORMATION) override { Unexpected(); }
  BOOL STDMETHODCALLTYPE IsInEndPoint() override { Unexpected(); }
  BOOL STDMETHODCALLTYPE IsOutEndPoint() override { Unexpected(); }
  USBD_PIPE_TYPE STDMETHODCALLTYPE GetType() override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE RetrievePipePolicy(ULONG, ULONG*, PVOID) override { Unexpected(); }
  HRESULT STDMETHODCALLTYPE SetPipePolicy(ULONG, ULONG, PVOID) override { Unexpected(); }

 private:
  [[noreturn]] static void Unexpected() { fuzz::Fail("a call of the scripted pipe"); }
};

Pipe openPipe;

}  // namespace

void fuzz::UseScript(ChannelScript& inUse) {
  script = &inUse;
  portOpen = false;
}

void fuzz::CloseScriptedPort() {
  portOpen = false;
}

namespace stelvane {

void ModemPort::Close() {
  portOpen = false;
}

ComPtr<IWDFUsbTargetPipe> ModemPort::OutPipe() {
  return ComPtr<IWDFUsbTargetPipe>(portOpen ? &openPipe : nullptr);
}

HRESULT AtChannel::InitializeObject() {
  const HRESULT result = ComObject::InitializeObject();
  return SUCCEEDED(result) ? useLock_.Initialize() : result;
}

HRESULT AtChannel::OpenModemPort() {
  portOpen = script->Opens();
  return portOpen ? S_OK : kNoAtPort;
}

HRESULT AtChannel::WriteLine(std::string_view line, Event& responseEvent) {
  responseEvent.Clear();
  return script->Write(line);
}

HRESULT AtChannel::AcquireEngineUse(bool waitForWorking) {
  const ScopedLock lock(useLock_);
  ++useCount_;
  return S_OK;
}

void AtChannel::ReleaseEngineUse() {
  const ScopedLock lock(useLock_);
  if (useCount_ >= 1) --useCount_;
}

LONG AtChannel::EngineUseCount() {
  const ScopedLock lock(useLock_);
  return useCount_;
}

// The modem's lines come from the script, not from a reader.
void AtChannel::OnReaderCompletion(IWDFUsbTargetPipe* pipe, IWDFMemory* memory,
                                   SIZE_T numBytesTransferred, PVOID context) noexcept {}
BOOL AtChannel::OnReaderFailure(IWDFUsbTargetPipe* pipe, HRESULT status) noexcept {
  return FALSE;
}

}  // namespace stelvane
