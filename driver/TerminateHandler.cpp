// What the C++ runtime does with an exception that nobody catches.

#include <cstdlib>

// The runtime's own handler prints the exception to a console that a driver host does not have,
// and brings a name demangler of 45 KiB for it. Defined here, that one is not linked.
namespace __gnu_cxx {
void __verbose_terminate_handler();
void __verbose_terminate_handler() { std::abort(); }
}  // namespace __gnu_cxx
