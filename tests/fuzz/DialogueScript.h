// A dialogue with the modem as the fuzzer writes it, a line an item. The first character says what
// the item is; anything else is a line of the modem.
//
//   >PREFIX|NAME|ARGUMENTS  the driver sends a command; without holding power: ]PREFIX|...
//   ~                       ends the lines that come upon one write
//   <f <s                   this write fails; it succeeds with S_FALSE
//   !                       a location request is outstanding, or is not any longer
//   #                       the core is stopping, or is not any longer
//   %                       the port cannot be opened, or can again
//   ^                       the port is closed
//   ?LINE                   a final result while no echo has been seen
//   =LINE                   a line of the modem, whatever it begins with
#pragma once

#include <optional>
#include <string_view>

namespace fuzz {

struct Command {
  std::string_view prefix;
  std::optional<std::string_view> name;
  std::optional<std::string_view> arguments;
  bool holdPower;
};

class DialogueScript {
 public:
  explicit DialogueScript(std::string_view text) : rest_(text) {}

  bool Ended() const { return rest_.empty(); }
  /// The item that comes next is a command.
  bool OnCommand() const { return rest_.starts_with('>') || rest_.starts_with(']'); }
  std::string_view Next() { return Cut(rest_, '\n'); }

  static Command ReadCommand(std::string_view item) {
    Command command = {.holdPower = item.front() == '>'};
    item.remove_prefix(1);
    command.prefix = Cut(item, '|');
    if (!item.empty()) command.name = Cut(item, '|');
    if (!item.empty()) command.arguments = item;
    return command;
  }

 private:
  static std::string_view Cut(std::string_view& text, char separator) {
    const std::string_view taken = text.substr(0, text.find(separator));
    text.remove_prefix(taken.size() == text.size() ? taken.size() : taken.size() + 1);
    return taken;
  }

  std::string_view rest_;
};

}  // namespace fuzz
