#include "workbench/Console.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace bench {

namespace {

bool TerminalShowsColour() {
  const char* const refusal = std::getenv("NO_COLOR");
  if (refusal != nullptr && *refusal != '\0') return false;
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(output, &mode) &&
         SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

const char* Code(Tone tone) {
  switch (tone) {
    case Tone::kToModem:
      return "\x1b[36m";
    case Tone::kFromModem:
      return "\x1b[2m";
    case Tone::kState:
      return "\x1b[33m";
    case Tone::kTrace:
      return "\x1b[35m";
    case Tone::kReport:
      return "\x1b[1m";
    case Tone::kGood:
      return "\x1b[32m";
    case Tone::kBad:
      return "\x1b[31m";
    case Tone::kPlain:
      break;
  }
  return "";
}

}  // namespace

Console::Console() : colour_(TerminalShowsColour()) {}

void Console::Line(std::string_view text, Tone tone) const {
  const bool coloured = colour_ && tone != Tone::kPlain;
  std::printf("%s%.*s%s\n", coloured ? Code(tone) : "", static_cast<int>(text.size()), text.data(),
              coloured ? "\x1b[0m" : "");
  std::fflush(stdout);
}

void Console::Line(Millis at, std::string_view text, Tone tone) const {
  char time[32];
  std::snprintf(time, sizeof time, "%9.3f  ", static_cast<double>(at) / 1000);
  Line(std::string(time).append(text), tone);
}

}  // namespace bench
