#include "suplcheck/Report.h"

#include <cstdio>

namespace suplcheck {

std::string MessageLine(std::string_view file, Place place, std::string_view severity,
                        std::string_view what) {
  std::string line(file);
  if (place.line > 0) {
    line += ':' + std::to_string(place.line);
    if (place.column > 0) line += ':' + std::to_string(place.column);
  }
  return line.append(": ").append(severity).append(": ").append(what);
}

void Report::Error(std::string_view what, Place place) {
  ++errors_;
  Write("error", what, place);
}

void Report::Warning(std::string_view what) {
  ++warnings_;
  Write("warning", what);
}

void Report::Note(std::string_view what) const {
  Write("note", what);
}

int Report::ExitCode() const {
  if (errors_ > 0) return 2;
  return warnings_ > 0 ? 1 : 0;
}

// What was printed before stands before it, on a terminal as well as in a common file.
void Report::Write(std::string_view severity, std::string_view what, Place place) const {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", MessageLine(file_, place, severity, what).c_str());
}

}  // namespace suplcheck
