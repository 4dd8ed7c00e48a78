// Sees everything that goes on around the driver and holds it against the rules.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tests/soak/rules/AnswerRules.h"
#include "tests/soak/rules/EngineUseRules.h"
#include "tests/soak/rules/ReportRules.h"
#include "tests/soak/rules/SpacingRules.h"
#include "tests/soak/rules/StateRules.h"
#include "tests/soak/rules/WireRules.h"
#include "workbench/framework/CallRecord.h"
#include "workbench/record/AtTranscript.h"
#include "workbench/sensorapi/SensorService.h"

namespace soak {

/// What a run had in it.
struct Tally {
  std::size_t seeds = 0;
  Millis simulated = 0;
  std::size_t decisions = 0;
  std::size_t commands = 0;
  std::size_t fixes = 0;
  std::size_t reports = 0;
  std::size_t states = 0;
  std::size_t requests = 0;
  std::size_t breaches = 0;
  std::map<std::string, Millis> longest;  // by kind of request: the longest answer

  void Add(const Tally& other);
};

/// Any thread; what it is told is in the order in which it happened.
class Watch final : public bench::ModemObserver, public bench::SensorListener {
 public:
  /// `show`: prints everything that it sees.
  Watch(bench::Clock& clock, bool show) : clock_(clock), show_(show) {}

  /// The modem's observers: this for the fixes, and this one for the lines.
  bench::AtTranscript& Lines() { return lines_; }
  /// The hook of the call record.
  void OnCall(const bench::CallEntry& entry);
  void OnFixSent(const bench::SentFix& sent) override;
  void OnReport(const bench::PostedEvent& event) override;
  void OnState(const bench::StateChange& change) override;

  /// A client's request begins and ends; the number names it.
  int Asked(const std::string& what, Millis limit);
  void Answered(int id, const std::string& what);
  /// Runs `tell` on the rules.
  template <class Tell>
  void Note(Tell tell) {
    const std::lock_guard lock(mutex_);
    tell(clock_.Now(), *this);
  }

  void ShowDeed(const std::string& deed) const { Show(clock_.Now(), "deed " + deed); }
  std::size_t Reports() const;
  Tally Sum() const;
  std::vector<Breach> Found() const;

  // ---- For Note.
  Breaches breaches;
  StateRules states{breaches};
  ReportRules reports{breaches};
  SpacingRules spacing{breaches};
  EngineUseRules uses{breaches};
  WireRules wire{breaches};
  AnswerRules answers{breaches};

 private:
  void OnLine(const bench::AtLine& line);
  void OnCommandLine(const bench::AtLine& line);

  void Show(Millis at, const std::string& what) const;

  bench::Clock& clock_;
  const bool show_;
  mutable std::mutex mutex_;
  bench::AtTranscript lines_{[this](const bench::AtLine& line) { OnLine(line); }};
  Tally tally_;
  int lastId_ = 0;
  std::map<int, Millis> since_;
  bench::AtLine lastCommand_;
};

}  // namespace soak
