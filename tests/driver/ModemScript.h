// A modem that answers from a table: a test writes every line that it says.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/clock/Clock.h"
#include "workbench/modem/UsbLink.h"

namespace bench {

/// What is said to a command line (without its line end); nothing said: silence.
using Reply = std::function<std::string(std::string_view command)>;

/// The echo, the information lines and "OK".
Reply Ok(std::vector<std::string> information = {});
/// The echo and a final result with "ERROR".
Reply Error(std::string result = "ERROR");
/// These bytes and nothing else.
Reply Raw(std::string bytes);
Reply Silence();

/// Answers at once, on the thread that writes, and says more whenever it is told to. Unless told
/// otherwise it echoes and answers "OK", has a SIM, and gives location requests the id 17. All
/// methods from any thread.
class ModemScript final : public UsbLink {
 public:
  static constexpr const char* kImsi = "001010123456789";

  explicit ModemScript(const Clock& clock);

  /// Commands that begin with `command` get these replies one after the other, and the last of them
  /// from then on. A later call comes before an earlier one.
  void Answer(std::string command, std::vector<Reply> replies);
  void Answer(std::string command, Reply reply);
  /// Says bytes of its own accord, as one chunk.
  void Say(std::string_view bytes);
  /// Refuses this control request (from 1, counted from the first) and all after it.
  void RefuseControl(int nth, std::int32_t status);

  struct Write {
    Millis at;
    std::string bytes;
  };
  std::vector<Write> Writes() const;
  /// The lines written so far without their line ends.
  std::vector<std::string> Commands() const;
  /// The moments at which a command was written.
  std::vector<Millis> TimesOf(std::string_view command) const;
  std::vector<ControlRequest> ControlRequests() const;
  /// Forgets what was written so far.
  void Forget();

  std::int32_t OnControlRequest(const ControlRequest& request) override;
  std::int32_t OnHostWrite(std::string_view bytes) override;
  void SetSink(ByteSink sink) override;

 private:
  struct Rule {
    std::string command;
    std::vector<Reply> replies;
    std::size_t next = 0;
  };
  std::string ReplyTo(std::string_view bytes);

  const Clock& clock_;
  mutable std::mutex mutex_;
  std::vector<Rule> rules_;
  std::vector<Write> writes_;
  std::vector<ControlRequest> controls_;
  int refuseFrom_ = 0;
  std::int32_t refusal_ = 0;
  ByteSink sink_;
};

}  // namespace bench
