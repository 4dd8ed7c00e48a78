#include "tests/fuzz/ProfileReference.h"

#include <string>

namespace reference {

namespace {

/// The text between the first two quotes behind the key; to the line's end when there is one only.
bool ReadQuoted(const std::string& line, const std::string& key, std::string& value) {
  const std::size_t at = line.find(key);
  if (at == std::string::npos) return false;
  const std::size_t quote = line.find('"', at);
  if (quote == std::string::npos) return true;
  for (std::size_t i = quote + 1; i < line.size() && line[i] != '"'; ++i) value += line[i];
  return true;
}

/// The text behind the key, to the next semicolon or the line's end.
bool ReadPlain(const std::string& line, const std::string& key, std::string& value) {
  const std::size_t at = line.find(key);
  if (at == std::string::npos) return false;
  for (std::size_t i = at + key.size(); i < line.size() && line[i] != ';'; ++i) value += line[i];
  return true;
}

}  // namespace

int ReadProfile(std::string_view text, stelvane::UsbProfile& profile) {
  const std::string line(text);
  const bool complete = ReadQuoted(line, "profile_str=", profile.profile) &&
                        ReadQuoted(line, "options_str=", profile.options) &&
                        ReadPlain(line, "vendor_id=", profile.vendorId) &&
                        ReadQuoted(line, "vendor_name=", profile.vendorName) &&
                        ReadPlain(line, "product_id=", profile.productId) &&
                        ReadQuoted(line, "product_name=", profile.productName);
  return complete ? 0 : 1;
}

}  // namespace reference
