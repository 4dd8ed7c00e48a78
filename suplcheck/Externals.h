// What a document's type declaration fetches from outside the file.
#pragma once

#include <string_view>

namespace suplcheck {

enum class Externals {
  kNone,
  kBeside,   // declarations stand in the file, and something outside is named, too
  kInstead,  // the file holds no declarations of its own
};

/// `text` is a well-formed document.
Externals FindExternals(std::wstring_view text);

}  // namespace suplcheck
