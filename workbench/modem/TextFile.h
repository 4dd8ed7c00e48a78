// Reading a file whole.
#pragma once

#include <filesystem>
#include <string>

#include "workbench/modem/Outcome.h"

namespace bench {

/// File names are UTF-8 everywhere else, which the narrow calls of Windows do not take.
std::filesystem::path FromUtf8(const std::string& text);
std::string ToUtf8(const std::filesystem::path& path);

/// The file's bytes, or the path and the system's reason.
Outcome<std::string> ReadWholeFile(const std::string& path);

}  // namespace bench
