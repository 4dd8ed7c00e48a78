#include "tests/package/InfFile.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace package_test {

namespace {

constexpr DWORD kLongestField = 512;  // characters; the rules ask for far fewer

// An INF of the project holds ASCII alone.
std::string Narrow(const WCHAR* text) {
  std::string narrow;
  for (; *text != 0; ++text) narrow += *text < 0x80 ? static_cast<char>(*text) : '?';
  return narrow;
}

std::wstring Wide(const std::string& text) {
  return {text.begin(), text.end()};
}

std::string FieldText(INFCONTEXT& context, DWORD index) {
  WCHAR text[kLongestField] = {};
  // The key of a line without one cannot be read.
  if (!SetupGetStringFieldW(&context, index, text, kLongestField, nullptr)) return {};
  return Narrow(text);
}

InfLine LineAt(INFCONTEXT& context) {
  InfLine line;
  line.key = FieldText(context, 0);
  for (DWORD field = 1; field <= SetupGetFieldCount(&context); ++field) {
    line.fields.push_back(FieldText(context, field));
  }
  return line;
}

std::string WithoutComments(const std::string& text) {
  std::string kept;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    bool quoted = false;
    for (const char c : line) {
      if (c == '"') quoted = !quoted;
      if (c == ';' && !quoted) break;
      kept += c;
    }
    kept += '\n';
  }
  return kept;
}

}  // namespace

InfFile::InfFile(const std::filesystem::path& path) : text_(WithoutComments(ReadText(path))) {
  UINT errorLine = 0;
  handle_ = SetupOpenInfFileW(path.c_str(), nullptr, INF_STYLE_WIN4, &errorLine);
  if (handle_ == INVALID_HANDLE_VALUE) {
    throw std::runtime_error(path.string() + ":" + std::to_string(errorLine) + ": error " +
                             std::to_string(GetLastError()));
  }
  WCHAR name[kLongestField] = {};
  for (UINT i = 0; SetupEnumInfSectionsW(handle_, i, name, kLongestField, nullptr); ++i) {
    if (!Has(Narrow(name))) sections_.push_back(Narrow(name));
  }
}

InfFile::~InfFile() {
  SetupCloseInfFile(handle_);
}

bool InfFile::Has(const std::string& section) const {
  return std::ranges::any_of(sections_,
                             [&](const std::string& name) { return SameName(name, section); });
}

std::vector<InfLine> InfFile::Lines(const std::string& section) const {
  std::vector<InfLine> lines;
  INFCONTEXT context = {};
  if (!SetupFindFirstLineW(handle_, Wide(section).c_str(), nullptr, &context)) return lines;
  do {
    lines.push_back(LineAt(context));
  } while (SetupFindNextLine(&context, &context));
  return lines;
}

std::vector<InfLine> InfFile::Lines(const std::string& section, const std::string& key) const {
  std::vector<InfLine> lines = Lines(section);
  std::erase_if(lines, [&](const InfLine& line) { return !SameName(line.key, key); });
  return lines;
}

bool SameName(const std::string& a, const std::string& b) {
  return std::ranges::equal(a, b, [](unsigned char left, unsigned char right) {
    return std::tolower(left) == std::tolower(right);
  });
}

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path.string() + ": cannot be read");
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace package_test
