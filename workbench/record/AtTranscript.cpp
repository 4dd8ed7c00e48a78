#include "workbench/record/AtTranscript.h"

#include <array>
#include <cstdio>
#include <utility>

namespace bench {

namespace {

std::string Printable(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result += c;
    } else {
      std::array<char, 8> escaped{};
      std::snprintf(escaped.data(), escaped.size(), "\\x%02X", static_cast<unsigned char>(c));
      result += escaped.data();
    }
  }
  return result;
}

}  // namespace

AtTranscript::AtTranscript(Listener listener) : listener_(std::move(listener)) {}

void AtTranscript::OnCommand(Millis at, std::string_view line) {
  listener_({.at = at, .toModem = true, .text = Printable(line)});
}

void AtTranscript::OnAnswer(Millis at, std::string_view bytes) {
  for (const char c : bytes) {
    if (c != '\r' && c != '\n') {
      line_ += c;
    } else if (!line_.empty()) {
      listener_({.at = at, .toModem = false, .text = Printable(std::exchange(line_, {}))});
    }
  }
}

std::string TranscriptText(const AtLine& line) {
  std::array<char, 32> time{};
  std::snprintf(time.data(), time.size(), "%9.3f", static_cast<double>(line.at) / 1000);
  return std::string(time.data()) + (line.toModem ? " > " : " < ") + line.text;
}

}  // namespace bench
