// The DLL's own memory for C++ exceptions.
//
// The library takes it from the heap and ends the process when there is none, which is just when
// std::bad_alloc is thrown. Here it comes from fixed pools, so that running out of memory is an
// error like any other and never the end of the driver host. A thread's part is given back when the
// thread ends: the library would keep it for good, because the module asks for no word of threads.

#include <windows.h>

#include <cxxabi.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace __cxxabiv1 {
/// As the C++ ABI lays it out; a zeroed one is that of a thread that has thrown nothing yet.
struct __cxa_eh_globals {
  void* caughtExceptions;
  unsigned int uncaughtExceptions;
};
}  // namespace __cxxabiv1

namespace {

using Globals = __cxxabiv1::__cxa_eh_globals;

/// Blocks of one kind, from a fixed number and then from the heap. Any thread, no lock.
template <class Block, std::size_t kCount>
class Pool {
 public:
  /// A zeroed block. Without any memory at all there is nothing left to do.
  Block* Take() {
    for (std::size_t i = 0; i < kCount; ++i) {
      if (!taken_[i].exchange(true)) return new (&blocks_[i]) Block{};
    }
    void* const block = std::calloc(1, sizeof(Block));
    if (block == nullptr) std::abort();
    return static_cast<Block*>(block);
  }

  void Give(Block* block) {
    if (block >= blocks_.data() && block < blocks_.data() + kCount) {
      taken_[static_cast<std::size_t>(block - blocks_.data())] = false;
    } else {
      std::free(block);
    }
  }

 private:
  std::array<Block, kCount> blocks_{};
  std::array<std::atomic<bool>, kCount> taken_{};
};

// ---- What each thread that throws needs.

constexpr std::size_t kThreads = 64;
constinit Pool<Globals, kThreads> threads;
constinit std::atomic<DWORD> threadSlot{FLS_OUT_OF_INDEXES};

void WINAPI OnThreadEnd(void* globals) {
  threads.Give(static_cast<Globals*>(globals));
}

/// The module's slot; FLS_OUT_OF_INDEXES while Windows gives none.
DWORD ThreadSlot() {
  DWORD slot = threadSlot;
  if (slot != FLS_OUT_OF_INDEXES) return slot;
  const DWORD made = FlsAlloc(&OnThreadEnd);
  if (threadSlot.compare_exchange_strong(slot, made)) return made;
  FlsFree(made);
  return slot;
}

/// For threads that Windows would not keep a value for, by their ids: found again at each look, and
/// not given back.
struct Stray {
  std::atomic<DWORD> thread{0};
  Globals globals{};
};
constinit std::array<Stray, kThreads> strays;
constinit std::atomic<bool> hasStrays{false};

Globals* StrayOf(DWORD thread) {
  for (Stray& stray : strays) {
    if (stray.thread == thread) return &stray.globals;
  }
  return nullptr;
}

Globals* NewStray() {
  hasStrays = true;
  for (Stray& stray : strays) {
    DWORD nobody = 0;
    if (stray.thread.compare_exchange_strong(nobody, GetCurrentThreadId())) return &stray.globals;
  }
  std::abort();
}

Globals* ThreadGlobals() {
  if (hasStrays) {
    if (Globals* const stray = StrayOf(GetCurrentThreadId()); stray != nullptr) return stray;
  }
  const DWORD slot = ThreadSlot();
  if (slot == FLS_OUT_OF_INDEXES) return NewStray();
  auto* globals = static_cast<Globals*>(FlsGetValue(slot));
  if (globals != nullptr) return globals;
  globals = threads.Take();
  if (FlsSetValue(slot, globals)) return globals;
  threads.Give(globals);
  return NewStray();
}

// The slot must not outlive the code that it calls. The loader's own call is used because the
// module's entry point belongs to the driver.
void WINAPI OnLoaderCall(void*, DWORD reason, void*) {
  if (reason != DLL_PROCESS_DETACH) return;
  const DWORD slot = threadSlot.exchange(FLS_OUT_OF_INDEXES);
  if (slot != FLS_OUT_OF_INDEXES) FlsFree(slot);
}

// ---- The exceptions themselves.

// More than the library's header before an exception, which no public header tells the size of
// (160 bytes for 64 bits, 96 for 32), and than anything that is thrown here.
constexpr std::size_t kHeader = 256;
constexpr std::size_t kLargest = 64;
constexpr std::size_t kExceptions = 16;

struct alignas(16) ExceptionBlock {
  std::array<std::byte, kHeader> header;
  std::array<std::byte, kLargest> object;
};
constinit Pool<ExceptionBlock, kExceptions> exceptions;

}  // namespace

// The section's name puts it into the loader's list, after the compiler's own.
extern "C" {
extern const PIMAGE_TLS_CALLBACK kStelvaneLoaderCall;
__attribute__((section(".CRT$XLF"), used)) const PIMAGE_TLS_CALLBACK kStelvaneLoaderCall =
    &OnLoaderCall;
}

namespace __cxxabiv1 {

extern "C" {

__cxa_eh_globals* __cxa_get_globals() noexcept {
  return ThreadGlobals();
}
__cxa_eh_globals* __cxa_get_globals_fast() noexcept {
  return ThreadGlobals();
}

void* __cxa_allocate_exception(std::size_t size) noexcept {
  if (size > kLargest) std::abort();  // nothing as large is thrown
  return exceptions.Take()->object.data();
}
void __cxa_free_exception(void* object) noexcept {
  exceptions.Give(reinterpret_cast<ExceptionBlock*>(static_cast<std::byte*>(object) - kHeader));
}

}  // extern "C"

}  // namespace __cxxabiv1
