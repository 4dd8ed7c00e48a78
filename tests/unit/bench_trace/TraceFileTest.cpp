#include "workbench/trace/TraceFile.h"

#include <gmock/gmock.h>

#include "workbench/trace/TraceLevel.h"

namespace bench {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

constexpr GUID kMessage = {
    0x3f0c8f52, 0x6a1d, 0x4c57, {0x9d, 0x0e, 0x51, 0xb7, 0xa2, 0xc4, 0xe6, 0xd8}};

std::string TwoMessages() {
  return TraceFileHead(0x01D0000000000001) +
         TraceFileRecord(
             {.time = 5, .thread = 7, .message = kMessage, .number = 10, .flags = 0x2B}) +
         TraceFileRecord({.time = 6000,
                          .thread = 8,
                          .message = kMessage,
                          .number = 0xFFFF,
                          .arguments = {1, 2, 3}});
}

TEST(TraceFile, IsReadAsItWasWritten) {
  const auto trace = ParseTraceFile(TwoMessages());
  ASSERT_TRUE(trace) << trace.error;
  EXPECT_EQ(trace.value->startUtc, 0x01D0000000000001U);
  EXPECT_EQ(trace.value->damage, "");
  ASSERT_THAT(trace.value->records, SizeIs(2));
  const TraceRecord& first = trace.value->records[0];
  EXPECT_EQ(first.time, 5);
  EXPECT_EQ(first.thread, 7U);
  EXPECT_EQ(first.number, 10);
  EXPECT_EQ(first.flags, 0x2BU);
  EXPECT_EQ(first.message, kMessage);
  const TraceRecord& second = trace.value->records[1];
  EXPECT_EQ(second.time, 6000);
  EXPECT_EQ(second.number, 0xFFFF);
  EXPECT_EQ(second.arguments, (std::vector<BYTE>{1, 2, 3}));
}

TEST(TraceFile, CutAnywhereKeepsWhatStandsBeforeTheCut) {
  const std::string whole = TwoMessages();
  const std::size_t head = TraceFileHead(0).size();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    const auto trace = ParseTraceFile(std::string_view(whole).substr(0, length));
    ASSERT_EQ(static_cast<bool>(trace), length >= head);
    if (!trace) continue;
    const std::size_t first = whole.size() - TraceFileRecord({}).size() - 3;
    EXPECT_THAT(trace.value->records, SizeIs(length >= first ? 1U : 0U));
    const bool isWhole = length == head || length == first;
    EXPECT_EQ(trace.value->damage.empty(), isWhole) << trace.value->damage;
  }
}

TEST(TraceFile, ALengthThatNoMessageHasIsDamage) {
  std::string bytes = TraceFileHead(0) + TraceFileRecord({});
  bytes[bytes.size() - 1] = 0x7F;
  const auto trace = ParseTraceFile(bytes);
  ASSERT_TRUE(trace);
  EXPECT_THAT(trace.value->damage, HasSubstr("message 1 is 2130706432 bytes long"));
}

TEST(TraceFile, AnotherFileIsRefused) {
  EXPECT_THAT(ParseTraceFile("MZ and more bytes than the head has").error,
              HasSubstr("not a trace"));
  EXPECT_THAT(ParseTraceFile("").error, HasSubstr("not a trace"));
}

TEST(TraceLevel, HasANameAndANumber) {
  EXPECT_EQ(ToTraceLevel("critical"), 1);
  EXPECT_EQ(ToTraceLevel("verbose"), 5);
  EXPECT_EQ(ToTraceLevel("3"), 3);
  for (const char* const text : {"", "0", "6", "10", "Error", "all"}) {
    EXPECT_EQ(ToTraceLevel(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace bench
