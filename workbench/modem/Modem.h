// The simulated cellular modem: the AT port's other end.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/ModemObserver.h"
#include "workbench/modem/ModemOptions.h"
#include "workbench/modem/ModemSnapshot.h"
#include "workbench/modem/TrackSource.h"
#include "workbench/modem/UsbLink.h"

namespace bench {

/// Switched on by construction. It obeys commands and speaks on one thread of its own, which ends
/// with the object; every member may be called from any thread. Before the sink is set, and after
/// it was set to an empty one, what it says is lost.
class Modem final : public UsbLink {
 public:
  /// `clock` and the observers must outlive the modem.
  Modem(Clock& clock, ModemOptions options, std::unique_ptr<TrackSource> track,
        std::vector<ModemObserver*> observers = {});
  ~Modem() override;

  std::int32_t OnControlRequest(const ControlRequest& request) override;
  std::int32_t OnHostWrite(std::string_view bytes) override;
  void SetSink(ByteSink sink) override;

  ModemSnapshot Snapshot() const;

  /// Adds to what goes wrong; timed entries count from now.
  void Inject(ModemFaults faults);
  /// Exchanges the SIM.
  void SetSim(std::string imsi);

 private:
  class Core;
  std::unique_ptr<Core> core_;
};

}  // namespace bench
