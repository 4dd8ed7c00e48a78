// The command line of suplcheck.exe.
#pragma once

#include <string>
#include <vector>

namespace suplcheck {

struct Options {
  std::wstring file;
  std::vector<std::string> imsis;  // 6 to 15 digits each, in the order given
  bool help = false;
  std::string error;  // one line for a person; empty: the rest can be used
};

/// `arguments` without the program's name.
Options ReadOptions(const std::vector<std::wstring>& arguments);

const char* HelpText();

}  // namespace suplcheck
