// The text of lead times against the reference: what is stored, how often it is refused, and the
// text that is read back. Input: a byte with the number of refusals that are taken before writing
// one fails, then the text, two bytes a character.
#include "sensor/LeadTimes.h"

#include <vector>

#include "tests/fuzz/Fuzz.h"

namespace {

using Table = std::array<std::uint32_t, stelvane::LeadTimes::kCount>;  // ms

constexpr HRESULT kRefusalFailed = static_cast<HRESULT>(0x8007000EL);
/// An interval of each bracket, in milliseconds.
constexpr std::uint32_t kIntervals[] = {8001, 60001, 600001, 1800001, 3600001, 7200001};

struct Outcome {
  HRESULT result;
  unsigned refusals;
  Table stored;
};

/// The pieces of a text; there is none behind a comma at the end.
std::vector<std::string> Pieces(std::u16string_view text) {
  std::vector<std::string> pieces(1);
  for (const char16_t c : text) {
    if (c == ',') {
      pieces.emplace_back();
    } else {
      pieces.back() += c > 0 && c < 0x80 ? static_cast<char>(c) : '?';
    }
  }
  if (pieces.back().empty()) pieces.pop_back();
  return pieces;
}

/// Reads as a 32-bit wcstol does.
std::int64_t Seconds(const std::string& piece) {
  return std::clamp<std::int64_t>(std::strtoll(piece.c_str(), nullptr, 10), INT32_MIN, INT32_MAX);
}

Outcome Expected(std::u16string_view text, unsigned takenRefusals, Table table) {
  std::size_t count = 0;
  for (const std::string& piece : Pieces(text)) {
    const std::int64_t seconds = Seconds(piece);
    // Refused until that fails.
    if (seconds == 0) return {kRefusalFailed, takenRefusals + 1, table};
    if (count < table.size()) table[count] = static_cast<std::uint32_t>(seconds * 1000);
    ++count;
  }
  if (count == table.size()) return {S_OK, 0, table};
  return {takenRefusals > 0 ? S_OK : kRefusalFailed, 1, table};
}

Table Stored(stelvane::LeadTimes& leads) {
  Table table;
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = leads.For(kIntervals[i]);
  return table;
}

std::string TextOf(const Table& table) {
  std::string text;
  for (const std::uint32_t milliseconds : table) text += std::to_string(milliseconds / 1000) + ",";
  text.pop_back();
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const unsigned takenRefusals = input.Number();
  std::u16string text;
  while (!input.Empty()) {
    const auto character = static_cast<char16_t>(input.Number<std::uint16_t>());
    if (character == 0) break;
    text += character;
  }
  const std::vector<WCHAR> wide(text.c_str(), text.c_str() + text.size() + 1);

  stelvane::LeadTimes leads;
  if (leads.Initialize() != S_OK) fuzz::Fail("the lead times have no lock");
  leads.SetDefaults();
  const Table defaults = {3000, 6000, 10000, 20000, 40000, 50000};
  const Outcome expected = Expected(text, takenRefusals, defaults);

  unsigned refusals = 0;
  const HRESULT result =
      leads.Store(wide.data(), [&] { return ++refusals > takenRefusals ? kRefusalFailed : S_OK; });
  fuzz::RequireSame("result of Store", result, expected.result);
  fuzz::RequireSame("number of refusals", refusals, expected.refusals);
  fuzz::RequireSameValues("lead time", Stored(leads), expected.stored);
  fuzz::RequireSame("text of the lead times", leads.Text(), TextOf(expected.stored));
  fuzz::RequireSame("lead time of the longest periodic interval", leads.For(8000), 0U);
  return 0;
}
