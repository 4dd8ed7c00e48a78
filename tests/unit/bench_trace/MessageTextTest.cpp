#include "workbench/trace/MessageText.h"

#include <gmock/gmock.h>

#include <cstring>

namespace bench {
namespace {

using testing::HasSubstr;

constexpr GUID kGuid = {
    0x3f0c8f52, 0x6a1d, 0x4c57, {0x9d, 0x0e, 0x51, 0xb7, 0xa2, 0xc4, 0xe6, 0xd8}};
constexpr USHORT kNumber = 10;

struct Case {
  std::string type;
  std::string insert;  // "%10!" and "!" come around it
  std::vector<BYTE> bytes;
  std::string shown;
};

void PrintTo(const Case& one, std::ostream* out) {
  *out << one.type << " " << one.insert;
}

TraceFormats FormatsOf(const std::string& text, const std::string& items) {
  TraceFormats formats;
  const std::string file =
      GuidText(kGuid) + " c // SRC=a.cpp MJ= MN=\n#typev a_cpp1 10 \"%0" + text +
      "\" //   LEVEL=TRACE_LEVEL_ERROR FLAGS=TRACE_GENERAL FUNC=Run\n{\n" + items + "}\n";
  EXPECT_EQ(formats.Add(file, "a.tmf"), "");
  return formats;
}

TraceRecord RecordOf(std::vector<BYTE> arguments) {
  return {.message = kGuid, .number = kNumber, .arguments = std::move(arguments)};
}

class TraceArgument : public testing::TestWithParam<Case> {};

TEST_P(TraceArgument, IsShownAsItsTypeAndFormatSay) {
  const TraceFormats formats =
      FormatsOf("<%10!" + GetParam().insert + "!>", "a, " + GetParam().type + " -- 10\n");
  const MessageText message = DecodeMessage(formats, RecordOf(GetParam().bytes));
  EXPECT_TRUE(message.decoded);
  EXPECT_EQ(message.text, "<" + GetParam().shown + ">");
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, TraceArgument,
    testing::Values(Case{"ItemChar", "d", {0xFF}, "-1"}, Case{"ItemUChar", "u", {0xFF}, "255"},
                    Case{"ItemChar", "c", {'A'}, "A"}, Case{"ItemShort", "d", {0xFE, 0xFF}, "-2"},
                    Case{"ItemUShort", "x", {0x34, 0x12}, "1234"},
                    Case{"ItemLong", "d", {0, 0, 0, 0x80}, "-2147483648"},
                    Case{"ItemULong", "u", {0xFF, 0xFF, 0xFF, 0xFF}, "4294967295"},
                    Case{"ItemULong", "08x", {0x0A, 0, 0, 0}, "0000000a"},
                    Case{"ItemULongX", "08X", {0, 0x60, 5, 0x89}, "89056000"},
                    Case{"ItemULong", "6u", {7, 0, 0, 0}, "     7"},
                    Case{"ItemLongLong", "I64d", {0xFD, 255, 255, 255, 255, 255, 255, 255}, "-3"},
                    Case{"ItemULongLong", "I64u", {1, 0, 0, 0, 1, 0, 0, 0}, "4294967297"},
                    Case{"ItemPtr", "p", {0x10, 0x32, 0, 0, 1, 0, 0, 0}, "0x0000000100003210"}));

INSTANTIATE_TEST_SUITE_P(
    Texts, TraceArgument,
    testing::Values(
        Case{"ItemString", "s", {'a', 'b', 0}, "ab"}, Case{"ItemString", ".1s", {'a', 'b', 0}, "a"},
        Case{"ItemString", "s", {'a', '\r', '\n', 'b', '\r', '\n', 0}, R"(a\r\nb)"},
        Case{"ItemWString", "s", {'a', 0, 0xE4, 0, 0, 0}, "a?"},
        Case{"ItemHRESULT", "s", {5, 0x40, 0, 0x80}, "0x80004005(E_FAIL)"},
        Case{"ItemHRESULT", "s", {0, 0, 0, 0}, "0x00000000(S_OK)"},
        Case{"ItemHRESULT", "s", {0x5B, 4, 7, 0x80}, "0x8007045b(ERROR_SHUTDOWN_IN_PROGRESS)"},
        Case{"ItemHRESULT", "s", {0x0E, 0, 0, 0xD0}, "0xd000000e(STATUS_NO_SUCH_DEVICE)"},
        Case{"ItemHRESULT", "s", {1, 0, 0, 0xA0}, "0xa0000001(NO_FINAL_RESULT)"},
        Case{"ItemHRESULT", "s", {0xEF, 0xBE, 0xAD, 0x8B}, "0x8badbeef"},
        Case{"ItemWINERROR", "s", {2, 0, 0, 0}, "2(ERROR_FILE_NOT_FOUND)"},
        Case{"ItemListLong(no,yes)", "s", {1, 0, 0, 0}, "yes"},
        Case{"ItemListByte(no,yes)", "s", {9}, "9"},
        Case{"ItemGuid",
             "s",
             {0x52, 0x8F, 0x0C, 0x3F, 0x1D, 0x6A, 0x57, 0x4C, 0x9D, 0x0E, 0x51, 0xB7, 0xA2, 0xC4,
              0xE6, 0xD8},
             "3f0c8f52-6a1d-4c57-9d0e-51b7a2c4e6d8"}));

TEST(MessageText, ManyArgumentsFollowEachOtherWithoutGaps) {
  const TraceFormats formats =
      FormatsOf("built %10!s! %11!s!, code 0x%12!08x!",
                "date, ItemString -- 10\ntime, ItemString -- 11\ncode, ItemLong -- 12\n");
  constexpr char kBytes[] =
      "Jun  3 2014\0"
      "16:24:48\0"
      "\x00\x60\x05\x89";
  const MessageText message =
      DecodeMessage(formats, RecordOf({std::begin(kBytes), std::end(kBytes) - 1}));
  EXPECT_EQ(message.text, "built Jun  3 2014 16:24:48, code 0x89056000");
}

TEST(MessageText, NamesLevelSourceAndFunction) {
  const MessageText message = DecodeMessage(FormatsOf("%!FUNC! at 100%%", ""), RecordOf({}));
  EXPECT_EQ(message.level, "error");
  EXPECT_EQ(message.place, "a.cpp Run");
  EXPECT_EQ(message.text, "at 100%");
  EXPECT_EQ(MessageLine(message), "error        a.cpp Run: at 100%");
}

TEST(MessageText, AMessageThatNoFileHasIsShownByItsBytes) {
  TraceRecord record = RecordOf({0xAB, 0x01});
  record.number = 99;
  const MessageText message = DecodeMessage(FormatsOf("x", ""), record);
  EXPECT_FALSE(message.decoded);
  EXPECT_EQ(message.place, GuidText(kGuid) + " 99");
  EXPECT_THAT(message.text, HasSubstr("ab 01"));
}

TEST(MessageText, TooFewOrTooManyBytesAreNotGuessedAt) {
  const TraceFormats formats = FormatsOf("%10!d!", "a, ItemLong -- 10\n");
  EXPECT_THAT(DecodeMessage(formats, RecordOf({1, 2, 3})).text, HasSubstr("shorter"));
  EXPECT_THAT(DecodeMessage(formats, RecordOf({1, 2, 3, 4, 5})).text, HasSubstr("longer"));
  const TraceFormats texts = FormatsOf("%10!s!", "a, ItemString -- 10\n");
  EXPECT_THAT(DecodeMessage(texts, RecordOf({'n', 'o'})).text, HasSubstr("shorter"));
  EXPECT_THAT(DecodeMessage(texts, RecordOf({})).text, HasSubstr("shorter"));
}

TEST(MessageText, APlaceThatCannotBeFilledStaysAndIsTold) {
  for (const char* const text : {"%11!d!", "%10!q!", "%10!*d!", "%10!n!", "%!WHO!"}) {
    SCOPED_TRACE(text);
    const MessageText message =
        DecodeMessage(FormatsOf(text, "a, ItemLong -- 10\n"), RecordOf({1, 0, 0, 0}));
    EXPECT_FALSE(message.decoded);
    EXPECT_EQ(message.text, text);
  }
}

TEST(MessageText, ATextIsNoNumber) {
  const TraceFormats formats = FormatsOf("%10!d!", "a, ItemString -- 10\n");
  EXPECT_FALSE(DecodeMessage(formats, RecordOf({'7', 0})).decoded);
}

}  // namespace
}  // namespace bench
