// A value, or the one line that says why there is none.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace bench {

template <typename T>
struct Outcome {
  std::optional<T> value;
  std::string error;  // for a person; empty when there is a value

  explicit operator bool() const { return value.has_value(); }
  T& operator*() { return *value; }
  T* operator->() { return &*value; }
};

template <typename T>
Outcome<T> NoValue(std::string why) {
  return {.value = std::nullopt, .error = std::move(why)};
}

}  // namespace bench
