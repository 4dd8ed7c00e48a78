#include "suplcheck/Externals.h"

#include <algorithm>
#include <array>

namespace suplcheck {

namespace {

constexpr auto kNotFound = std::wstring_view::npos;
constexpr std::wstring_view kSpace = L" \t\r\n";

// What is passed over up to the declaration's end, and what ends it.
struct Stretch {
  std::wstring_view begin;
  std::wstring_view end;
};
constexpr std::array<Stretch, 4> kStretches = {
    {{L"<!--", L"-->"}, {L"<?", L"?>"}, {L"\"", L"\""}, {L"'", L"'"}}};

// Behind the comment, instruction or literal at `at`, or `at` when there is none.
std::size_t Behind(std::wstring_view text, std::size_t at) {
  for (const Stretch& stretch : kStretches) {
    if (!text.substr(at).starts_with(stretch.begin)) continue;
    const std::size_t end = text.find(stretch.end, at + stretch.begin.size());
    return end == kNotFound ? text.size() : end + stretch.end.size();
  }
  return at;
}

// The keyword alone may be a name of the document's own; a literal follows when it is none.
bool NamesOutside(std::wstring_view text) {
  if (!text.starts_with(L"SYSTEM") && !text.starts_with(L"PUBLIC")) return false;
  constexpr std::size_t kKeyword = 6;
  const std::size_t next = text.find_first_not_of(kSpace, kKeyword);
  return next != kNotFound && next > kKeyword && (text[next] == L'"' || text[next] == L'\'');
}

// Behind the keyword that opens the declaration; nothing when the document element comes first.
std::size_t BehindKeyword(std::wstring_view text) {
  constexpr std::wstring_view kKeyword = L"<!DOCTYPE";
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t behind = Behind(text, at);
    if (behind == at && text[at] == L'<') {
      return text.substr(at).starts_with(kKeyword) ? at + kKeyword.size() : kNotFound;
    }
    at = std::max(at + 1, behind);
  }
  return kNotFound;
}

}  // namespace

Externals FindExternals(std::wstring_view text) {
  bool named = false;
  bool own = false;  // the declarations in brackets have begun
  for (std::size_t at = BehindKeyword(text); at < text.size();) {
    const std::size_t behind = Behind(text, at);
    if (behind == at) {
      if (text[at] == (own ? L']' : L'>')) break;
      own = own || text[at] == L'[';
      const bool space = kSpace.find(text[at]) != kNotFound;
      named = named || (space && NamesOutside(text.substr(at + 1)));
    }
    at = std::max(at + 1, behind);
  }
  if (!named) return Externals::kNone;
  return own ? Externals::kBeside : Externals::kInstead;
}

}  // namespace suplcheck
