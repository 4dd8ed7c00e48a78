// Random numbers that are the same everywhere: a seed means one run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace soak {

/// SplitMix64.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    std::uint64_t mixed = state_ += 0x9E3779B97F4A7C15;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
  }

  /// From 0 to `limit` - 1.
  std::int64_t Below(std::int64_t limit) {
    return static_cast<std::int64_t>(Next() % static_cast<std::uint64_t>(limit));
  }
  std::int64_t Between(std::int64_t least, std::int64_t most) {
    return least + Below(most - least + 1);
  }
  bool Percent(std::int64_t chance) { return Below(100) < chance; }

  template <class T, std::size_t count>
  T Of(const T (&values)[count]) {
    return values[Below(std::int64_t{count})];
  }

 private:
  std::uint64_t state_;
};

}  // namespace soak
