// The DLL's own ends of the C++ library's error paths.
//
// The library's own bring half its string and exception classes, and a name demangler for a console
// that a driver host does not have: about 120 KiB that no code of ours uses. Defined here, those
// are not linked. What remains for our code to catch is std::bad_alloc.

#include <cstdlib>
#include <new>
#include <string>

namespace __gnu_cxx {
void __verbose_terminate_handler();
void __verbose_terminate_handler() {
  std::abort();
}
}  // namespace __gnu_cxx

namespace std {

// A text or container that would outgrow its limits is one for which there is no memory.
void __throw_length_error(const char*) {
  throw bad_alloc();
}
void __throw_bad_alloc() {
  throw bad_alloc();
}
void __throw_bad_array_new_length() {
  throw bad_array_new_length();
}

// Mistakes of the code itself.
void __throw_logic_error(const char*) {
  abort();
}
void __throw_out_of_range(const char*) {
  abort();
}
void __throw_out_of_range_fmt(const char*, ...) {
  abort();
}

}  // namespace std
