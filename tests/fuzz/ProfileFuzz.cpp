// The parser of the USB profile against the reference: its result and all six fields. Input: the
// line.
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/ProfileReference.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  stelvane::UsbProfile driver;
  stelvane::UsbProfile expected;
  const int result = stelvane::ParseUsbProfile(line, driver);
  fuzz::RequireSame("result of ParseUsbProfile", result, reference::ReadProfile(line, expected));
  fuzz::RequireSame("profile", driver.profile, expected.profile);
  fuzz::RequireSame("options", driver.options, expected.options);
  fuzz::RequireSame("vendorId", driver.vendorId, expected.vendorId);
  fuzz::RequireSame("vendorName", driver.vendorName, expected.vendorName);
  fuzz::RequireSame("productId", driver.productId, expected.productId);
  fuzz::RequireSame("productName", driver.productName, expected.productName);
  return 0;
}
