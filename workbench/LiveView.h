// Shows a run as it happens.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

#include "workbench/Console.h"
#include "workbench/record/AtTranscript.h"
#include "workbench/sensorapi/SensorService.h"

namespace bench {

/// Collects what happens on other threads; Show prints it in the order of its time.
class LiveView {
 public:
  explicit LiveView(const Console& console) : console_(console) {}

  /// On the modem's thread.
  void OnLine(const AtLine& line);
  /// A decoded trace message; on the tracing thread.
  void OnTrace(Millis at, const std::string& line);
  /// Prints what is new. From one thread.
  void Show(const SensorService& sensors);

 private:
  struct Item {
    Millis at;
    Tone tone;
    std::string text;
  };

  void AddLine(const AtLine& line);
  void EndSentences();

  const Console& console_;
  std::mutex mutex_;
  std::vector<std::variant<AtLine, Item>> arrivals_;  // not shown yet

  std::string lastCommand_;
  std::size_t sentences_ = 0;  // in a row, not shown yet
  Millis sentencesAt_ = 0;
  std::vector<Item> items_;
  std::size_t statesShown_ = 0;
  std::size_t eventsShown_ = 0;
};

/// "ready", "no data" and so on.
std::string StateText(SensorState state);

}  // namespace bench
