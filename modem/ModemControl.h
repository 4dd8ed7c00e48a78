// The modem as the sensor core sees it: owner of the channel, the procedures and the clients.
#pragma once

#include "at/AtChannel.h"
#include "at/CommandEngine.h"
#include "at/LineDispatcher.h"
#include "at/ModemAnswers.h"
#include "modem/ClientTable.h"
#include "modem/EngineBringUp.h"
#include "modem/LocationSession.h"
#include "modem/RadioState.h"
#include "modem/SuplProvisioning.h"
#include "modem/UsbProfileSwitch.h"

namespace stelvane {

/// One per sensor core, created and closed by it. The listener must outlive it.
class ModemControl final : public PlainObject {
 public:
  /// E_OUTOFMEMORY, or the failure of a lock or an event.
  static HRESULT Create(ModemListener& listener, ComPtr<ModemControl>& modem) noexcept;

  ModemControl(ComPtr<AtChannel> channel, ModemListener& listener);
  HRESULT InitializeObject() override;

  /// Takes the device and opens its AT port.
  HRESULT Bind(IWDFDevice* device);
  /// Forgets the clients and closes the port, once the worker thread has ended; sends nothing.
  HRESULT CloseModemControl();

  AtChannel& Channel() { return *channel_.Get(); }
  ClientTable& Clients() { return clients_; }
  RadioState& Radio() { return radio_; }
  EngineBringUp& BringUp() { return bringUp_; }
  LocationSession& Session() { return session_; }
  SuplProvisioning& Supl() { return supl_; }

 private:
  ~ModemControl() override;

  const ComPtr<AtChannel> channel_;
  ModemAnswers answers_;
  CommandEngine engine_;
  LineDispatcher dispatcher_;
  ClientTable clients_;
  RadioState radio_;
  SuplProvisioning supl_;
  UsbProfileSwitch profileSwitch_;
  EngineBringUp bringUp_;
  LocationSession session_;
};

}  // namespace stelvane
