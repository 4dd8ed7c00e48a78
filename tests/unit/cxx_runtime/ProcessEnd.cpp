#include "tests/unit/cxx_runtime/ProcessEnd.h"

#include <cstdlib>

ProcessEnd processEnd;

void std::EndProcess() {
  ++processEnd.count;
  if (processEnd.throws) throw Ended{};
}

void* std::ClearedMemory(size_t count, size_t size) {
  return processEnd.memoryIsOut ? nullptr : calloc(count, size);
}
