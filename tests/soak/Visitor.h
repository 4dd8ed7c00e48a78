// A client of the sensor that comes, asks and goes as it is told, on a thread of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tests/soak/Errands.h"
#include "tests/soak/Watch.h"
#include "workbench/rig/Rig.h"

namespace soak {

/// The visitors' common knowledge that the device is about to go: no file is opened or closed from
/// then on.
class Doors {
 public:
  explicit Doors(bench::Clock& clock) : clock_(clock) {}

  /// Runs `pass` unless the doors are closed.
  void Through(const std::function<void()>& pass);
  /// Waits for those who are in the door.
  void Close();

 private:
  bench::Clock& clock_;
  std::mutex mutex_;
  int passing_ = 0;
  bool closed_ = false;
};

/// The calls return at once; the visitor does one thing after the other.
class Visitor {
 public:
  /// Everything named must outlive the visitor.
  Visitor(bench::Rig& rig, Watch& watch, Doors& doors, int number);

  void Connect();
  /// `politely`: unsubscribes first.
  void Leave(bool politely);
  void Subscribe(bool subscribe);
  void SetInterval(std::int64_t milliseconds);
  void Write(const PROPERTYKEY& key, const bench::Variant& value);
  void GetEverything();
  void Read();
  void AskForLists();

  bool Idle() const { return errands_.Idle(); }

 private:
  /// An errand for a visitor who is connected.
  void WhenConnected(std::function<void()> errand);
  /// One request: its beginning and its end are noted.
  template <class Send>
  auto Ask(const std::string& what, Millis limit, Send send);

  bench::Rig& rig_;
  Watch& watch_;
  Doors& doors_;
  const int number_;
  std::unique_ptr<bench::ClientSession> session_;  // the errands' thread alone uses it
  Errands errands_;
};

}  // namespace soak
