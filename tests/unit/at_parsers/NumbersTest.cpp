#include "at/Numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace stelvane {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

struct DecimalCase {
  std::string_view text;
  double value;
  std::size_t used;
};

constexpr DecimalCase kDecimals[] = {
    {"0", 0.0, 1},
    {"12.5", 12.5, 4},
    {"-12.5", -12.5, 5},
    {"+12.5", 12.5, 5},
    {"  7", 7.0, 3},
    {" -7", -7.0, 3},
    {"007.250", 7.25, 7},
    {".5", 0.5, 2},
    {"-.5", -0.5, 3},
    {"5.", 5.0, 2},
    {"1e3", 1000.0, 3},
    {"1E3", 1000.0, 3},
    {"1.5e+2", 150.0, 6},
    {"25e-2", 0.25, 5},
    // The first misfit ends the number.
    {"12.5 S", 12.5, 4},
    {"12.5E", 12.5, 4},
    {"12.5e+", 12.5, 4},
    {"12.5e-x", 12.5, 4},
    {"1.2.3", 1.2, 3},
    {"1,5", 1.0, 1},
    {"1-2", 1.0, 1},
    {"3N", 3.0, 1},
    {"0x10", 0.0, 1},
    // What is no number.
    {"", 0.0, 0},
    {"   ", 0.0, 0},
    {"x", 0.0, 0},
    {"-", 0.0, 0},
    {"+", 0.0, 0},
    {".", 0.0, 0},
    {"-.", 0.0, 0},
    {".e5", 0.0, 0},
    {"e5", 0.0, 0},
    {"+-5", 0.0, 0},
    {"--5", 0.0, 0},
    {"- 5", 0.0, 0},
    {"inf", 0.0, 0},
    {"-infinity", 0.0, 0},
    {"nan", 0.0, 0},
    {"NAN(1)", 0.0, 0},
    // The ends of the range.
    {"1.7976931348623157e308", std::numeric_limits<double>::max(), 22},
    {"1.7976931348623159e308", kInfinity, 22},
    {"1e309", kInfinity, 5},
    {"-1e309", -kInfinity, 6},
    {"1e99999999999999999999", kInfinity, 22},
    {"0.001e400", kInfinity, 9},
    {"4.9e-324", kSmallest, 8},
    {"2.4703282292062328e-324", kSmallest, 23},
    {"2.4703282292062327e-324", 0.0, 23},
    {"1e-400", 0.0, 6},
    {"1000e-400", 0.0, 9},
    {"1e-99999999999999999999", 0.0, 23},
    {"0e99999999999999999999", 0.0, 22},
    // Ties and near ties.
    {"9007199254740993", 9007199254740992.0, 16},
    {"9007199254740995", 9007199254740996.0, 16},
    {"9007199254740993.00000000000000000001", 9007199254740994.0, 37},
    {"2.2250738585072011e-308", 0x0.fffffffffffffp-1022, 23},
};

TEST(ParseDecimal, ReadsWhatTheTableSays) {
  for (const DecimalCase& c : kDecimals) {
    std::size_t used = 99;
    EXPECT_EQ(ParseDecimal(c.text, &used), c.value) << c.text;
    EXPECT_EQ(used, c.used) << c.text;
    EXPECT_EQ(ParseDecimal(c.text), c.value) << c.text;
  }
}

TEST(ParseDecimal, KeepsTheSignOfZeroAndOfUnderflow) {
  EXPECT_TRUE(std::signbit(ParseDecimal("-0")));
  EXPECT_TRUE(std::signbit(ParseDecimal("-1e-400")));
  EXPECT_FALSE(std::signbit(ParseDecimal("1e-400")));
}

TEST(ParseDecimal, ReadsNumbersOfAnyLength) {
  const std::string zeros(2000, '0');
  EXPECT_EQ(ParseDecimal(zeros + "1"), 1.0);
  EXPECT_EQ(ParseDecimal("1." + zeros), 1.0);
  EXPECT_EQ(ParseDecimal("1" + zeros), kInfinity);
  EXPECT_EQ(ParseDecimal("0." + zeros + "1"), 0.0);
  EXPECT_EQ(ParseDecimal("1" + zeros + "e-2000"), 1.0);
}

TEST(ParseDecimal, DoesNotReadPastTheEndOfItsText) {
  std::size_t used = 0;
  EXPECT_EQ(ParseDecimal(std::string_view("12345").substr(0, 2), &used), 12.0);
  EXPECT_EQ(used, 2u);
}

/// Compares with the C library's reader bit by bit, in the value and in what was taken. For a text
/// that is no number some libraries give a negative zero.
void ExpectSameAsLibrary(const std::string& text) {
  char* end = nullptr;
  double expected = std::strtod(text.c_str(), &end);
  if (end == text.c_str()) expected = 0.0;
  std::size_t used = 0;
  const double value = ParseDecimal(text, &used);
  ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
  ASSERT_EQ(used, static_cast<std::size_t>(end - text.c_str())) << text;
}

class ParseDecimalAgainstTheLibrary : public testing::Test {
 protected:
  std::mt19937_64 random{20140703};
};

TEST_F(ParseDecimalAgainstTheLibrary, RandomDoublesOfEveryMagnitude) {
  for (int i = 0; i < 20000; ++i) {
    const double value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    char text[40];
    std::snprintf(text, sizeof text, "%.*g", static_cast<int>(1 + random() % 20), value);
    ExpectSameAsLibrary(text);
  }
}

TEST_F(ParseDecimalAgainstTheLibrary, RandomNumbersAsAReportHasThem) {
  for (int i = 0; i < 20000; ++i) {
    std::string text = std::to_string(static_cast<int>(random() % 361) - 180) + ".";
    for (std::size_t digits = random() % 10; digits > 0; --digits) {
      text += static_cast<char>('0' + random() % 10);
    }
    ExpectSameAsLibrary(text);
  }
}

TEST_F(ParseDecimalAgainstTheLibrary, RandomTextsOfTheCharactersOfANumber) {
  constexpr std::string_view kCharacters = "0123456789.eE+- ,";
  for (int i = 0; i < 50000; ++i) {
    std::string text;
    for (std::size_t length = random() % 12; length > 0; --length) {
      text += kCharacters[random() % kCharacters.size()];
    }
    ExpectSameAsLibrary(text);
  }
}

TEST(ParseInteger, ReadsAnOptionalSignAndStopsAtTheFirstMisfit) {
  EXPECT_EQ(ParseInteger("0"), 0);
  EXPECT_EQ(ParseInteger("42"), 42);
  EXPECT_EQ(ParseInteger("-42"), -42);
  EXPECT_EQ(ParseInteger("+42"), 42);
  EXPECT_EQ(ParseInteger("   42"), 42);
  EXPECT_EQ(ParseInteger("007"), 7);
  EXPECT_EQ(ParseInteger("4 2"), 4);
  EXPECT_EQ(ParseInteger("4.9"), 4);
  EXPECT_EQ(ParseInteger("4x"), 4);
}

TEST(ParseInteger, IsZeroWithoutANumber) {
  for (const std::string_view text : {"", " ", "-", "+", "x", "--1", "+-1", "- 1", ".5"}) {
    EXPECT_EQ(ParseInteger(text), 0) << text;
  }
}

TEST(ParseInteger, StaysWithinItsRange) {
  EXPECT_EQ(ParseInteger("2147483647"), 2147483647);
  EXPECT_EQ(ParseInteger("2147483648"), 2147483647);
  EXPECT_EQ(ParseInteger("99999999999999999999999"), 2147483647);
  EXPECT_EQ(ParseInteger("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(ParseInteger("-2147483649"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(ParseInteger("-99999999999999999999999"), std::numeric_limits<std::int32_t>::min());
}

TEST(ParseUnsigned, ReadsDigitsAfterBlanks) {
  EXPECT_EQ(ParseUnsigned("0"), 0u);
  EXPECT_EQ(ParseUnsigned("  17"), 17u);
  EXPECT_EQ(ParseUnsigned("+17"), 17u);
  EXPECT_EQ(ParseUnsigned("17,3"), 17u);
  EXPECT_EQ(ParseUnsigned(""), 0u);
  EXPECT_EQ(ParseUnsigned("x"), 0u);
}

TEST(ParseUnsigned, StaysWithinItsRange) {
  EXPECT_EQ(ParseUnsigned("4294967295"), 4294967295u);
  EXPECT_EQ(ParseUnsigned("4294967296"), 4294967295u);
  EXPECT_EQ(ParseUnsigned("99999999999999999999999"), 4294967295u);
  EXPECT_EQ(ParseUnsigned("-1"), 0u);
}

constexpr std::uint16_t kUntouched = 4711;

struct WordsCase {
  std::string_view text;
  std::uint16_t first;
  std::uint16_t second;
  std::uint16_t third;
};

constexpr WordsCase kWords[] = {
    {"2014/7/3", 2014, 7, 3},
    {"2014/07/03", 2014, 7, 3},
    {"1/2/3/4", 1, 2, 3},
    {"1/2/3x", 1, 2, 3},
    // White space may stand before a number, not before a separator.
    {" 1/ 2/\t\v\f\r\n3", 1, 2, 3},
    {"1 /2/3", 1, kUntouched, kUntouched},
    {"\x08"
     "1/2/3",
     kUntouched, kUntouched, kUntouched},
    {"1/2 /3", 1, 2, kUntouched},
    // A sign is taken and the value wraps.
    {"+1/-1/-2", 1, 65535, 65534},
    {"65535/65536/65537", 65535, 0, 1},
    {"-0/-65536/-65537", 0, 0, 65535},
    {"99999999999999999999/4294967297/3", 65535, 1, 3},
    // The first mismatch ends the reading.
    {"", kUntouched, kUntouched, kUntouched},
    {"   ", kUntouched, kUntouched, kUntouched},
    {"x/2/3", kUntouched, kUntouched, kUntouched},
    {"/2/3", kUntouched, kUntouched, kUntouched},
    {"-/2/3", kUntouched, kUntouched, kUntouched},
    {"- 1/2/3", kUntouched, kUntouched, kUntouched},
    {"+-1/2/3", kUntouched, kUntouched, kUntouched},
    {"1", 1, kUntouched, kUntouched},
    {"1/", 1, kUntouched, kUntouched},
    {"1:2:3", 1, kUntouched, kUntouched},
    {"1//3", 1, kUntouched, kUntouched},
    {"1/x/3", 1, kUntouched, kUntouched},
    {"1/2", 1, 2, kUntouched},
    {"1/2/", 1, 2, kUntouched},
    {"1.5/2/3", 1, kUntouched, kUntouched},
};

TEST(ReadWords, ReadsWhatTheTableSays) {
  for (const WordsCase& c : kWords) {
    std::uint16_t words[] = {kUntouched, kUntouched, kUntouched};
    ReadWords(c.text, '/', {&words[0], &words[1], &words[2]});
    EXPECT_EQ(words[0], c.first) << c.text;
    EXPECT_EQ(words[1], c.second) << c.text;
    EXPECT_EQ(words[2], c.third) << c.text;
  }
}

TEST(ReadWords, TakesTheSeparatorThatItIsGiven) {
  std::uint16_t words[] = {kUntouched, kUntouched};
  ReadWords("12:34", ':', {&words[0], &words[1]});
  EXPECT_EQ(words[0], 12);
  EXPECT_EQ(words[1], 34);
}

#if defined(_WIN32)
// Windows has every locale at hand; a plain Linux has none with a decimal comma to set.
TEST(Numbers, DoNotDependOnTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  ASSERT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  const double point = ParseDecimal("1.5");
  const double comma = ParseDecimal("1,5");
  std::setlocale(LC_ALL, before.c_str());
  EXPECT_EQ(point, 1.5);
  EXPECT_EQ(comma, 1.0);
}
#endif

}  // namespace
}  // namespace stelvane
