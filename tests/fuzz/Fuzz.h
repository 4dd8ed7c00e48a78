// What every fuzz target needs: the fuzzer's bytes cut into values, and the report of a difference.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

/// The one function of a target. Each call is a test of its own and returns 0; a difference or a
/// sanitizer's finding ends the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Takes values off the front of the bytes; behind the end all of them are 0 or empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool Empty() const { return rest_.empty(); }
  std::string_view Text(std::size_t size) {
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  std::string_view Rest() { return Text(rest_.size()); }
  template <class T = std::uint8_t>
  T Number() {
    T value = 0;
    const std::string_view bytes = Text(sizeof value);
    if (!bytes.empty()) std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }

 private:
  std::string_view rest_;
};

inline std::string Show(std::string_view text) {
  std::string shown = "\"";
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      shown += c;
    } else {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02x", unsigned{static_cast<unsigned char>(c)});
      shown += escaped;
    }
  }
  return shown + "\"";
}
inline std::string Show(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.17g (%a)", value, value);
  return text;
}
template <class T>
requires std::is_integral_v<T> || std::is_enum_v<T> std::string Show(T value) {
  return std::to_string(static_cast<long long>(value));
}

[[noreturn]] inline void Fail(const std::string& message) {
  std::fprintf(stderr, "DIFFERENCE: %s\n", message.c_str());
  std::abort();
}

inline bool Same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}
template <class T>
bool Same(const T& a, const T& b) {
  return a == b;
}

/// Doubles are compared bit by bit, so a zero has a sign.
template <class T>
void RequireSame(const char* what, const T& driver, const std::type_identity_t<T>& reference) {
  if (Same(driver, reference)) return;
  Fail(std::string(what) + ": the driver has " + Show(driver) + ", the reference " +
       Show(reference));
}

/// The same for a sequence of values.
template <class Values>
void RequireSameValues(const char* what, const Values& driver,
                       const std::type_identity_t<Values>& reference) {
  for (std::size_t i = 0; i < driver.size() && i < reference.size(); ++i) {
    if (Same(driver[i], reference[i])) continue;
    RequireSame((std::string(what) + " " + std::to_string(i)).c_str(), driver[i], reference[i]);
  }
  if (driver.size() != reference.size()) {
    RequireSame((std::string(what) + ", count").c_str(), driver.size(), reference.size());
  }
}

}  // namespace fuzz
