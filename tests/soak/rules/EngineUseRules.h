// The hold that keeps the device out of idle, as far as it can be seen from outside.
#pragma once

#include <string_view>

#include "tests/soak/rules/Breaches.h"

namespace soak {

/// Rules:
///   engine-use-balance   holds are taken and given back in turn, and never below none;
///   engine-use-talking   the device is held whenever a command is written; one that had to
///                        wait may have lost its hold to something that ended a request;
///   engine-use-kept      an accepted location request keeps the hold until something ends it: a
///                        stop, an engine error, a fix of a request for one or while no short
///                        interval is sure, a power-up;
///   engine-use-returned  without any fault in the run so far, nothing is held once nobody is
///                        connected.
class EngineUseRules {
 public:
  explicit EngineUseRules(Breaches& breaches) : breaches_(breaches) {}

  void StopIdle(Millis at);
  /// `sure`: an interval of at most 8000 ms is in force for certain.
  void ResumeIdle(Millis at, bool sure);
  void Written(Millis at, std::string_view line, bool sure);
  void Said(Millis at, std::string_view line);
  void PowerDown() { reading_ = false; }
  void PowerUp(Millis at);
  /// The port is opened: what lay about unread while it was closed, or the power down, may be read
  /// now, and a command that waited for it is written then.
  void Opened(Millis at);
  /// The device is stopped, which gives all uses back.
  void Ending() { ending_ = true; }
  /// Something went wrong, or is made to: the run is no longer a fair one.
  void Fault() { fair_ = false; }
  /// So many more, or fewer, are connected.
  void Clients(Millis at, int change);
  /// To be called when the run has been quiet for a while.
  void Quiet(Millis at);

 private:
  bool MayHaveEnded(bool sure) const;

  Breaches& breaches_;
  int holds_ = 0;
  Millis firstHold_ = 0;

  Millis lastWritten_ = -1'000'000;
  Millis calmSince_ = 0;  // the last time that no command was under way for long
  Millis openedAt_ = -1;
  bool starting_ = false;  // the last command is a location request
  bool idSaid_ = false;
  bool resultSaid_ = false;
  int startWrites_ = 0;
  bool single_ = false;    // the last location request is one for a single fix
  Millis startedAt_ = -1;  // when the modem accepted the request that runs; negative: none runs
  Millis endedAt_ = -1;    // the last thing that may end a request
  Millis fixAt_ = -1;      // the last fix; it ends a request unless the interval is short

  bool reading_ = true;
  bool ending_ = false;
  bool fair_ = true;
  int connected_ = 0;
  Millis emptySince_ = 0;
};

}  // namespace soak
