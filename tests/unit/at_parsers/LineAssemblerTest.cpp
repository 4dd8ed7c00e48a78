#include "at/LineAssembler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/fuzz/ReferenceLines.h"

namespace stelvane {
namespace {

using Lines = std::vector<std::string>;
using fuzz::ReferenceLines;

/// An assembler with the lines that it has handed on. When `failing`, every second line throws.
struct Receiver {
  LineAssembler assembler;
  Lines lines;
  bool failing = false;

  void Feed(std::string_view block) {
    assembler.Feed(block.data(), block.size(), [this](std::string_view line) {
      lines.emplace_back(line);
      if (failing && lines.size() % 2 == 1) throw std::runtime_error("sink");
    });
  }
};

TEST(LineAssembler, RemovesAllCarriageReturnsBeforeTheLineFeed) {
  Receiver receiver;
  receiver.Feed("OK\r\r\n");
  EXPECT_EQ(receiver.lines, Lines{"OK"});
}

TEST(LineAssembler, HandsOnTwoLinesOfOneReadInOrder) {
  Receiver receiver;
  receiver.Feed("OK\r\n+XLSRSTOP: 1\r\n");
  EXPECT_EQ(receiver.lines, (Lines{"OK", "+XLSRSTOP: 1"}));
}

TEST(LineAssembler, KeepsAnUnfinishedLineUntilTheRestArrives) {
  Receiver receiver;
  receiver.Feed("OK\r\n+XLCS");
  EXPECT_EQ(receiver.lines, Lines{"OK"});
  receiver.Feed("LSR: 1\r");
  EXPECT_EQ(receiver.lines, Lines{"OK"});
  receiver.Feed("\n");
  EXPECT_EQ(receiver.lines, (Lines{"OK", "+XLCSLSR: 1"}));
}

TEST(LineAssembler, LoneLineFeedYieldsAnEmptyLine) {
  Receiver receiver;
  receiver.Feed("\n");
  EXPECT_EQ(receiver.lines, Lines{""});
}

TEST(LineAssembler, LineOfCarriageReturnsOnlyIsEmpty) {
  Receiver receiver;
  receiver.Feed("\r\r\r\n");
  EXPECT_EQ(receiver.lines, Lines{""});
}

TEST(LineAssembler, KeepsCarriageReturnsInsideALine) {
  Receiver receiver;
  receiver.Feed("a\rb\r\n\rc\n");
  EXPECT_EQ(receiver.lines, (Lines{"a\rb", "\rc"}));
}

TEST(LineAssembler, KeepsZeroBytes) {
  Receiver receiver;
  receiver.Feed(std::string_view("a\0b\n", 4));
  EXPECT_EQ(receiver.lines, Lines{std::string("a\0b", 3)});
}

TEST(LineAssembler, EmptyBlockChangesNothing) {
  Receiver receiver;
  receiver.Feed("a");
  receiver.assembler.Feed(nullptr, 0, [](std::string_view) { FAIL(); });
  receiver.Feed("b\n");
  EXPECT_EQ(receiver.lines, Lines{"ab"});
}

TEST(LineAssembler, LineOfThrowingSinkIsNotRepeatedAndTheRestComesWithTheNextBlock) {
  Receiver receiver;
  receiver.failing = true;
  EXPECT_THROW(receiver.Feed("a\nb\nc\nd"), std::runtime_error);
  EXPECT_EQ(receiver.lines, Lines{"a"});
  EXPECT_THROW(receiver.Feed("e"), std::runtime_error);
  EXPECT_EQ(receiver.lines, (Lines{"a", "b", "c"}));
  receiver.Feed("f\n");
  EXPECT_EQ(receiver.lines, (Lines{"a", "b", "c", "def"}));
}

constexpr std::string_view kSample = "OK\r\r\n\na\rb\n\r\n\r+X";

/// Feeds `kSample` cut wherever `cuts` has a bit set, then an empty block for each line that a
/// throwing sink may have left.
Lines FeedInPieces(std::uint32_t cuts, bool failing) {
  Receiver receiver;
  receiver.failing = failing;
  const auto feed = [&](std::string_view block) {
    try {
      receiver.Feed(block);
    } catch (const std::runtime_error&) {
    }
  };
  std::size_t start = 0;
  for (std::size_t end = 1; end <= kSample.size(); ++end) {
    if (end < kSample.size() && (cuts >> (end - 1) & 1) == 0) continue;
    feed(kSample.substr(start, end - start));
    start = end;
  }
  for (std::size_t i = 0; i < kSample.size(); ++i) feed("");
  return receiver.lines;
}

TEST(LineAssembler, EverySplitOfAStreamGivesTheSameLines) {
  const Lines expected = ReferenceLines(kSample);
  ASSERT_EQ(expected, (Lines{"OK", "", "a\rb", ""}));
  for (std::uint32_t cuts = 0; cuts < 1u << (kSample.size() - 1); ++cuts) {
    ASSERT_EQ(FeedInPieces(cuts, false), expected) << "cuts " << cuts;
  }
}

TEST(LineAssembler, EverySplitOfAStreamGivesTheSameLinesWhenTheSinkThrows) {
  const Lines expected = ReferenceLines(kSample);
  for (std::uint32_t cuts = 0; cuts < 1u << (kSample.size() - 1); ++cuts) {
    ASSERT_EQ(FeedInPieces(cuts, true), expected) << "cuts " << cuts;
  }
}

/// Counts the bytes that the buffer looks at and moves.
struct CountingTraits : std::char_traits<char> {
  static inline std::size_t searched = 0;
  static inline std::size_t moved = 0;

  static const char* find(const char* text, std::size_t count, const char& wanted) {
    const char* const found = std::char_traits<char>::find(text, count, wanted);
    searched += found == nullptr ? count : static_cast<std::size_t>(found - text) + 1;
    return found;
  }
  static char* move(char* to, const char* from, std::size_t count) {
    moved += count;
    return std::char_traits<char>::move(to, from, count);
  }
  static char* copy(char* to, const char* from, std::size_t count) {
    moved += count;
    return std::char_traits<char>::copy(to, from, count);
  }
};

struct Work {
  std::size_t searched = 0;
  std::size_t moved = 0;
  std::size_t lines = 0;
};

Work MeasureWork(const std::string& stream, std::size_t blockSize, bool failing = false) {
  CountingTraits::searched = CountingTraits::moved = 0;
  BasicLineAssembler<CountingTraits> assembler;
  std::size_t lines = 0;
  const auto feed = [&](const char* data, std::size_t count) {
    try {
      assembler.Feed(data, count, [&](BasicLineAssembler<CountingTraits>::Line) {
        ++lines;
        if (failing) throw std::runtime_error("sink");
      });
    } catch (const std::runtime_error&) {
      return true;
    }
    return false;
  };
  for (std::size_t at = 0; at < stream.size(); at += blockSize) {
    feed(stream.data() + at, std::min(blockSize, stream.size() - at));
  }
  while (feed(nullptr, 0)) {
  }
  return {CountingTraits::searched, CountingTraits::moved, lines};
}

std::string RepeatedLine(std::size_t lineSize, std::size_t total) {
  std::string stream;
  while (stream.size() < total) stream += std::string(lineSize - 1, 'x') + '\n';
  return stream;
}

// Appending moves each byte once, the buffer's growth by doubling at most twice more, and making
// room at the front once.
constexpr std::size_t kMovesForEachByte = 4;

TEST(LineAssembler, SearchesEachByteOnceAndMovesItAFewTimesWhateverTheBlockSize) {
  for (const std::size_t lineSize : {1u, 2u, 80u, 5000u, 200000u}) {
    const std::string stream = RepeatedLine(lineSize, 200000);
    for (const std::size_t blockSize : {1u, 3u, 64u, 4096u, 1000000u}) {
      const Work work = MeasureWork(stream, blockSize);
      EXPECT_EQ(work.lines, stream.size() / lineSize);
      EXPECT_EQ(work.searched, stream.size()) << lineSize << " by " << blockSize;
      EXPECT_LE(work.moved, kMovesForEachByte * stream.size()) << lineSize << " by " << blockSize;
    }
  }
}

TEST(LineAssembler, StaysLinearWhenAThrowingSinkLeavesABacklog) {
  const std::string stream = RepeatedLine(4, 100000);
  for (const std::size_t blockSize : {1u, 64u, 4096u, 1000000u}) {
    const Work work = MeasureWork(stream, blockSize, true);
    EXPECT_EQ(work.lines, stream.size() / 4);
    EXPECT_EQ(work.searched, stream.size()) << blockSize;
    EXPECT_LE(work.moved, kMovesForEachByte * stream.size()) << blockSize;
  }
}

}  // namespace
}  // namespace stelvane
