// The audit of one run: every framework object ever made, and every rule that was broken.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "workbench/framework/Rules.h"

namespace bench {

class FxBase;

/// Owns the objects until the end of the run, dead ones too, so that a use after the end of an
/// object is caught by name instead of crashing. Outlives the host; all methods from any thread.
class Ledger {
 public:
  Ledger();
  ~Ledger();
  Ledger(const Ledger&) = delete;
  Ledger& operator=(const Ledger&) = delete;

  /// Notes a broken rule (one of `rule::`, or another room's own name).
  void Report(std::string_view rule, std::string_view what);

  /// In the order in which they happened.
  std::vector<std::string> Violations() const;
  /// The violations of one rule.
  std::size_t Count(std::string_view rule) const;
  /// "<name> (n references)" for every object that is still referenced or in the object tree.
  std::vector<std::string> Alive() const;
  /// Makes a violation of every object that the driver still holds.
  void ReportLeaks();

  /// Looks at a call of the driver ("Interface::Method") on the thread that makes it, reports what
  /// is wrong with the place it is made from, and says whether it is to be refused.
  using CallCheck = std::function<bool(std::string_view object, std::string_view call)>;
  /// To be set before the driver runs.
  void SetCallCheck(CallCheck check) { callCheck_ = std::move(check); }
  bool Refuses(std::string_view object, std::string_view call) const {
    return callCheck_ && callCheck_(object, call);
  }

  /// Waits until nothing runs on behalf of deleted objects any more: a reader whose target was
  /// deleted from its own callback is still in it.
  void WaitForDeleted();

  /// A name for the next object of a kind: "request 1", "request 2", ...
  std::string NextName(std::string_view kind);
  /// Takes over a new object; see `Make` in FxBase.h.
  void Adopt(std::unique_ptr<FxBase> object);
  /// The object behind an interface pointer that a driver passed; null for a foreign pointer.
  FxBase* Find(const void* interfacePointer) const;

  /// Guards reference counts, states and the tree of all objects.
  std::mutex& objectLock() const { return objectLock_; }

 private:
  mutable std::mutex objectLock_;
  std::vector<std::unique_ptr<FxBase>> objects_;
  std::unordered_map<const void*, FxBase*> byPointer_;

  CallCheck callCheck_;

  mutable std::mutex reportLock_;
  struct Entry {
    std::string rule;
    std::string what;
  };
  std::vector<Entry> violations_;
  std::map<std::string, int, std::less<>> lastNumber_;
};

}  // namespace bench
