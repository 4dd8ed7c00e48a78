#include "workbench/modem/PortWriter.h"

#include <algorithm>

namespace bench {

namespace {
constexpr std::size_t kTransferLength = 4096;
constexpr std::size_t kLongestRandom = 64;
}  // namespace

void PortWriter::Cut(std::size_t bytes) {
  cut_ = bytes;
  random_.reset();
}

void PortWriter::Write(Millis now, std::string_view text) {
  const bool waiting = !held_.empty();
  held_ += text;
  if (join_ == 0) {
    Flush();
  } else if (!waiting) {
    agenda_.Add(now + join_, Job::kFlush, [this](Millis) { Flush(); });
  }
}

void PortWriter::Flush() {
  agenda_.Cancel(Job::kFlush);
  for (std::size_t at = 0; at < held_.size();) {
    const std::size_t length = std::min(NextLength(), held_.size() - at);
    emit_(held_.substr(at, length));
    at += length;
  }
  held_.clear();
}

std::size_t PortWriter::NextLength() {
  if (random_) return 1 + (*random_)() % kLongestRandom;
  return cut_ > 0 ? std::min(cut_, kTransferLength) : kTransferLength;
}

}  // namespace bench
