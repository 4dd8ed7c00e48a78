// An INF, read by the functions with which Windows' own installer reads it.
#pragma once

#include <windows.h>

#include <setupapi.h>

#include <filesystem>
#include <string>
#include <vector>

namespace package_test {

/// One line of a section: what stands before the '=', and the fields. Both without quotes, comments
/// and blanks, and with %names% of strings and folders replaced where they are known.
struct InfLine {
  std::string key;  // empty when the line has none
  std::vector<std::string> fields;

  /// A field that the line may lack.
  std::string Field(std::size_t index) const {
    return index < fields.size() ? fields[index] : std::string();
  }
};

/// Names of sections and keys are compared as Windows does it, without regard to case.
class InfFile {
 public:
  /// Throws std::runtime_error with the file's name, and the line where the syntax is wrong.
  explicit InfFile(const std::filesystem::path& path);
  ~InfFile();
  InfFile(const InfFile&) = delete;
  InfFile& operator=(const InfFile&) = delete;

  HINF Handle() const { return handle_; }
  /// In the file's order, each once.
  const std::vector<std::string>& Sections() const { return sections_; }
  bool Has(const std::string& section) const;
  /// Empty when there is no such section.
  std::vector<InfLine> Lines(const std::string& section) const;
  /// The lines with a key; as a rule there is one.
  std::vector<InfLine> Lines(const std::string& section, const std::string& key) const;
  /// The file's text without the comments, as it stands.
  const std::string& Text() const { return text_; }

 private:
  HINF handle_ = INVALID_HANDLE_VALUE;
  std::vector<std::string> sections_;
  std::string text_;
};

bool SameName(const std::string& a, const std::string& b);
std::string ReadText(const std::filesystem::path& path);

}  // namespace package_test
