// Hands the modem over to another GNSS solution: plain MBIM, engine shut down, modem restarted.
#pragma once

#include <optional>
#include <string_view>

#include "at/CommandEngine.h"
#include "at/ModemAnswers.h"

namespace stelvane {

/// What DisableInternalGnssIfRequested answers when nobody asked for the hand-over
/// (ERROR_INTERNAL_ERROR). Bring-up goes on for anything but 0.
inline constexpr HRESULT kInternalGnssWanted = 1359;

/// Runs on the worker thread, inside bring-up.
class UsbProfileSwitch {
 public:
  UsbProfileSwitch(CommandEngine& engine, ModemAnswers& answers)
      : engine_(engine), answers_(answers) {}

  /// 0 when the modem was handed over, kInternalGnssWanted when the registry does not ask for it,
  /// else the failure that stopped the hand-over.
  HRESULT DisableInternalGnssIfRequested() noexcept;

 private:
  HRESULT HandOver();
  void QueryUsbProfile();
  /// Rewrites the modem's stored profile; none selects "MBIM".
  HRESULT SetUsbProfile(std::optional<std::string_view> profile);
  HRESULT ShutdownEngine();
  HRESULT ResetModem();

  CommandEngine& engine_;
  ModemAnswers& answers_;
};

}  // namespace stelvane
