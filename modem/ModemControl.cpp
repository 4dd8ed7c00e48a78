#include "modem/ModemControl.h"

namespace stelvane {

HRESULT ModemControl::Create(ModemListener& listener, ComPtr<ModemControl>& modem) noexcept {
  ComPtr<AtChannel> channel;
  if (const HRESULT result = CreateObject(channel); FAILED(result)) return result;
  return CreateObject(modem, channel, listener);
}

ModemControl::ModemControl(ComPtr<AtChannel> channel, ModemListener& listener)
    : channel_(std::move(channel)),
      engine_(Channel(), listener),
      dispatcher_(engine_, answers_, listener),
      supl_(Channel(), engine_, answers_),
      profileSwitch_(engine_, answers_),
      bringUp_({Channel(), engine_, answers_, listener, radio_, profileSwitch_, supl_}),
      session_({Channel(), engine_, answers_, listener, clients_, radio_, supl_}) {}

ModemControl::~ModemControl() {
  channel_->Detach();
}

HRESULT ModemControl::InitializeObject() {
  HRESULT result = PlainObject::InitializeObject();
  if (SUCCEEDED(result)) result = answers_.Initialize();
  if (SUCCEEDED(result)) result = engine_.Initialize();
  if (SUCCEEDED(result)) result = clients_.Initialize();
  if (SUCCEEDED(result)) result = session_.Initialize();
  if (SUCCEEDED(result)) channel_->Attach(dispatcher_);
  return result;
}

HRESULT ModemControl::Bind(IWDFDevice* device) {
  if (const HRESULT result = channel_->Bind(device); FAILED(result)) return result;
  return channel_->OpenModemPort();
}

HRESULT ModemControl::CloseModemControl() {
  clients_.Clear();
  channel_->ClosePort();
  channel_->Detach();
  // A request that still runs is not stopped, but the device no longer stays awake for it.
  channel_->ReleaseAllEngineUses();
  return S_OK;
}

}  // namespace stelvane
