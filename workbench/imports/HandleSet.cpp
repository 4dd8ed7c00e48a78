#include "workbench/imports/HandleSet.h"

#include <array>

namespace bench {

namespace {

DWORD Ask(DWORD count, const HANDLE* handles, bool all) {
  return count == 1 ? WaitForSingleObject(handles[0], 0)
                    : WaitForMultipleObjects(count, handles, all, 0);
}

}  // namespace

DWORD HandleSet::Poll() const {
  if (known_.size() != count_ || count_ == 0) return Ask(count_, handles_, all_);  // its own error
  return all_ ? PollAll() : PollAny();
}

DWORD HandleSet::PollAny() const {
  bool mayBe = false;
  for (DWORD i = 0; i < count_; ++i) {
    if (IsEndedThread(i)) {
      // It is signalled, unless something that stands before it is.
      const DWORD before = mayBe ? AskAny(i) : WAIT_TIMEOUT;
      return before != WAIT_TIMEOUT ? before : WAIT_OBJECT_0 + i;
    }
    mayBe = mayBe || MayBeSignalled(i);
  }
  return mayBe ? AskAny(count_) : WAIT_TIMEOUT;
}

DWORD HandleSet::AskAny(DWORD count) const {
  std::array<std::uint64_t, MAXIMUM_WAIT_OBJECTS> stamps;
  for (DWORD i = 0; i < count; ++i) stamps[i] = known_[i] ? known_[i]->Stamp() : 0;
  const DWORD result = Ask(count, handles_, false);
  if (result != WAIT_TIMEOUT && result >= WAIT_OBJECT_0 + count) return result;
  // The system takes the first that is signalled, so those before it are not.
  const DWORD first = result == WAIT_TIMEOUT ? count : result - WAIT_OBJECT_0;
  for (DWORD i = 0; i < count; ++i) {
    if (!known_[i] || IsThread(i)) continue;
    const bool taken = i == first && known_[i]->GetKind() == Waitable::Kind::kAutoEvent;
    if (i < first || taken) known_[i]->NotSignalled(stamps[i]);
  }
  return result;
}

DWORD HandleSet::PollAll() const {
  std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> open;
  DWORD openCount = 0;
  for (DWORD i = 0; i < count_; ++i) {
    if (!MayBeSignalled(i)) return WAIT_TIMEOUT;
    if (!IsEndedThread(i)) open[openCount++] = handles_[i];
  }
  return openCount == 0 ? WAIT_OBJECT_0 : Ask(openCount, open.data(), true);
}

void HandleSet::Settle(DWORD result) const {
  for (DWORD i = 0; i < known_.size(); ++i) {
    const bool satisfied = all_ ? result == WAIT_OBJECT_0 : result == WAIT_OBJECT_0 + i;
    if (satisfied && IsThread(i)) WaitForSingleObject(handles_[i], INFINITE);
  }
}

}  // namespace bench
