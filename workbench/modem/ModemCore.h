// The modem's workings; Modem is their face.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "workbench/modem/Agenda.h"
#include "workbench/modem/AtCommands.h"
#include "workbench/modem/CommandFaults.h"
#include "workbench/modem/GnssEngine.h"
#include "workbench/modem/Modem.h"
#include "workbench/modem/PortWriter.h"

namespace bench {

/// Everything but the sink is under `mutex_`. The thread works with the lock held and collects
/// what others are to see as `happenings_`; it hands those out, in their order, with the lock
/// released, so that a sink or an observer may call the modem.
class Modem::Core {
 public:
  Core(Clock& clock, ModemOptions options, std::unique_ptr<TrackSource> track,
       std::vector<ModemObserver*> observers);
  ~Core();

  std::int32_t ControlRequested(const ControlRequest& request);
  void HostWrote(std::string_view bytes);
  void SetSink(ByteSink sink);
  ModemSnapshot Snapshot() const;
  void Inject(ModemFaults faults);

 private:
  struct CommandSeen {
    Millis at;
    std::string line;
  };
  struct Chunk {
    std::string bytes;
  };
  using Happening = std::variant<CommandSeen, Chunk, SentFix>;

  void Run();
  void Wake();
  void HandOut(const std::vector<Happening>& happenings);

  void TakeInput(Millis now);
  void LineArrived(Millis now, std::string line);
  void StartNextCommand(Millis now);
  void Execute(Millis due, const std::string& line, const std::optional<CommandFault>& fault);
  void Finish(Millis due, const std::string& text, bool restart,
              const std::optional<CommandFault>& fault);
  std::string AnswerText(const AtAnswer& answer, const std::optional<CommandFault>& fault);

  void SendReport(Millis due, std::uint32_t id, bool single, bool straggler, const GnssFix& fix);
  void SendFixError(Millis due);
  void SendStraggler(Millis due);

  void Plan(Millis from, ModemFaults faults);
  void Apply(Millis due, const TimedFault& fault);
  void Restart(Millis due);
  std::string Garbage(std::size_t bytes);
  bool Deaf(Millis now) const { return booting_ || now < silentUntil_; }
  void Say(Millis now, std::string_view text);

  Clock& clock_;
  const ModemOptions options_;
  const std::vector<ModemObserver*> observers_;
  std::atomic<bool> wake_{false};
  std::atomic<bool> stopping_{false};

  mutable std::mutex mutex_;
  ModemSnapshot state_;
  Agenda agenda_;
  PortWriter port_;
  GnssEngine engine_;
  CommandFaults commandFaults_;
  std::vector<Happening> happenings_;
  int reportForm_;
  ReportShape reportShape_;
  std::string inbox_;
  std::string line_;               // received, its end not yet
  std::deque<std::string> lines_;  // whole, waiting for the command before them
  bool busy_ = false;              // a command waits for its answer
  bool booting_ = false;
  bool echoStuckOff_ = false;
  Millis silentUntil_ = 0;
  std::int64_t stalls_ = 0;
  std::mt19937 noise_;

  std::mutex sinkMutex_;  // held while the sink runs
  ByteSink sink_;

  Thread thread_;
};

}  // namespace bench
