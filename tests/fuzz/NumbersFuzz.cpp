// Numbers and coordinates: every way of reading a text against the reference. Input: the text.
#include "at/Numbers.h"

#include <vector>

#include "at/LocationReportParser.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/NumberReference.h"
#include "tests/fuzz/ReportReference.h"

namespace {

constexpr std::uint16_t kUntouched[3] = {11111, 22222, 33333};

void CompareWords(const char* what, std::string_view text, char separator) {
  std::vector<std::uint16_t> driver(std::begin(kUntouched), std::end(kUntouched));
  std::vector<std::uint16_t> reference = driver;
  stelvane::ReadWords(text, separator, {&driver[0], &driver[1], &driver[2]});
  reference::ReadThreeWords(text, separator, reference.data());
  fuzz::RequireSameValues(what, driver, reference);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  std::size_t used = 12345;
  const double decimal = stelvane::ParseDecimal(text, &used);
  const reference::Decimal expected = reference::ReadDecimal(text);
  fuzz::RequireSame("ParseDecimal", decimal, expected.value);
  fuzz::RequireSame("ParseDecimal, characters used", used, expected.used);
  fuzz::RequireSame("ParseDecimal without a count", stelvane::ParseDecimal(text), expected.value);

  fuzz::RequireSame("ParseInteger", stelvane::ParseInteger(text), reference::ReadInteger(text));
  fuzz::RequireSame("ParseUnsigned", stelvane::ParseUnsigned(text), reference::ReadUnsigned(text));
  CompareWords("ReadWords of a date, word", text, '/');
  CompareWords("ReadWords of a time, word", text, ':');

  double coordinate = 12345.0;
  const bool hasLetter = stelvane::ParseCoordinate(text, coordinate);
  const reference::Coordinate place = reference::ReadCoordinate(text);
  fuzz::RequireSame("ParseCoordinate", coordinate, place.degrees);
  fuzz::RequireSame("ParseCoordinate, hemisphere recognised", hasLetter, place.hasLetter);
  return 0;
}
