// Makes the modem's GNSS engine usable when the sensor core starts.
#pragma once

#include "at/CommandEngine.h"
#include "at/ModemAnswers.h"
#include "modem/RadioState.h"
#include "modem/SuplProvisioning.h"
#include "modem/UsbProfileSwitch.h"

namespace stelvane {

/// Runs on the worker thread, under the state machine's bring-up lock.
class EngineBringUp {
 public:
  struct Partners {
    AtChannel& channel;
    CommandEngine& engine;
    ModemAnswers& answers;
    ModemListener& listener;
    RadioState& radio;
    UsbProfileSwitch& profileSwitch;
    SuplProvisioning& supl;
  };
  explicit EngineBringUp(const Partners& partners) : the_(partners) {}

  /// Echo on, hand-over if the registry asks for it (then nothing more, and success), switch
  /// query, quality of service, clock, SUPL. The first failure of echo or switch query is
  /// returned; what comes after the switch query cannot fail the bring-up.
  HRESULT InitializeEngine() noexcept;

 private:
  HRESULT TurnEchoOn();
  HRESULT SetModemClock();

  const Partners the_;
};

}  // namespace stelvane
