#include "modem/ClientTable.h"

#include <algorithm>

namespace stelvane {

namespace {

constexpr std::uint32_t kMsPerSecond = 1000;

std::uint32_t ToWholeSeconds(std::uint32_t milliseconds) {
  return milliseconds == 0 ? 0 : std::max(1U, milliseconds / kMsPerSecond);
}

}  // namespace

ClientTable::Connection ClientTable::Connect(ClientId client) {
  const ScopedLock lock(lock_);
  if (Find(client) != nullptr) return Connection::kKnown;
  entries_.push_back({.client = client});
  return entries_.size() == 1 ? Connection::kFirst : Connection::kFurther;
}

bool ClientTable::Disconnect(ClientId client) {
  const ScopedLock lock(lock_);
  std::erase_if(entries_, [client](const ClientEntry& entry) { return entry.client == client; });
  return entries_.empty();
}

void ClientTable::Clear() {
  const ScopedLock lock(lock_);
  entries_.clear();
}

ClientTable::SubscriptionChange ClientTable::SetSubscribed(ClientId client, bool subscribed) {
  const ScopedLock lock(lock_);
  ClientEntry* const entry = Find(client);
  if (entry == nullptr) return {Subscription::kUnknownClient, false, false};
  const bool changes = entry->subscribed != subscribed;
  entry->subscribed = subscribed;
  return {changes ? Subscription::kChanged : Subscription::kUnchanged,
          entry->reportInterval != kNoInterval, entries_.size() == 1};
}

HRESULT ClientTable::SetReportInterval(ClientId client, std::uint32_t milliseconds) {
  const ScopedLock lock(lock_);
  ClientEntry* const entry = Find(client);
  if (entry == nullptr) return E_UNEXPECTED;
  entry->reportInterval = ToWholeSeconds(milliseconds);
  return S_OK;
}

HRESULT ClientTable::SetDesiredAccuracy(ClientId client, std::uint32_t accuracy) {
  const ScopedLock lock(lock_);
  ClientEntry* const entry = Find(client);
  if (entry == nullptr) return E_UNEXPECTED;
  entry->desiredAccuracy = accuracy;
  return S_OK;
}

std::uint32_t ClientTable::RequiredInterval() {
  const ScopedLock lock(lock_);
  bool anyFastest = false;
  std::uint32_t seconds = kNoInterval;
  for (const ClientEntry& entry : entries_) {
    if (!entry.subscribed || entry.reportInterval == kNoInterval) continue;
    if (entry.reportInterval == 0) {
      anyFastest = true;
    } else {
      seconds = std::min(seconds, entry.reportInterval);
    }
  }
  if (seconds != kNoInterval) return seconds * kMsPerSecond;
  return anyFastest ? kFastestInterval : kNoInterval;
}

std::size_t ClientTable::ConnectedCount() {
  const ScopedLock lock(lock_);
  return entries_.size();
}

std::size_t ClientTable::SubscribedCount() {
  const ScopedLock lock(lock_);
  return static_cast<std::size_t>(std::count_if(
      entries_.begin(), entries_.end(), [](const ClientEntry& entry) { return entry.subscribed; }));
}

ClientEntry* ClientTable::Find(ClientId client) {
  const auto found =
      std::find_if(entries_.begin(), entries_.end(),
                   [client](const ClientEntry& entry) { return entry.client == client; });
  return found == entries_.end() ? nullptr : &*found;
}

}  // namespace stelvane
