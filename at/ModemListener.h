// What the rooms below tell the sensor core, and the few things they ask it.
#pragma once

#include <string>

#include "at/FixRecord.h"

namespace stelvane {

/// Implemented by the sensor core. Called on the read-completion thread (reports) and on whichever
/// thread runs a modem procedure (requests); implementations only store and post, and never block.
class ModemListener {
 public:
  /// The core's stop event is set: no further command may be written.
  virtual bool IsStopping() = 0;

  /// A location request was written and no fix was published for it yet.
  virtual bool IsLocationRequestOutstanding() = 0;
  /// A location request is about to be written.
  virtual void OnLocationRequestStarting() = 0;
  /// The modem accepted the request; `periodic` requests report until they are stopped.
  virtual void OnLocationRequestAccepted(bool periodic) = 0;
  virtual void OnLocationRequestRefused() = 0;
  virtual void OnLocationRequestStopped() = 0;

  /// A report was parsed; it becomes the last fix.
  virtual void OnReportParsed(FixRecord fix) = 0;
  /// The report's sentences are complete: the last fix is published with them.
  virtual void OnFixComplete(std::string sentences) = 0;
  /// The engine answered a location request with an error report.
  virtual void OnLocationError() = 0;
  /// Bring-up has read the engine's on/off switch.
  virtual void OnEngineSwitchRead(bool on) = 0;

 protected:
  ~ModemListener() = default;
};

}  // namespace stelvane
