// Texts as a person sees them.
#pragma once

#include <string>
#include <string_view>

namespace suplcheck {

std::string Utf8(std::wstring_view text);

/// A narrow text in quotes; what is not printable ASCII stands as \xNN.
std::string Quoted(std::string_view text);
/// The same without the quotes.
std::string Printable(std::string_view text);

bool IsDigits(std::string_view text);
bool EqualButForCase(std::string_view a, std::string_view b);

}  // namespace suplcheck
