// The parser of location reports against the reference: its result, and the whole record when it
// counts. Input: the line.
#include <new>

#include "at/LocationReportParser.h"
#include "tests/fuzz/FixComparison.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/ReportReference.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  stelvane::FixRecord driver;
  int result = reference::kMemoryException;
  try {
    result = stelvane::ParseLocationReport(line, driver);
  } catch (const std::bad_alloc&) {
  }
  stelvane::FixRecord expected;
  fuzz::RequireSame("result of ParseLocationReport", result, reference::ReadReport(line, expected));
  if (result == stelvane::kReportParsed) fuzz::RequireSameFix(driver, expected);
  return 0;
}
