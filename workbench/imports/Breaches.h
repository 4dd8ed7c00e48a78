// Rules that the module was seen to break at its imports and exports.
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

/// Any thread may call it.
class Breaches {
 public:
  /// `rule` is one of `rule::`.
  void Add(std::string_view rule, std::string what) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(std::string(rule) + ": " + std::move(what));
  }
  /// "<rule>: <what happened>", in the order in which it happened.
  std::vector<std::string> Lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace bench
