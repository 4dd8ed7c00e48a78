#include "workbench/framework/CallRecord.h"

#include <algorithm>

namespace bench {

void CallRecord::FailCall(std::string_view call, int nth, HRESULT result, bool andAllAfter) {
  const std::lock_guard lock(mutex_);
  faults_.push_back({std::string(call), nth, result, andAllAfter});
}

void CallRecord::ClearFaults() {
  const std::lock_guard lock(mutex_);
  faults_.clear();
}

void CallRecord::SetHook(Hook hook) {
  const std::lock_guard lock(mutex_);
  hook_ = std::move(hook);
}

std::vector<CallEntry> CallRecord::Calls() const {
  const std::lock_guard lock(mutex_);
  return entries_;
}

std::size_t CallRecord::Count(std::string_view call) const {
  const std::lock_guard lock(mutex_);
  return static_cast<std::size_t>(
      std::ranges::count_if(entries_, [&](const CallEntry& entry) { return entry.call == call; }));
}

CallRecord::Begun CallRecord::Begin(std::string_view object, std::string_view call) {
  Begun begun;
  const CallEntry entry{.object = std::string(object),
                        .call = std::string(call),
                        .result = S_OK,
                        .thread = std::this_thread::get_id(),
                        .time = clock_.Now()};
  Hook hook;
  {
    const std::lock_guard lock(mutex_);
    begun.index = entries_.size();
    entries_.push_back(entry);
    for (Fault& fault : faults_) {
      if (fault.call != call) continue;
      --fault.remaining;
      const bool due = fault.remaining == 0 || (fault.remaining < 0 && fault.andAllAfter);
      if (due && !begun.fault) begun.fault = fault.result;
    }
    hook = hook_;
  }
  if (hook) hook(entry);
  return begun;
}

void CallRecord::End(const Begun& begun, HRESULT result) {
  const std::lock_guard lock(mutex_);
  entries_[begun.index].result = result;
}

}  // namespace bench
