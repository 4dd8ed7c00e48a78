// Line cutting: the lines must be those of the whole stream, whatever blocks it comes in. Input: a
// byte with the number of block sizes, these sizes (a byte each, used in turn), and the stream.
#include <vector>

#include "at/LineAssembler.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/ReferenceLines.h"

namespace {

constexpr std::string_view kThrowing = "!";  // the sink throws at lines that begin so

struct SinkFailed {};

/// Feeds a block; true when the sink threw.
bool Feed(stelvane::LineAssembler& assembler, std::string_view block,
          std::vector<std::string>& lines) {
  char pipe[256];  // the block is gone after the call
  block.copy(pipe, sizeof pipe);
  bool threw = false;
  try {
    assembler.Feed(pipe, block.size(), [&lines](std::string_view line) {
      lines.emplace_back(line);
      if (line.starts_with(kThrowing)) throw SinkFailed();
    });
  } catch (const SinkFailed&) {
    threw = true;
  }
  std::fill_n(pipe, sizeof pipe, '#');
  return threw;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string_view sizes = input.Text(input.Number() % 32);
  const std::string_view stream = input.Rest();

  stelvane::LineAssembler assembler;
  std::vector<std::string> lines;
  std::string_view rest = stream;
  for (std::size_t turn = 0; !rest.empty(); ++turn) {
    // Once around, empty blocks are over.
    std::size_t blockSize = 255;
    if (!sizes.empty()) blockSize = static_cast<std::uint8_t>(sizes[turn % sizes.size()]);
    if (turn >= sizes.size()) blockSize = std::max<std::size_t>(blockSize, 1);
    const std::string_view block = rest.substr(0, blockSize);
    rest.remove_prefix(block.size());
    Feed(assembler, block, lines);
  }
  // The lines behind one at which the sink threw come with the next block, even an empty one.
  while (Feed(assembler, {}, lines)) {
  }
  fuzz::RequireSameValues("line", lines, fuzz::ReferenceLines(stream));
  return 0;
}
