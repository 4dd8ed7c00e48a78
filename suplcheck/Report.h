// What is wrong with a file, told line by line on the standard error stream.
#pragma once

#include <string>
#include <string_view>

namespace suplcheck {

/// Counted from 1; a line of 0 is not known.
struct Place {
  long line = 0;
  long column = 0;
};

/// "FILE:LINE:COLUMN: error: what", without the numbers where they are not known.
std::string MessageLine(std::string_view file, Place place, std::string_view severity,
                        std::string_view what);

class Report {
 public:
  /// `file` is UTF-8 and begins every message.
  explicit Report(std::string file) : file_(std::move(file)) {}

  /// The driver could not use the file.
  void Error(std::string_view what, Place place = {});
  /// The driver would silently not find or not do something.
  void Warning(std::string_view what);
  /// May well be meant; does not change the exit code.
  void Note(std::string_view what) const;

  int Warnings() const { return warnings_; }
  /// 0 clean, 1 with warnings, 2 with errors.
  int ExitCode() const;

 private:
  void Write(std::string_view severity, std::string_view what, Place place = {}) const;

  std::string file_;
  int errors_ = 0;
  int warnings_ = 0;
};

}  // namespace suplcheck
