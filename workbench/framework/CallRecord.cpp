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

CallEntry CallRecord::Entry(std::string_view object, std::string_view call) const {
  return {.object = std::string(object),
          .call = std::string(call),
          .result = S_OK,
          .thread = std::this_thread::get_id(),
          .time = clock_.Now()};
}

CallRecord::Begun CallRecord::Begin(std::string_view object, std::string_view call) {
  Begun begun;
  CallEntry entry = Entry(object, call);
  Hook hook;
  {
    const std::lock_guard lock(mutex_);
    begun.index = entries_.size();
    entry.within = Innermost(entry.thread);
    innermost_[entry.thread] = begun.index;
    for (Fault& fault : faults_) {
      if (fault.call != call) continue;
      --fault.remaining;
      const bool due = fault.remaining == 0 || (fault.remaining < 0 && fault.andAllAfter);
      if (due && !begun.fault) begun.fault = fault.result;
    }
    entry.planned = begun.fault.has_value();
    entries_.push_back(entry);
    hook = hook_;
  }
  if (hook) hook(entry);
  return begun;
}

void CallRecord::End(const Begun& begun, HRESULT result) {
  const std::lock_guard lock(mutex_);
  End(begun.index, result);
}

void CallRecord::EndInnermost(HRESULT result) {
  const std::lock_guard lock(mutex_);
  if (const auto index = Innermost(std::this_thread::get_id()); index) End(*index, result);
}

void CallRecord::End(std::size_t index, HRESULT result) {
  CallEntry& entry = entries_[index];
  entry.result = result;
  entry.ended = entries_.size();
  if (entry.within) {
    innermost_[entry.thread] = *entry.within;
  } else {
    innermost_.erase(entry.thread);
  }
}

void CallRecord::NoteFailed(std::string_view object, std::string_view call, HRESULT result) {
  CallEntry entry = Entry(object, call);
  entry.result = result;
  entry.planned = true;
  const std::lock_guard lock(mutex_);
  entry.within = Innermost(entry.thread);
  entries_.push_back(std::move(entry));
}

std::optional<std::size_t> CallRecord::Innermost(std::thread::id thread) const {
  const auto found = innermost_.find(thread);
  return found == innermost_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace bench
