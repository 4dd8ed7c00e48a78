// The connected sensor clients and what each of them asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/Sync.h"

namespace stelvane {

/// No report interval, or none required.
inline constexpr std::uint32_t kNoInterval = 0xFFFFFFFF;
/// The report interval of clients that want data as fast as possible, in milliseconds.
inline constexpr std::uint32_t kFastestInterval = 1000;

/// A client is known by the address of its file object, which is never followed here.
using ClientId = const void*;

struct ClientEntry {
  ClientId client = nullptr;
  std::uint32_t reportInterval = kNoInterval;  // whole seconds; 0: as fast as possible
  std::uint32_t desiredAccuracy = 0;
  bool subscribed = false;
};

/// Any thread; one lock of its own, held for the length of one operation.
class ClientTable {
 public:
  HRESULT Initialize() { return lock_.Initialize(); }

  enum class Connection { kKnown, kFirst, kFurther };
  /// Adds an entry unless the client has one. May throw std::bad_alloc.
  Connection Connect(ClientId client) EXCLUDES(lock_);
  /// Removes the client's entry, if any; true when the table is empty afterwards.
  bool Disconnect(ClientId client) EXCLUDES(lock_);
  void Clear() EXCLUDES(lock_);

  enum class Subscription { kUnknownClient, kUnchanged, kChanged };
  struct SubscriptionChange {
    Subscription result;
    bool hasInterval;   // the client has set a report interval
    bool isOnlyClient;  // the table holds exactly one client
  };
  SubscriptionChange SetSubscribed(ClientId client, bool subscribed) EXCLUDES(lock_);

  /// Stores whole seconds, at least 1 unless `milliseconds` is 0. E_UNEXPECTED: unknown client.
  HRESULT SetReportInterval(ClientId client, std::uint32_t milliseconds) EXCLUDES(lock_);
  /// E_UNEXPECTED: unknown client.
  HRESULT SetDesiredAccuracy(ClientId client, std::uint32_t accuracy) EXCLUDES(lock_);

  /// The interval that serves all subscribed clients which have set one, in milliseconds:
  /// kFastestInterval when all of them ask for 0, kNoInterval when there is none.
  std::uint32_t RequiredInterval() EXCLUDES(lock_);
  std::size_t ConnectedCount() EXCLUDES(lock_);
  std::size_t SubscribedCount() EXCLUDES(lock_);

  /// Reads the entries from the first on, until `visit` gives false.
  template <class Visit>
  void Walk(Visit&& visit) EXCLUDES(lock_) {
    const ScopedLock lock(lock_);
    for (const ClientEntry& entry : entries_) {
      if (!visit(entry)) return;
    }
  }

 private:
  ClientEntry* Find(ClientId client) REQUIRES(lock_);

  CriticalSection lock_;
  std::vector<ClientEntry> entries_ GUARDED_BY(lock_);
};

}  // namespace stelvane
