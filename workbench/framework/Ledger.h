// The audit of one run: every framework object ever made, and every rule that was broken.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bench {

class FxBase;

/// The names of the rules; a violation reads "<rule>: <what happened>".
namespace rule {
inline constexpr std::string_view kLeak = "leaked reference";
inline constexpr std::string_view kOverRelease = "released too often";
inline constexpr std::string_view kDeletedObject = "use of a deleted object";
inline constexpr std::string_view kForeignObject = "not a framework object";
inline constexpr std::string_view kFrameworkOwned = "delete of an object of the framework";
inline constexpr std::string_view kUnexpectedCall = "unexpected call";
inline constexpr std::string_view kBadArgument = "bad argument";
inline constexpr std::string_view kBadFormat = "bad request format";
inline constexpr std::string_view kCompletedTwice = "request completed twice";
inline constexpr std::string_view kTouchedAfterCompletion = "request touched after completion";
inline constexpr std::string_view kNeverCompleted = "request never completed";
inline constexpr std::string_view kSlowAnswer = "request not answered in time";
inline constexpr std::string_view kReaderReentered = "reader controlled from its own callback";
inline constexpr std::string_view kReaderOverlap = "reader start and stop overlap";
inline constexpr std::string_view kIdleBalance = "idle balance";
inline constexpr std::string_view kQueryInterface = "query interface";
inline constexpr std::string_view kEscapedException = "exception left a callback";
}  // namespace rule

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

  mutable std::mutex reportLock_;
  struct Entry {
    std::string rule;
    std::string what;
  };
  std::vector<Entry> violations_;
  std::map<std::string, int, std::less<>> lastNumber_;
};

}  // namespace bench
