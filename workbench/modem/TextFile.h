// Reading a file whole.
#pragma once

#include <string>

#include "workbench/modem/Outcome.h"

namespace bench {

/// The file's bytes, or the path and the system's reason.
Outcome<std::string> ReadWholeFile(const std::string& path);

}  // namespace bench
