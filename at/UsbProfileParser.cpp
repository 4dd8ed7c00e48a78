#include "at/UsbProfileParser.h"

#include "at/FieldSplitter.h"

namespace stelvane {
namespace {

struct Key {
  std::string_view name;
  bool quoted;  // the value stands in quotes, else it ends at a semicolon
  std::string UsbProfile::*field;
};

// In the order in which the keys are looked for.
constexpr Key kKeys[] = {
    {"profile_str=", true, &UsbProfile::profile},
    {"options_str=", true, &UsbProfile::options},
    {"vendor_id=", false, &UsbProfile::vendorId},
    {"vendor_name=", true, &UsbProfile::vendorName},
    {"product_id=", false, &UsbProfile::productId},
    {"product_name=", true, &UsbProfile::productName},
};

/// The value of the key that `text` starts with; empty when a quoted one has no quote.
std::string_view ValueOf(const Key& key, std::string_view text) {
  if (key.quoted) {
    FieldSplitter pieces(text, '"');
    pieces.Next();  // the key and whatever stands before the quote
    return pieces.Next().value_or(std::string_view());
  }
  return FieldSplitter(text.substr(key.name.size()), ';').Next().value_or(std::string_view());
}

}  // namespace

std::uint8_t ParseUsbProfile(std::string_view line, UsbProfile& record) {
  for (const Key& key : kKeys) {
    const std::size_t start = line.find(key.name);
    if (start == std::string_view::npos) return kProfileKeyMissing;
    record.*key.field = ValueOf(key, line.substr(start));
  }
  return kProfileParsed;
}

}  // namespace stelvane
