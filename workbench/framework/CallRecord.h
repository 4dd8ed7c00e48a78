// What a driver called, in order, and which of its calls are planned to fail.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "workbench/clock/Clock.h"

namespace bench {

/// The callee of the driver's own callbacks and exports.
inline constexpr std::string_view kDriverCallee = "driver";

struct CallEntry {
  std::string object;  // the callee's name, for example "request 3"
  std::string call;    // "Interface::Method", by the interface that declares the method
  HRESULT result = S_OK;
  std::thread::id thread;
  Millis time = 0;
  bool planned = false;  // its failure
  /// Which entry the thread was in when it called; nothing: in none.
  std::optional<std::size_t> within = std::nullopt;
  std::size_t ended = 0;  // how many entries there were at its end; 0: it runs
};

/// Shared by everything that a driver calls. All methods from any thread; no lock is held while the
/// hook runs.
class CallRecord {
 public:
  explicit CallRecord(const Clock& clock) : clock_(clock) {}

  /// Plans a failure of the nth call (from 1, counted from now on) of that name. Calls that return
  /// no HRESULT fail in their own way: a null pointer, FALSE, or nothing done.
  /// QueryInterface goes by "IUnknown::QueryInterface(<interface>)".
  void FailCall(std::string_view call, int nth, HRESULT result, bool andAllAfter = false);
  void ClearFaults();

  /// Runs at the start of every call, on the caller's thread, which may hold locks of the driver:
  /// anything that waits for the driver belongs on a thread of its own.
  using Hook = std::function<void(const CallEntry& entry)>;
  void SetHook(Hook hook);

  std::vector<CallEntry> Calls() const;
  std::size_t Count(std::string_view call) const;

  /// For the callee: notes the call, runs the hook and says whether the call is to fail.
  struct Begun {
    std::size_t index = 0;
    std::optional<HRESULT> fault;
  };
  Begun Begin(std::string_view object, std::string_view call);
  void End(const Begun& begun, HRESULT result);
  /// Ends what this thread began last.
  void EndInnermost(HRESULT result);
  /// Notes a call that was made to fail and is over; it neither counts for a fault nor runs the
  /// hook.
  void NoteFailed(std::string_view object, std::string_view call, HRESULT result);

  /// A whole call of a callee: the planned failure, or what `body` returns.
  template <class Body>
  HRESULT Run(std::string_view object, std::string_view call, Body body) {
    const Begun begun = Begin(object, call);
    const HRESULT result = begun.fault ? *begun.fault : body();
    End(begun, result);
    return result;
  }

 private:
  struct Fault {
    std::string call;
    int remaining;  // calls until it fails, this one included
    HRESULT result;
    bool andAllAfter;
  };

  void End(std::size_t index, HRESULT result);
  CallEntry Entry(std::string_view object, std::string_view call) const;
  std::optional<std::size_t> Innermost(std::thread::id thread) const;

  const Clock& clock_;
  mutable std::mutex mutex_;
  std::vector<CallEntry> entries_;
  std::map<std::thread::id, std::size_t> innermost_;  // of the entries that a thread is in
  std::vector<Fault> faults_;
  Hook hook_;
};

}  // namespace bench
