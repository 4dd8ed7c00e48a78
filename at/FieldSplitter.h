#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace stelvane {

/// Cuts a text at a separator, one field a call. Adjacent separators have an empty field between
/// them; a separator at the very end has none behind it. The fields point into the text, which
/// must outlive them.
class FieldSplitter {
 public:
  FieldSplitter(std::string_view text, char separator) : rest_(text), separator_(separator) {}

  /// The next field, or nothing once the text is used up.
  std::optional<std::string_view> Next() {
    if (rest_.empty()) return std::nullopt;
    const std::string_view field = rest_.substr(0, rest_.find(separator_));
    const bool ended = field.size() == rest_.size();
    rest_.remove_prefix(ended ? field.size() : field.size() + 1);
    return field;
  }

  /// How many characters no field has been made of yet, separators included.
  std::size_t Remaining() const { return rest_.size(); }

 private:
  std::string_view rest_;
  char separator_;
};

}  // namespace stelvane
