// In the place of the process's end and of the heap, for code that stands under other names.
#pragma once

#include <cstddef>

/// Instead of the process's end.
struct Ended {};

struct ProcessEnd {
  int count = 0;
  bool throws = true;  // Ended; false where no exception can leave: what follows is run then
  bool memoryIsOut = false;
};
extern ProcessEnd processEnd;

namespace std {

void EndProcess();
void* ClearedMemory(size_t count, size_t size);

}  // namespace std
