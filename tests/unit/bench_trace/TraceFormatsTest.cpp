#include "workbench/trace/TraceFormats.h"

#include <gmock/gmock.h>

namespace bench {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::NotNull;
using testing::SizeIs;

constexpr GUID kQueue = {
    0x3f0c8f52, 0x6a1d, 0x4c57, {0x9d, 0x0e, 0x51, 0xb7, 0xa2, 0xc4, 0xe6, 0xd8}};

constexpr const char* kFile =
    "// PDB:  example.pdb\n"
    "3f0c8f52-6a1d-4c57-9d0e-51b7a2c4e6d8 example // SRC=queue.cpp MJ= MN=\n"
    "#typev queue_cpp41 10 \"%0%!FUNC! entry\" //   LEVEL=TRACE_LEVEL_INFORMATION "
    "FLAGS=TRACE_GENERAL FUNC=CreateQueue\n"
    "{\n"
    "}\n"
    "#typev queue_cpp73 12 \"%0said \"%11!s!\" and 0x%10!08x!\" //   LEVEL=TRACE_LEVEL_VERBOSE "
    "FLAGS=TRACE_USB FUNC=~Queue\n"
    "{\n"
    "a, b, ItemString -- 11\n"
    "code, ItemLong -- 10\n"
    "}\n";

TEST(TraceFormats, KeepsEachMessageOfAFile) {
  TraceFormats formats;
  ASSERT_EQ(formats.Add(kFile, "a.tmf"), "");
  const TraceFormat* const entry = formats.Find(kQueue, 10);
  ASSERT_THAT(entry, NotNull());
  EXPECT_EQ(entry->source, "queue.cpp");
  EXPECT_EQ(entry->level, "information");
  EXPECT_EQ(entry->flag, "TRACE_GENERAL");
  EXPECT_EQ(entry->function, "CreateQueue");
  EXPECT_EQ(entry->text, "%!FUNC! entry");
  EXPECT_THAT(entry->items, IsEmpty());
  EXPECT_EQ(formats.Find(kQueue, 11), nullptr);
  EXPECT_EQ(formats.Find({}, 10), nullptr);
}

TEST(TraceFormats, OrdersTheArgumentsByTheirInsertNumbers) {
  TraceFormats formats;
  ASSERT_EQ(formats.Add(kFile, "a.tmf"), "");
  const TraceFormat* const message = formats.Find(kQueue, 12);
  ASSERT_THAT(message, NotNull());
  EXPECT_EQ(message->text, R"(said "%11!s!" and 0x%10!08x!)");
  EXPECT_EQ(message->function, "~Queue");
  ASSERT_THAT(message->items, SizeIs(2));
  EXPECT_EQ(message->items[0].kind, ItemKind::kSigned);
  EXPECT_EQ(message->items[1].kind, ItemKind::kText);
}

TEST(TraceFormats, TakesLinesThatEndAsOnWindows) {
  std::string file = kFile;
  for (std::size_t at = 0; (at = file.find('\n', at)) != std::string::npos; at += 2) {
    file.insert(at, 1, '\r');
  }
  TraceFormats formats;
  EXPECT_EQ(formats.Add(file, "a.tmf"), "");
  EXPECT_THAT(formats.Find(kQueue, 12), NotNull());
}

TEST(TraceFormats, OfAMessageThatOccursTwiceTheLastCounts) {
  TraceFormats formats;
  ASSERT_EQ(formats.Add(kFile, "a.tmf"), "");
  std::string other = kFile;
  other.replace(other.find("entry"), 5, "other");
  ASSERT_EQ(formats.Add(other, "b.tmf"), "");
  EXPECT_EQ(formats.Find(kQueue, 10)->text, "%!FUNC! other");
}

struct Wrong {
  const char* what;
  const char* from;  // the part of the good file that is replaced
  const char* to;
  const char* error;
};

void PrintTo(const Wrong& wrong, std::ostream* out) {
  *out << wrong.what;
}

class WrongTraceFormat : public testing::TestWithParam<Wrong> {};

TEST_P(WrongTraceFormat, IsNamedWithItsFileAndLine) {
  std::string file = kFile;
  const std::size_t at = file.find(GetParam().from);
  ASSERT_NE(at, std::string::npos);
  file.replace(at, std::string_view(GetParam().from).size(), GetParam().to);
  TraceFormats formats;
  const std::string error = formats.Add(file, "a.tmf");
  EXPECT_THAT(error, HasSubstr("a.tmf:"));
  EXPECT_THAT(error, HasSubstr(GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrongTraceFormat,
    testing::Values(Wrong{"a GUID cut short", "3f0c8f52", "3f0c8f5", ":2: neither"},
                    Wrong{"no GUID", "3f0c8f52-6a1d-4c57-9d0e-51b7a2c4e6d8 example", "//",
                          ":3: a message before the GUID line"},
                    Wrong{"no function", " FUNC=CreateQueue", "", ":3: a message"},
                    Wrong{"a number too large", "41 10", "41 70000", ":3: a message number"},
                    Wrong{"no block", "{\n}\n", "", ":4: the message before"},
                    Wrong{"a block too many", "{\n}\n", "{\n}\n{\n}\n", ":6: a block"},
                    Wrong{"no item", "code, ItemLong -- 10", "code", ":9: an argument that"},
                    Wrong{"an unknown type", "ItemLong", "ItemLang", ":9: an argument of a type"},
                    Wrong{"a list without names", "ItemLong", "ItemListLong", ":9: an argument of"},
                    Wrong{"an end too early", "10\n}\n", "10\n", "the file ends within"}));

TEST(TraceFormats, ALineTooLongIsRefused) {
  TraceFormats formats;
  EXPECT_EQ(formats.Add("//" + std::string(100'000, 'x'), "a.tmf"),
            "a.tmf:1: the line is too long");
}

TEST(TraceFormats, AnEmptyFileHasNoGuid) {
  TraceFormats formats;
  EXPECT_EQ(formats.Add("", "a.tmf"), "a.tmf: the file has no GUID line");
}

TEST(TraceFormats, AFolderThatIsNotThereIsNamed) {
  EXPECT_THAT(TraceFormats::Load("no/such/folder").error, HasSubstr("no/such/folder: "));
}

}  // namespace
}  // namespace bench
