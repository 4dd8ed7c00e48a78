#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace stelvane {

/// Cuts the modem's byte stream into lines, whatever blocks it comes in. A line ends at a line
/// feed, and all carriage returns right before that are removed. Bytes without a line feed wait
/// without limit. The cost is linear in the bytes fed: each is searched once, and bytes are moved
/// only when at least as many have been handed on since the last move.
///
/// Not locked: the caller serialises all calls. `Traits` is what the buffer searches and moves
/// with; it is there so that this work can be counted.
template <typename Traits>
class BasicLineAssembler {
 public:
  using Line = std::basic_string_view<char, Traits>;

  /// Appends a block and calls `sink(Line)` for each line that is now complete, empty ones
  /// included. The line is valid during that call only, and the sink must not call this object.
  /// When the sink throws, its line counts as handed on, and the lines behind it come with the
  /// next Feed. Throws std::bad_alloc, with the block not taken, when memory is short.
  template <typename Sink>
  void Feed(const char* data, std::size_t count, Sink&& sink) {
    DropHandedOn();
    buffer_.append(data, count);
    while (const std::optional<Line> line = NextLine()) sink(*line);
  }

 private:
  void DropHandedOn() {
    if (begin_ < buffer_.size() - begin_) return;
    buffer_.erase(0, begin_);
    searched_ -= begin_;
    begin_ = 0;
  }

  std::optional<Line> NextLine() {
    const std::size_t end = buffer_.find('\n', searched_);
    if (end == std::basic_string<char, Traits>::npos) {
      searched_ = buffer_.size();
      return std::nullopt;
    }
    Line line(buffer_.data() + begin_, end - begin_);
    while (line.ends_with('\r')) line.remove_suffix(1);
    begin_ = end + 1;
    searched_ = begin_;
    return line;
  }

  std::basic_string<char, Traits> buffer_;
  std::size_t begin_ = 0;     // the bytes before it have been handed on
  std::size_t searched_ = 0;  // no line feed from begin_ up to here
};

using LineAssembler = BasicLineAssembler<std::char_traits<char>>;

}  // namespace stelvane
