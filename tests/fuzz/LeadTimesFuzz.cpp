// The text of lead times against the reference: what is stored, how often it is refused, and the
// text that is read back. Input: a byte with the number of refusals that are taken before one
// fails, then the text, two bytes a character.
#include "sensor/LeadTimes.h"

#include <vector>

#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/LeadTimeReference.h"

namespace {

constexpr HRESULT kRefusalFailed = static_cast<HRESULT>(0x8007000EL);
/// An interval of each bracket, in milliseconds.
constexpr std::uint32_t kIntervals[] = {8001, 60001, 600001, 1800001, 3600001, 7200001};

std::u16string ReadText(fuzz::Input& input) {
  std::u16string text;
  while (!input.Empty()) {
    const auto character = static_cast<char16_t>(input.Number<std::uint16_t>());
    if (character == 0) break;
    text += character;
  }
  return text;
}

reference::LeadTimeTable Stored(stelvane::LeadTimes& leads) {
  reference::LeadTimeTable table;
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = leads.For(kIntervals[i]);
  return table;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const unsigned takenRefusals = input.Number();
  const std::u16string text = ReadText(input);

  stelvane::LeadTimes leads;
  if (leads.Initialize() != S_OK) fuzz::Fail("the lead times have no lock");
  leads.SetDefaults();
  unsigned refusals = 0;
  const auto refuse = [&] { return ++refusals > takenRefusals ? kRefusalFailed : S_OK; };
  const std::vector<WCHAR> wide(text.c_str(), text.c_str() + text.size() + 1);
  const HRESULT result = leads.Store(wide.data(), refuse);

  const reference::LeadTimeOutcome expected =
      reference::StoreLeadTimes(text, takenRefusals, reference::kDefaultLeadTimes);
  fuzz::RequireSame("result of Store", result, expected.refusalFailed ? kRefusalFailed : S_OK);
  fuzz::RequireSame("number of refusals", refusals, expected.refusals);
  fuzz::RequireSameValues("lead time", Stored(leads), expected.table);
  fuzz::RequireSame("text of the lead times", leads.Text(),
                    reference::LeadTimeText(expected.table));
  fuzz::RequireSame("lead time of the longest periodic interval", leads.For(8000), 0U);
  return 0;
}
