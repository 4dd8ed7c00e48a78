// What the module takes and gives back: handles, sections, COM, memory.
#include <objbase.h>

#include <malloc.h>

#include <cstdlib>
#include <string>

#include "workbench/framework/Rules.h"
#include "workbench/imports/Hooks.h"
#include "workbench/imports/LastError.h"

namespace bench {

namespace {

Audit& Books() {
  return Redirector::Current().Books();
}

std::uintptr_t Key(const void* thing) {
  return reinterpret_cast<std::uintptr_t>(thing);
}

void TakeIf(const void* thing, Resource kind, Site site, std::uint64_t quantity = 1) {
  if (thing != nullptr) Books().Take(kind, Key(thing), site.offset, quantity);
}

HANDLE MakeEvent(Site site, SECURITY_ATTRIBUTES* attributes, BOOL manual, BOOL set,
                 const wchar_t* name) {
  const HANDLE event = CreateEventW(attributes, manual, set, name);
  if (event == nullptr) return nullptr;
  TakeIf(event, Resource::kEvent, site);
  // A named event may be set by others, so the system is always asked about it.
  if (name == nullptr) Redirector::Current().Time().Created(event, manual != FALSE, set != FALSE);
  return event;
}

HANDLE MakeThread(Site site, SECURITY_ATTRIBUTES* attributes, SIZE_T stack,
                  LPTHREAD_START_ROUTINE body, void* argument, DWORD flags, DWORD* id) {
  Audit& books = Books();
  return Redirector::Current().Time().StartThread(
      attributes, stack, body, argument, flags, id,
      [&books, site](HANDLE thread, DWORD threadId) {
        books.Take(Resource::kThread, Key(thread), site.offset);
        books.Take(Resource::kRunningThread, threadId, site.offset);
      },
      [&books](DWORD threadId, bool threw) {
        books.Give(Resource::kRunningThread, threadId);
        if (threw) {
          Redirector::Current().Broken().Add(rule::kExceptionFromThread,
                                             "thread " + std::to_string(threadId));
        }
      });
}

// The books are settled before the handle's number can be given out again.
BOOL Close(HANDLE handle) {
  Redirector& redirector = Redirector::Current();
  redirector.Time().Closing(handle);
  const bool known =
      Books().Give(Resource::kEvent, Key(handle)) || Books().Give(Resource::kThread, Key(handle));
  const BOOL closed = CloseHandle(handle);
  if (!closed && !known) Books().Misuse("CloseHandle of what is no handle");
  return closed;
}

void InitializeSection(Site site, CRITICAL_SECTION* section) {
  InitializeCriticalSection(section);
  TakeIf(section, Resource::kCriticalSection, site);
}

BOOL InitializeSectionAndSpin(Site site, CRITICAL_SECTION* section, DWORD spin) {
  const BOOL done = InitializeCriticalSectionAndSpinCount(section, spin);
  if (done) TakeIf(section, Resource::kCriticalSection, site);
  return done;
}

BOOL InitializeSectionEx(Site site, CRITICAL_SECTION* section, DWORD spin, DWORD flags) {
  const BOOL done = InitializeCriticalSectionEx(section, spin, flags);
  if (done) TakeIf(section, Resource::kCriticalSection, site);
  return done;
}

void DeleteSection(CRITICAL_SECTION* section) {
  if (!Books().Give(Resource::kCriticalSection, Key(section))) {
    Books().Misuse("DeleteCriticalSection of what is no critical section");
    return;  // nothing good can come of it
  }
  Redirector::Current().Locks().Gone(section, sizeof *section);
  DeleteCriticalSection(section);
}

HRESULT InitializeCom(Site site, void* reserved, DWORD model) {
  const HRESULT result = CoInitializeEx(reserved, model);
  if (SUCCEEDED(result)) {
    Books().TakeAgain(Resource::kComInitialization, GetCurrentThreadId(), site.offset);
  }
  return result;
}

void UninitializeCom() {
  if (!Books().Give(Resource::kComInitialization, GetCurrentThreadId())) {
    Books().Misuse("CoUninitialize without CoInitializeEx");
    return;  // it would take what the workbench itself has initialised
  }
  CoUninitialize();
}

HRESULT ClassText(Site site, REFCLSID id, wchar_t** text) {
  const HRESULT result = StringFromCLSID(id, text);
  if (SUCCEEDED(result)) TakeIf(*text, Resource::kTaskMemory, site);
  return result;
}

void FreeTaskMemory(void* block) {
  Books().Give(Resource::kTaskMemory, Key(block));
  CoTaskMemFree(block);
}

void* Allocate(Site site, std::size_t size) {
  void* const block = std::malloc(size);
  TakeIf(block, Resource::kHeapBlock, site, size);
  return block;
}

void* AllocateZeroed(Site site, std::size_t count, std::size_t size) {
  void* const block = std::calloc(count, size);
  TakeIf(block, Resource::kHeapBlock, site, count * size);
  return block;
}

void* Reallocate(Site site, void* block, std::size_t size) {
  const bool known = Books().Give(Resource::kHeapBlock, Key(block));
  void* const moved = std::realloc(block, size);
  TakeIf(moved, Resource::kHeapBlock, site, size);
  if (moved == nullptr && known && size != 0) TakeIf(block, Resource::kHeapBlock, site, size);
  return moved;
}

void Free(void* block) {
  const KeepLastError keep;
  Books().Give(Resource::kHeapBlock, Key(block));
  if (block != nullptr) Redirector::Current().Locks().Gone(block, _msize(block));
  std::free(block);
}

}  // namespace

std::span<const Hook> ResourceHooks() {
  static const Hook kHooks[] = {
      Redirect<ImportIndex("CreateEventW"), &MakeEvent>(),
      Redirect<ImportIndex("CreateThread"), &MakeThread>(),
      Redirect<ImportIndex("CloseHandle"), &Close>(),
      Redirect<ImportIndex("InitializeCriticalSection"), &InitializeSection>(),
      Redirect<ImportIndex("InitializeCriticalSectionAndSpinCount"), &InitializeSectionAndSpin>(),
      Redirect<ImportIndex("InitializeCriticalSectionEx"), &InitializeSectionEx>(),
      Redirect<ImportIndex("DeleteCriticalSection"), &DeleteSection>(),
      Redirect<ImportIndex("CoInitializeEx"), &InitializeCom>(),
      Redirect<ImportIndex("CoUninitialize"), &UninitializeCom>(),
      Redirect<ImportIndex("StringFromCLSID"), &ClassText>(),
      Redirect<ImportIndex("CoTaskMemFree"), &FreeTaskMemory>(),
      Redirect<ImportIndex("malloc"), &Allocate>(),
      Redirect<ImportIndex("calloc"), &AllocateZeroed>(),
      Redirect<ImportIndex("realloc"), &Reallocate>(),
      Redirect<ImportIndex("free"), &Free>(),
  };
  return kHooks;
}

}  // namespace bench
