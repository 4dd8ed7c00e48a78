// A modem that obeys at once and reports only what the test tells it to.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/GnssFix.h"
#include "workbench/modem/UsbLink.h"

namespace bench {

/// Answers every command in the moment in which it is written, with "OK" unless told otherwise.
/// All members from any thread.
class SensorModem final : public UsbLink {
 public:
  explicit SensorModem(const Clock& clock) : clock_(clock) {}

  std::int32_t OnControlRequest(const ControlRequest& request) override { return 0; }
  std::int32_t OnHostWrite(std::string_view bytes) override;
  void SetSink(ByteSink sink) override;

  static constexpr int kAlways = -1;
  /// Commands that begin so are answered "ERROR", or not even echoed; the latest wish counts.
  void Refuse(std::string_view beginning, int count = kAlways);
  void Ignore(std::string_view beginning, int count = kAlways);
  /// Commands that begin so are echoed and left without an answer.
  void Withhold(std::string_view beginning, int count = kAlways);
  void ObeyAll();
  /// What "AT+XLCSSWITCH?" is told.
  void SetEngineSwitch(bool on);

  /// Says a line out of nowhere.
  void Say(std::string_view line);
  /// A report with one sentence; its own "OK" comes before the sentence.
  void SayReport(std::string_view report);
  void SayReport(const GnssFix& fix, int form = 2);
  /// The same without the "OK" of its own.
  void SayReportOfTheOtherShape(const GnssFix& fix);

  struct Command {
    Millis at = 0;
    std::string line;
  };
  std::vector<Command> Commands() const;

 private:
  enum class Mood { kRefuse, kIgnore, kWithhold };
  struct Wish {
    std::string beginning;
    Mood mood;
    int count;
  };
  void Add(std::string_view beginning, Mood mood, int count);
  std::string Answer(const std::string& line);
  void Send(const std::string& text);

  const Clock& clock_;
  mutable std::mutex mutex_;
  ByteSink sink_;
  std::vector<Wish> wishes_;
  std::vector<Command> commands_;
  bool echo_ = false;
  bool engineOn_ = true;
  std::uint32_t requestId_ = 0;
};

}  // namespace bench
