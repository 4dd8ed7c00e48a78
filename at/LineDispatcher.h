// Routes every line that the modem sends: answers, final results and location reports.
#pragma once

#include <string>
#include <string_view>

#include "at/AtChannel.h"
#include "at/CommandEngine.h"
#include "at/ModemAnswers.h"
#include "at/ModemListener.h"

namespace stelvane {

/// One per channel. Lines come one at a time, in arrival order, under the channel's receive lock.
/// What the dispatcher remembers from line to line is kept once for the whole module and outlives
/// any one channel: the modem goes on with its dialogue when the driver starts over.
class LineDispatcher final : public LineSink {
 public:
  LineDispatcher(CommandEngine& engine, ModemAnswers& answers, ModemListener& listener)
      : engine_(engine), answers_(answers), listener_(listener) {}

  /// A line for which there is no memory is traced and dropped.
  void DispatchLine(std::string_view line) noexcept override;
  bool IsStopping() noexcept override { return listener_.IsStopping(); }

  /// At the module's unload: gives back what was remembered.
  static void ForgetLines() noexcept;

 private:
  void Route(std::string_view line);
  void OnSentence(std::string_view line);
  void OnFinalResult(std::string_view line);
  void OnReport(std::string_view line);
  void OnSwitchReport(std::string_view value);
  void OnIdentityLine(std::string_view line);
  void PublishFix();

  CommandEngine& engine_;
  ModemAnswers& answers_;
  ModemListener& listener_;
  std::string nmeaBuffer_;
};

}  // namespace stelvane
