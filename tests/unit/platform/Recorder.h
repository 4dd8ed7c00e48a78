// Implementations of interfaces whose every method notes its own name, and the calling of one by
// its place in the table of virtual functions.
#pragma once

#include <unknwn.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

/// Overrides one method of an interface: it notes its name and gives zero. The parameter types
/// repeat those of the declaration, so that a changed type does not compile. One line a method: a
/// method that an interface gains leaves its recorder abstract.
#define RECORD(Result, Method, ...)                       \
  Result STDMETHODCALLTYPE Method(__VA_ARGS__) override { \
    return Note<Result>(#Method);                         \
  }

namespace platform_test {

/// The method that was called last.
inline std::string_view lastMethod;

template <class Result>
Result Note(std::string_view method) {
  lastMethod = method;
  return Result();
}

template <class Interface = IUnknown>
struct UnknownRecorder : Interface {
  RECORD(HRESULT, QueryInterface, REFIID, void**);
  RECORD(ULONG, AddRef);
  RECORD(ULONG, Release);
};

/// One line of a table of virtual functions, counted by hand from the platform's reference.
struct Slot {
  std::size_t index;
  std::string_view method;
};

/// The table of one interface: a base (named) and what the interface adds to it.
struct Vtable {
  std::string_view interfaceName;
  std::string_view baseName;
  void* (*object)();
  std::vector<Slot> slots;
};

inline void PrintTo(const Vtable& table, std::ostream* out) {
  *out << table.interfaceName;
}

/// The one recorder of a kind, by the address at which COM would hand it out.
template <class Recorder>
void* MakeObject() {
  static Recorder recorder;
  return &recorder;
}

/// Calls what stands at `index` of the object's table, as a compiled caller would, with nothing
/// but zeros for arguments; returns the name that the method noted.
inline std::string_view CallSlot(void* object, std::size_t index) {
  using Method = std::uintptr_t(STDMETHODCALLTYPE*)(
      void*, std::uintptr_t, std::uintptr_t, std::uintptr_t, std::uintptr_t, std::uintptr_t,
      std::uintptr_t, std::uintptr_t, std::uintptr_t, std::uintptr_t);
  lastMethod = "nothing";
  void** const table = *static_cast<void***>(object);
  reinterpret_cast<Method>(table[index])(object, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  return lastMethod;
}

}  // namespace platform_test
