// Makes imported functions fail: which one, at which call, and how.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// What a function that fails gives back.
struct Failure {
  std::uintptr_t result;    // as the function returns it: null, FALSE, an HRESULT, an error code
  std::uint32_t lastError;  // what GetLastError then gives; 0 leaves it as it is
};

/// How far a failure reaches once its call has come.
enum class Extent {
  kOnce,          // that call only
  kSameFunction,  // that call and all later ones of the function
  kEverything,    // that call and all later ones of every function that can fail
};

/// How often a redirected function was called.
struct ImportCalls {
  std::string name;
  std::uint64_t calls;
  bool canFail;
};

/// Counts the calls of every redirected function and fails those that the test has chosen. Any
/// thread may call it.
class FaultPlan {
 public:
  FaultPlan();

  /// Fails the `nth` call (from 1, counted from the load or the last Clear) of an import in the way
  /// that is natural for it. Throws std::invalid_argument for a function that cannot fail or is not
  /// known.
  void FailImport(std::string_view name, std::uint64_t nth, Extent extent = Extent::kOnce);
  /// The same with a failure of the test's choice, for any redirected function that has a result.
  void FailImport(std::string_view name, std::uint64_t nth, Failure failure,
                  Extent extent = Extent::kOnce);
  /// Forgets the plan and sets all counts to 0.
  void Clear();

  /// Calls since the load or the last Clear. Throws std::invalid_argument for an unknown function.
  std::uint64_t CallCount(std::string_view name) const;
  std::uint64_t CallCount(std::size_t import) const { return counts_[import]; }
  /// Calls that were made to fail since the last Clear.
  std::uint64_t Failed() const { return failed_; }

  /// Runs whenever a call is made to fail, on its thread, which may hold locks of the module and of
  /// the system. Not to be set while a call runs.
  using Observer = std::function<void(std::string_view name, const Failure& failure)>;
  void SetObserver(Observer observer) { observer_ = std::move(observer); }

  /// Counts a call; gives the failure that it has to end with, if the plan holds one.
  std::optional<Failure> OnCall(std::size_t import);

 private:
  struct Entry {
    std::uint64_t nth;
    Failure failure;
    Extent extent;
  };
  std::optional<Failure> Planned(std::size_t import, std::uint64_t call);

  std::vector<std::atomic<std::uint64_t>> counts_;
  std::atomic<bool> armed_{false};
  std::atomic<std::uint64_t> failed_{0};
  std::mutex mutex_;
  std::multimap<std::size_t, Entry> plan_;
  bool everything_ = false;
  Observer observer_;
};

}  // namespace bench
