// The running console program.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace bench {

/// The program's arguments as UTF-8, without its name; unlike main's they keep every character.
std::vector<std::string> ProgramArguments();

/// The folder that the program is in.
std::filesystem::path ProgramFolder();

}  // namespace bench
