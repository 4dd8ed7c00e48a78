// The listener of a modem control object, for tests that look at the modem alone.
#pragma once

#include <string>

#include "at/ModemListener.h"

namespace stelvane {

/// Never stops, wants no location, and does nothing about what it is told.
class IdleListener final : public ModemListener {
 public:
  bool IsStopping() override { return false; }
  bool IsLocationRequestOutstanding() override { return false; }
  void OnLocationRequestStarting() override {}
  void OnLocationRequestAccepted(bool) override {}
  void OnLocationRequestRefused() override {}
  void OnLocationRequestStopped() override {}
  void OnReportParsed(FixRecord) override {}
  void OnFixComplete(std::string) override {}
  void OnLocationError() override {}
  void OnEngineSwitchRead(bool) override {}
};

}  // namespace stelvane
