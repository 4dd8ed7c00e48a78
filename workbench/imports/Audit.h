// Keeps the books of what the driver DLL has taken from Windows and not given back.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace bench {

/// Kinds of things that the DLL takes and has to give back.
enum class Resource {
  kEvent,              // CreateEventW, CloseHandle
  kThread,             // CreateThread, CloseHandle
  kRunningThread,      // a thread procedure that has not returned
  kCriticalSection,    // InitializeCriticalSection…, DeleteCriticalSection
  kComInitialization,  // CoInitializeEx, CoUninitialize, each thread by itself
  kTaskMemory,         // StringFromCLSID, CoTaskMemFree
  kHeapBlock,          // malloc, calloc, realloc, free
  kDeviceInfoList,     // SetupDiCreateDeviceInfoList, SetupDiDestroyDeviceInfoList
  kTraceRegistration,  // RegisterTraceGuidsW, UnregisterTraceGuids
  kCount
};

/// "event", "thread handle", …
const char* NameOf(Resource kind);

/// One thing that was taken and not given back.
struct Leak {
  Resource kind;
  std::uintptr_t value;    // the handle, address or (COM) thread id
  std::uint64_t order;     // creation order over all kinds, from 1
  DWORD thread;            // who took it
  std::uintptr_t site;     // return address of the call, as an offset into the module
  std::uint64_t quantity;  // bytes of a heap block, else how many times it was taken
};

/// One line, without its end.
std::string Describe(const Leak& leak);

/// Any thread may call it.
class Audit {
 public:
  /// Starts a period: what is alive now is no leak of the period. To be called after loading, since
  /// the DLL's language runtime keeps some blocks until it is unloaded, and, where exceptions are
  /// expected, after a first one on the thread, since it keeps some for each thread that threw.
  void Mark();

  /// What was taken in the period and is still alive, in the order of creation.
  std::vector<Leak> Leaks() const;
  /// Number alive now of a kind, whenever taken.
  std::size_t Alive(Resource kind) const;
  /// Things given back that had not been taken, in words.
  std::vector<std::string> Misuses() const;
  /// One line a leak and a misuse; empty if the books balance.
  std::string Report() const;

  void Take(Resource kind, std::uintptr_t value, std::uintptr_t site, std::uint64_t quantity = 1);
  /// Takes once more what may be held already.
  void TakeAgain(Resource kind, std::uintptr_t value, std::uintptr_t site);
  /// Returns whether the thing was in the books.
  bool Give(Resource kind, std::uintptr_t value);
  void Misuse(std::string what);

 private:
  struct Item {
    std::uint64_t order;
    DWORD thread;
    std::uintptr_t site;
    std::uint64_t quantity;
  };
  struct Book {
    mutable std::mutex mutex;
    std::unordered_map<std::uintptr_t, Item> items;
  };
  Book& Of(Resource kind) { return books_[static_cast<std::size_t>(kind)]; }
  const Book& Of(Resource kind) const { return books_[static_cast<std::size_t>(kind)]; }

  std::array<Book, static_cast<std::size_t>(Resource::kCount)> books_;
  std::atomic<std::uint64_t> created_{0};
  std::atomic<std::uint64_t> mark_{0};
  mutable std::mutex misuseMutex_;
  std::vector<std::string> misuses_;
};

}  // namespace bench
