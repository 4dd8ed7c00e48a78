#include "at/UsbProfileParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace stelvane {
namespace {

constexpr std::string_view kLine =
    "+USB: profile_str=\"MBIM\";options_str=\"\";vendor_id=0x1519;vendor_name=\"Acme; Co\";"
    "product_id=0x0443;product_name=\"Modem, 4G\";";

std::vector<std::string> Fields(const UsbProfile& record) {
  return {record.profile,    record.options,   record.vendorId,
          record.vendorName, record.productId, record.productName};
}

TEST(UsbProfileParser, FillsAllSixFieldsAndKeepsEmptyOptions) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile(kLine, record), kProfileParsed);
  EXPECT_EQ(Fields(record),
            (std::vector<std::string>{"MBIM", "", "0x1519", "Acme; Co", "0x0443", "Modem, 4G"}));
}

TEST(UsbProfileParser, LineWithoutTheProfileKeyLeavesTheRecordEmpty) {
  const std::string line(kLine.substr(kLine.find("options_str=")));
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("+USB: " + line, record), kProfileKeyMissing);
  EXPECT_EQ(Fields(record), std::vector<std::string>(6));
}

TEST(UsbProfileParser, LineWithoutTheVendorNameFillsTheFirstThreeFields) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("+USB: profile_str=\"A\";options_str=\"B\";vendor_id=C;"
                            "product_id=E;product_name=\"F\"",
                            record),
            kProfileKeyMissing);
  EXPECT_EQ(Fields(record), (std::vector<std::string>{"A", "B", "C", "", "", ""}));
}

TEST(UsbProfileParser, EachMissingKeyEndsTheReadingThere) {
  const std::vector<std::string> parts = {"profile_str=\"1\";", "options_str=\"2\";",
                                          "vendor_id=3;",       "vendor_name=\"4\";",
                                          "product_id=5;",      "product_name=\"6\";"};
  for (std::size_t missing = 0; missing < parts.size(); ++missing) {
    std::string line = "+USB: ";
    std::vector<std::string> expected(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (i != missing) line += parts[i];
      if (i < missing) expected[i] = std::to_string(i + 1);
    }
    UsbProfile record;
    EXPECT_EQ(ParseUsbProfile(line, record), kProfileKeyMissing) << line;
    EXPECT_EQ(Fields(record), expected) << line;
  }
}

TEST(UsbProfileParser, TheOrderOfTheKeysInTheLineDoesNotMatter) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("+USB: product_name=\"6\";product_id=5;vendor_name=\"4\";vendor_id=3;"
                            "options_str=\"2\";profile_str=\"1\"",
                            record),
            kProfileParsed);
  EXPECT_EQ(Fields(record), (std::vector<std::string>{"1", "2", "3", "4", "5", "6"}));
}

TEST(UsbProfileParser, PlainValueAtTheEndOfTheLineIsTakenUpToTheEnd) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("+USB: profile_str=\"1\";options_str=\"2\";vendor_id=3;"
                            "vendor_name=\"4\";product_name=\"6\";product_id=0x55",
                            record),
            kProfileParsed);
  EXPECT_EQ(record.productId, "0x55");
}

TEST(UsbProfileParser, EmptyPlainValueIsKeptEmpty) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("profile_str=\"1\"options_str=\"2\"vendor_id=;vendor_name=\"4\""
                            "product_name=\"6\"product_id=",
                            record),
            kProfileParsed);
  EXPECT_EQ(record.vendorId, "");
  EXPECT_EQ(record.productId, "");
}

TEST(UsbProfileParser, QuotedKeyWithoutAQuoteLeavesItsFieldEmptyAndReadsOn) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("options_str=\"2\";vendor_id=3;vendor_name=\"4\";product_id=5;"
                            "product_name=\"6\";profile_str=MBIM",
                            record),
            kProfileParsed);
  EXPECT_EQ(Fields(record), (std::vector<std::string>{"", "2", "3", "4", "5", "6"}));
}

TEST(UsbProfileParser, ValueWithoutAClosingQuoteIsTakenUpToTheEnd) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("profile_str=\"1", record), kProfileKeyMissing);
  EXPECT_EQ(record.profile, "1");
}

TEST(UsbProfileParser, TheFirstOccurrenceOfAKeyCounts) {
  UsbProfile record;
  ParseUsbProfile("profile_str=\"first\";profile_str=\"second\"", record);
  EXPECT_EQ(record.profile, "first");
}

TEST(UsbProfileParser, EmptyLineHasNoKey) {
  UsbProfile record;
  EXPECT_EQ(ParseUsbProfile("", record), kProfileKeyMissing);
}

}  // namespace
}  // namespace stelvane
